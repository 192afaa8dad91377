// Random and mutated statements through ElaboraStrSQL: no crash, hang or
// throw, and every answer one the rewriter can give (fixed seed, bounded run).
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "parser/rewriter/scan_report.h"
#include "rewrite_corpus.h"

namespace zarvik {
namespace {

using Clock = std::chrono::steady_clock;
using rewriter::ScanOutcome;

class RewriteFuzz : public ::testing::Test {
 protected:
  // One statement; checks what any call must satisfy.
  void Check(const std::string& statement) {
    std::string buffer = statement;
    rewriter::ScanReport report;
    std::string result;
    const auto start = Clock::now();
    ASSERT_NO_THROW(result = rossi.parser.ElaboraStrSQLExplained(buffer, report)) << statement;
    const auto took = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
    ASSERT_LT(took.count(), 2000) << "slow statement: " << statement;
    ++outcomes[static_cast<size_t>(report.outcome)];
    switch (report.outcome) {
      case ScanOutcome::kParserError:
      case ScanOutcome::kRunTimeError:
        ASSERT_EQ(result, "") << statement;
        break;
      case ScanOutcome::kDerivedTable:
        ASSERT_NE(statement.find(result), std::string::npos) << statement;
        break;
      case ScanOutcome::kRewritten:
        // Every condition the dispatch gave is in the answer.
        for (const rewriter::RecognisedTable& t : report.tables) {
          ASSERT_NE(result.find(t.condition), std::string::npos) << statement;
        }
        break;
      case ScanOutcome::kNotScanned:
        FAIL() << "the guard passed for ROSSI";
    }
    // Only the parser's own box: the dispatch's builders send fixed SQL.
    for (const Message& m : rossi.sink->messages) ASSERT_EQ(m.title, "Parser Error") << m.text;
    rossi.sink->messages.clear();
  }

  // Checks statements from `next` until `count` are done or 20 seconds pass.
  void Fuzz(int count, const std::function<std::string()>& next) {
    const auto deadline = Clock::now() + std::chrono::seconds(20);
    int runs = 0;
    for (; runs < count && Clock::now() < deadline && !HasFatalFailure(); ++runs) Check(next());
    EXPECT_GE(runs, 300);
  }

  testing::ParserSession rossi{"ROSSI"};
  size_t outcomes[5] = {0, 0, 0, 0, 0};
};

TEST_F(RewriteFuzz, RandomThenMutatedStatements) {
  const std::vector<std::string> statements = testing::FuzzStatements();
  size_t at = 0;
  Fuzz(20000, [&] { return statements[at++]; });
  // The random ones reach every way a call can end.
  for (ScanOutcome outcome : {ScanOutcome::kRewritten, ScanOutcome::kParserError,
                              ScanOutcome::kRunTimeError, ScanOutcome::kDerivedTable}) {
    EXPECT_GT(outcomes[static_cast<size_t>(outcome)], 0U);
  }
  at = 20000;
  Fuzz(10000, [&] { return statements[at++]; });
}

TEST_F(RewriteFuzz, LongStatementsAroundThe16BitLimit) {
  // Beyond 32767 characters: keywords within 16 bits, or "" silently.
  for (const std::string& s : testing::LongStatements()) {
    Check(s);
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace zarvik
