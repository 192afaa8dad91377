// Shared set-up of the block-check and rights-record tests: a CLSFW_PARSER
// on a fresh in-memory demo database whose statements are logged and whose
// message boxes are recorded.
#ifndef ZARVIK_TESTS_PARSER_CHECKS_CHECK_TEST_SUPPORT_H_
#define ZARVIK_TESTS_PARSER_CHECKS_CHECK_TEST_SUPPORT_H_

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"
#include "db/tracing.h"
#include "demo/demo_db.h"
#include "parser/clsfw_parser.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "platform/variant.h"

namespace zarvik::testing {

class CheckTest : public ::testing::Test {
 protected:
  CheckTest() : parser(Env{sink, std::make_shared<SystemClock>()}) {
    db->SetStatementLog(log);
    parser.SetConnectionADO(db);
    parser.SetDittaCorrente(Variant(int32_t{1}));
  }

  // Both user codes (the checks compare one or the other with "ZentAd").
  void AsUser(const std::string& code, const std::string& group) {
    parser.SetCodiceGruppo(group);
    parser.SetCodiceUtente(code);
    parser.SetCodiceUtenteCLIFOR(code);
  }
  void AsRossi() { AsUser("ROSSI", "VEN"); }
  void AsZentAd() { AsUser("ZentAd", "SYS"); }

  const std::vector<std::string>& Statements() const { return log->statements; }
  // The last statement sent ("" when none was).
  std::string LastStatement() const {
    return log->statements.empty() ? std::string() : log->statements.back();
  }
  // Statements sent after the user lookup (which every check may run once).
  std::vector<std::string> StatementsAfterLookup() const {
    std::vector<std::string> sent;
    for (const std::string& s : log->statements) {
      if (s.rfind("SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER", 0) != 0) sent.push_back(s);
    }
    return sent;
  }
  void Run(const std::string& sql) { db->Execute(sql, db::kCmdText); }

  const std::vector<Message>& Boxes() const { return sink->messages; }
  // The reporter's box ends with this line for a tag.
  static std::string TagLine(const std::string& tag) {
    return "\r\nin ZARVIK: CLSFW_PARSER - " + tag;
  }
  static bool EndsWith(const std::string& text, const std::string& tail) {
    return text.size() >= tail.size() &&
           text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
  }

  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  std::shared_ptr<db::Connection> db = demo::OpenDemoDatabase(":memory:");
  std::shared_ptr<db::StatementLog> log = std::make_shared<db::StatementLog>();
  CLSFW_PARSER parser;
};

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_PARSER_CHECKS_CHECK_TEST_SUPPORT_H_
