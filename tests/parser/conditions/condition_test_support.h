// Shared set-up of the condition builder tests: a CLSFW_PARSER on a fresh
// in-memory demo database whose statements are logged and whose message
// boxes are recorded, and the helpers that run a predicate inside a real
// statement.
#ifndef ZARVIK_TESTS_PARSER_CONDITIONS_CONDITION_TEST_SUPPORT_H_
#define ZARVIK_TESTS_PARSER_CONDITIONS_CONDITION_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "demo/tour.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "platform/variant.h"

namespace zarvik {

// Reaches the scanner state and the agent rule of the condition builders
// (declared a friend of CLSFW_PARSER).
class ConditionScannerStateForTest {
 public:
  static void SetCurrentAlias(CLSFW_PARSER& p, const std::string& alias) {
    p.current_alias_ = alias;
  }
  static void SetFromRewriter(CLSFW_PARSER& p, bool value) { p.from_rewriter_ = value; }
  static std::string AgentRule(const CLSFW_PARSER& p) { return p.AgentRule(); }
};

namespace testing {

// A user code that is not in FW07_APPUSER: the lookup finds nothing and
// keeps the id the test set, so that texts can be pinned with any id.
inline constexpr const char* kUnknownUser = "ORDINARIO";

class ConditionTest : public ::testing::Test {
 protected:
  ConditionTest() : parser(Env{sink, std::make_shared<SystemClock>()}) {
    db->SetStatementLog(log);
    parser.SetConnectionADO(db);
    parser.SetDittaCorrente(Variant(int32_t{1}));
  }

  // The user for both codes (the customer/supplier code is the one most
  // conditions compare with the privileged code).
  void AsUser(const std::string& code, const std::string& group = "VEN") {
    parser.SetCodiceGruppo(group);
    parser.SetCodiceUtente(code);
    parser.SetCodiceUtenteCLIFOR(code);
  }
  // An ordinary user unknown to the database whose id is `id`.
  void AsUnknownUserWithId(int32_t id) {
    AsUser(kUnknownUser);
    parser.SetIdUser(id);
  }
  void AsRossi() { AsUser("ROSSI"); }
  // Another parser on the same database and message boxes, as `code` of
  // `group` in `company` (nothing set when `code` is empty).
  std::unique_ptr<CLSFW_PARSER> Other(const std::string& code, const std::string& group = "VEN",
                                      const Variant& company = Variant(int32_t{1}),
                                      bool connected = true) {
    auto other = std::make_unique<CLSFW_PARSER>(Env{sink, std::make_shared<SystemClock>()});
    if (connected) other->SetConnectionADO(db);
    other->SetDittaCorrente(company);
    other->SetCodiceGruppo(group);
    other->SetCodiceUtente(code);
    other->SetCodiceUtenteCLIFOR(code);
    return other;
  }

  // The first column of every row of `statement`, as text, blank-separated.
  std::string Rows(const std::string& statement) {
    std::string values;
    for (const auto& row : demo::QueryRows(*db, statement)) {
      values += (values.empty() ? "" : " ") + row.at(0).ConcatText();
    }
    return values;
  }

  // Boxes shown so far.
  const std::vector<Message>& Boxes() const { return sink->messages; }
  // The tags of the boxes shown so far (the reporter's second line).
  std::vector<std::string> BoxTags() const {
    std::vector<std::string> tags;
    const std::string marker = "\r\nin ZARVIK: CLSFW_PARSER - ";
    for (const Message& box : sink->messages) {
      const size_t at = box.text.rfind(marker);
      tags.push_back(at == std::string::npos ? box.text : box.text.substr(at + marker.size()));
    }
    return tags;
  }

  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<db::Connection> db = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  CLSFW_PARSER parser;
};

}  // namespace testing
}  // namespace zarvik

#endif  // ZARVIK_TESTS_PARSER_CONDITIONS_CONDITION_TEST_SUPPORT_H_
