// Set-up shared by the rewriter tests: a parser bound to an in-memory demo
// database for one demo user, and access to the rewriter's private parts.
#ifndef ZARVIK_TESTS_PARSER_REWRITER_REWRITER_PROBE_H_
#define ZARVIK_TESTS_PARSER_REWRITER_REWRITER_PROBE_H_

#include <cstdint>
#include <memory>
#include <string>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"
#include "platform/message_sink.h"

namespace zarvik {

// Reaches the dispatch, the builders and the shared state of CLSFW_PARSER.
class RewriterProbe {
 public:
  // FiltriStrSQL with the current alias the scanner would have set.
  static std::string Filtri(CLSFW_PARSER& p, const std::string& prefix, int16_t where_pos,
                            bool is_from_list, const std::string& alias = "") {
    p.current_alias_ = alias;
    std::string condition = "left over";
    p.FiltriStrSQL(prefix, where_pos, is_from_list, condition);
    return condition;
  }
  static int16_t TipoCFHint(const CLSFW_PARSER& p) { return p.tipo_cf_hint_; }
  static bool CliForDone(const CLSFW_PARSER& p) { return p.clifor_done_; }
  static void SetCliForDone(CLSFW_PARSER& p, bool value) { p.clifor_done_ = value; }
  static const std::string& CurrentAlias(const CLSFW_PARSER& p) { return p.current_alias_; }
  static bool FromRewriter(const CLSFW_PARSER& p) { return p.from_rewriter_; }

  static std::string RvkDitte(CLSFW_PARSER& p) { return p.RvkDitte(); }
  static std::string Sedi(CLSFW_PARSER& p, const std::string& tabella, bool inserire_and) {
    return p.Sedi(tabella, inserire_and);
  }
  static std::string CausaliContabili(CLSFW_PARSER& p, const std::string& alias) {
    p.current_alias_ = alias;
    return p.CausaliContabili();
  }
  static std::string Progetti(CLSFW_PARSER& p, bool negate) { return p.RvkProgetti(negate); }
  static std::string Nodi(CLSFW_PARSER& p, bool negate) { return p.RvkNodi(negate); }
  static std::string BlmParam(CLSFW_PARSER& p, bool negate) { return p.RvkBlmParam(negate); }
  static std::string VisSource(CLSFW_PARSER& p, const std::string& column) {
    return p.RvkVisSource(column);
  }
  static std::string Depositi(CLSFW_PARSER& p, const std::string& column) {
    return p.RvkDepositi(column);
  }
};

namespace testing {

// A parser for one demo user on its own in-memory demo database, with the
// message boxes and the statements it sends recorded.
struct RewriterSession {
  explicit RewriterSession(const std::string& user_code, const std::string& group = "",
                           int32_t company = demo::kMainCompany)
      : RewriterSession(demo::OpenDemoDatabase(":memory:"), user_code, group, company) {}

  RewriterSession(std::shared_ptr<db::Connection> database, const std::string& user_code,
                  const std::string& group, int32_t company)
      : db(std::move(database)), parser(Env{sink, std::make_shared<SystemClock>()}) {
    db->SetStatementLog(log);
    parser.SetConnectionADO(db);
    parser.SetCodiceUtente(user_code);
    const demo::DemoUser* user = demo::FindDemoUser(user_code);
    parser.SetCodiceGruppo(!group.empty() || user == nullptr ? group : user->group);
    parser.SetDittaCorrente(Variant(company));
  }

  // ElaboraStrSQL on a copy of the statement.
  std::string Rewrite(const std::string& statement) {
    std::string buffer = statement;
    return parser.ElaboraStrSQL(buffer);
  }

  // Declared before the parser, which is built with them.
  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  std::shared_ptr<db::Connection> db;
  CLSFW_PARSER parser;
};

}  // namespace testing
}  // namespace zarvik

#endif  // ZARVIK_TESTS_PARSER_REWRITER_REWRITER_PROBE_H_
