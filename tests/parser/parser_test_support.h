// A CLSFW_PARSER on its own in-memory demo database, statements and boxes kept.
#ifndef ZARVIK_TESTS_PARSER_PARSER_TEST_SUPPORT_H_
#define ZARVIK_TESTS_PARSER_PARSER_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "frame/frame_test_support.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "platform/variant.h"
#include "rewriter/rewriter_probe.h"

namespace zarvik::testing {

// Both user codes; the group is the demo user's, or VEN for other codes.
inline void SetUser(CLSFW_PARSER& p, const std::string& code, const std::string& group = "") {
  const demo::DemoUser* user = demo::FindDemoUser(code);
  p.SetCodiceGruppo(!group.empty() ? group : user != nullptr ? user->group : "VEN");
  p.SetCodiceUtente(code);
  p.SetCodiceUtenteCLIFOR(code);
}

// The customer/supplier condition on three columns for user `id`, or on CG44's qualified by `q`.
inline std::string CliFor(const std::string& ditta, const std::string& tipo,
                          const std::string& clifor, int id = 5) {
  return " NOT EXISTS  (SELECT RVKCLIFOR   FROM VFW32_LISTACFREVOCATI   WHERE RVKDITTA = " + ditta +
         "     AND RVKTIPOCF = " + tipo + "     AND RVKCLIFOR = " + clifor +
         "     AND RVKUTENTE = " + std::to_string(id) + "  )  ";
}
inline std::string CliForCondition(const std::string& q) {
  return CliFor(q + "CG44_DITTA_CG18", q + "CG44_TIPOCF", q + "CG44_CLIFOR");
}

// The 16-bit fields of a rights record in declared order: 'T' True, 'F' False.
template <class Record>
std::string Flags(const Record& record) {
  int16_t fields[sizeof(Record) / sizeof(int16_t)];
  std::memcpy(fields, &record, sizeof fields);
  std::string flags;
  for (int16_t f : fields) flags += f == -1 ? 'T' : f == 0 ? 'F' : '?';
  return flags;
}

// Boolean answers as 'T' and 'F', in order.
inline std::string TF(std::initializer_list<bool> answers) {
  std::string text;
  for (bool a : answers) text += a ? 'T' : 'F';
  return text;
}

struct ParserSession {
  explicit ParserSession(const std::string& user = "", std::shared_ptr<db::Connection> database =
                                                           demo::OpenDemoDatabase(":memory:"))
      : db(std::move(database)), parser(Env{sink, std::make_shared<SystemClock>()}) {
    db->SetStatementLog(log);
    parser.SetConnectionADO(db);
    parser.SetDittaCorrente(Variant(demo::kMainCompany));
    if (!user.empty()) AsUser(user);
  }

  void AsUser(const std::string& code, const std::string& group = "") {
    SetUser(parser, code, group);
  }
  // A code FW07_APPUSER does not know: the lookup keeps the id the test set.
  void AsUnknownUserWithId(int32_t id) {
    AsUser("ORDINARIO");
    parser.SetIdUser(id);
  }
  // Another parser on the same database and message boxes.
  std::unique_ptr<CLSFW_PARSER> Other(const std::string& code,
                                      const Variant& company = Variant(demo::kMainCompany),
                                      bool connected = true) {
    auto other = std::make_unique<CLSFW_PARSER>(Env{sink, std::make_shared<SystemClock>()});
    if (connected) other->SetConnectionADO(db);
    other->SetDittaCorrente(company);
    SetUser(*other, code);
    return other;
  }

  // ElaboraStrSQL on a copy of the statement.
  std::string Rewrite(const std::string& statement) {
    std::string buffer = statement;
    return parser.ElaboraStrSQL(buffer);
  }
  void Run(const std::string& sql) { db->Execute(sql, db::kCmdText); }
  // Rows of FW31_RVKPARAMETRI: CODICE, ID_FW07, INDTIPO, DITTARAGG, CODTIPO, ...
  void AddParameterRows(const std::string& columns_after_code, const std::string& values) {
    Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, "
        "FW31_DITTARAGG, FW31_CODTIPO" +
        columns_after_code + ") VALUES " + values);
  }

  const std::vector<std::string>& Statements() const { return log->statements; }
  std::string LastStatement() const {
    return log->statements.empty() ? std::string() : log->statements.back();
  }
  const std::vector<Message>& Boxes() const { return sink->messages; }
  // The tag of every box shown so far (what follows the reporter's marker).
  std::vector<std::string> BoxTags() const {
    std::vector<std::string> tags;
    for (const Message& box : sink->messages) tags.push_back(BoxTag(box, "CLSFW_PARSER"));
    return tags;
  }

  // Declared before the parser, which is built with them.
  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  std::shared_ptr<db::Connection> db;
  CLSFW_PARSER parser;
};

class ParserTest : public ::testing::Test, public ParserSession {};

// ROSSI's condition for a table prefix (the rewrite digest pins it).
inline std::string RossiTableText(const std::string& prefix) {
  static ParserSession rossi("ROSSI");
  return RewriterProbe::Table(rossi.parser, prefix);
}

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_PARSER_PARSER_TEST_SUPPORT_H_
