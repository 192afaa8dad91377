// Random and mutated statements through ElaboraStrSQL: no crash, no hang,
// nothing thrown, and every answer is one the rewriter can give. The seed
// is fixed and the run is bounded in count and time.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include "parser/rewriter/scan_report.h"
#include "rewriter_probe.h"

namespace zarvik {
namespace {

using Clock = std::chrono::steady_clock;
using rewriter::ScanOutcome;

// Pieces the generator glues together: keywords in both cases, table names
// of every prefix the dispatch knows, aliases, literals and the characters
// the scanner looks at.
const std::vector<std::string> kTokens = {"SELECT",
                                          "select",
                                          "FROM",
                                          "from",
                                          "WHERE",
                                          "where",
                                          "UNION",
                                          "union",
                                          "JOIN",
                                          "join",
                                          "INNER",
                                          "LEFT",
                                          "left",
                                          "RIGHT",
                                          "OUTER",
                                          "ON",
                                          "on",
                                          "GROUP BY",
                                          "group by",
                                          "ORDER BY",
                                          "ORDER  BY",
                                          "order\r\nby",
                                          "WITH(NOLOCK)",
                                          "WITH",
                                          "{oj ",
                                          "}",
                                          "AND",
                                          "OR",
                                          "IN",
                                          "*",
                                          "CG16_ANAGRAFICA",
                                          "CG18_DITTE",
                                          "CG44_CLIFOR",
                                          "CG31_SEDI",
                                          "CG33_TABCAU",
                                          "CG41_TESMOVCONT",
                                          "VCG42_MOVCONT",
                                          "DO11_DOCTESTATA",
                                          "MG07_MACROAREE",
                                          "MG08_AREE",
                                          "MG09_ZONE",
                                          "MG10_MACROCAT",
                                          "MG11_CATEGORIE",
                                          "MG12_SOTTOCAT",
                                          "MG17_AGENTI",
                                          "MG31_RAGGRCF1",
                                          "MG36_DOCUMENTI",
                                          "MG3N_TRASFDOC",
                                          "MG58_DEPOSITI",
                                          "MG0F_BLMPARAM",
                                          "PD68_PROGETTI",
                                          "PD0C_NODO",
                                          "VPD0C_NODIPROG",
                                          "PD90_SIMULAZIONI",
                                          "FW34_VISSOURCE",
                                          "FW36_VISMATRICI",
                                          "FW57_STPLIBERE",
                                          "XX99_ALTRO",
                                          "A",
                                          "B",
                                          "C.",
                                          "D",
                                          "X1",
                                          "CG44_TIPOCF = 0",
                                          "CG44_TIPOCF = 1",
                                          "'",
                                          "'UNION'",
                                          "'SELECT'",
                                          "(",
                                          ")",
                                          ",",
                                          " , ",
                                          " ",
                                          " ",
                                          " ",
                                          "  ",
                                          "\t",
                                          "\r\n",
                                          "=",
                                          "1",
                                          "0",
                                          ".",
                                          "_",
                                          "-",
                                          "\xC3\xA8"};

std::string RandomStatement(std::mt19937& rng, size_t max_tokens) {
  std::uniform_int_distribution<size_t> pick(0, kTokens.size() - 1);
  std::uniform_int_distribution<size_t> count(0, max_tokens);
  std::uniform_int_distribution<int> blank(0, 2);
  std::string s;
  for (size_t n = count(rng); n > 0; --n) {
    s += kTokens[pick(rng)];
    if (blank(rng) != 0) s += ' ';
  }
  return s;
}

// Realistic statements to mutate.
const std::vector<std::string> kCorpus = {
    "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1 ORDER BY "
    "A.MG36_NUMREG",
    "SELECT D.DO11_NUMREG_CO99, C.CG44_RAGSOC FROM DO11_DOCTESTATA D INNER JOIN CG44_CLIFOR C ON "
    "C.CG44_DITTA_CG18 = D.DO11_DITTACF_CG44 LEFT OUTER JOIN MG36_DOCUMENTI M ON M.MG36_CODDOCUM "
    "= D.DO11_DOCUM_MG36 WHERE D.DO11_DITTA_CG18 = 1 AND C.CG44_TIPOCF = 0 ORDER BY 1",
    "SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI UNION SELECT PD68_CODPROG FROM PD68_PROGETTI "
    "ORDER BY 1",
    "SELECT (SELECT MAX(B) FROM MG58_DEPOSITI) AS M FROM CG18_DITTE D, CG16_ANAGRAFICA A, "
    "CG44_CLIFOR C WHERE D.CG18_DITTA IN (SELECT 1 FROM PD0C_NODO WHERE 1 = 1) GROUP BY M",
    "SELECT * FROM (SELECT MG36_CODDOCUM FROM MG36_DOCUMENTI) X",
    "SELECT * FROM {oj PD68_PROGETTI P LEFT OUTER JOIN PD0C_NODO N ON N.PD0C_CODPROG_PD68 = "
    "P.PD68_CODPROG} WHERE P.PD68_DESCR <> 'UNION'",
};

std::string Mutate(std::mt19937& rng, std::string s) {
  std::uniform_int_distribution<int> op(0, 5);
  std::uniform_int_distribution<size_t> pick(0, kTokens.size() - 1);
  std::uniform_int_distribution<int> times(1, 8);
  for (int n = times(rng); n > 0; --n) {
    std::uniform_int_distribution<size_t> at(0, s.size());
    const size_t p = at(rng);
    switch (op(rng)) {
      case 0:  // insert a token
        s.insert(p, kTokens[pick(rng)]);
        break;
      case 1:  // delete a stretch
        s.erase(p, std::uniform_int_distribution<size_t>(0, 12)(rng));
        break;
      case 2:  // replace a character
        if (p < s.size()) s[p] = static_cast<char>(std::uniform_int_distribution<int>(1, 255)(rng));
        break;
      case 3:  // duplicate the text (long statements, 16-bit positions)
        if (s.size() < 20000) s += s;
        break;
      case 4:  // cut the end
        s.resize(p);
        break;
      default:  // swap case of a stretch
        for (size_t i = p; i < s.size() && i < p + 10; ++i) {
          if (s[i] >= 'a' && s[i] <= 'z')
            s[i] = static_cast<char>(s[i] - 32);
          else if (s[i] >= 'A' && s[i] <= 'Z')
            s[i] = static_cast<char>(s[i] + 32);
        }
        break;
    }
  }
  return s;
}

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
    tables += report.tables.size();
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
    // The only box a garbled statement may raise is the parser's own:
    // every condition builder the dispatch runs sends fixed SQL.
    for (const Message& m : rossi.sink->messages) ASSERT_EQ(m.title, "Parser Error") << m.text;
    rossi.sink->messages.clear();
  }

  // The counts appear in the test report (--gtest_output=xml:...).
  void RecordOutcomes(int runs) {
    RecordProperty("runs", runs);
    RecordProperty("rewritten", static_cast<int>(outcomes[1]));
    RecordProperty("derived", static_cast<int>(outcomes[2]));
    RecordProperty("parser_error", static_cast<int>(outcomes[3]));
    RecordProperty("run_time_error", static_cast<int>(outcomes[4]));
    RecordProperty("tables", static_cast<int>(tables));
  }

  testing::RewriterSession rossi{"ROSSI"};
  size_t tables = 0;
  size_t outcomes[5] = {0, 0, 0, 0, 0};
};

TEST_F(RewriteFuzz, RandomStatements) {
  std::mt19937 rng(1234567);
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  int runs = 0;
  for (; runs < 20000 && Clock::now() < deadline; ++runs) {
    Check(RandomStatement(rng, runs % 10 == 0 ? 400 : 40));
    if (HasFatalFailure()) return;
  }
  EXPECT_GE(runs, 300);
  RecordOutcomes(runs);
  // The generator reaches every way a call can end.
  EXPECT_GT(outcomes[static_cast<size_t>(ScanOutcome::kRewritten)], 0U);
  EXPECT_GT(outcomes[static_cast<size_t>(ScanOutcome::kParserError)], 0U);
  EXPECT_GT(outcomes[static_cast<size_t>(ScanOutcome::kRunTimeError)], 0U);
  EXPECT_GT(outcomes[static_cast<size_t>(ScanOutcome::kDerivedTable)], 0U);
}

TEST_F(RewriteFuzz, MutatedHostStatements) {
  std::mt19937 rng(7654321);
  const auto deadline = Clock::now() + std::chrono::seconds(20);
  std::uniform_int_distribution<size_t> pick(0, kCorpus.size() - 1);
  int runs = 0;
  for (; runs < 10000 && Clock::now() < deadline; ++runs) {
    Check(Mutate(rng, kCorpus[pick(rng)]));
    if (HasFatalFailure()) return;
  }
  EXPECT_GE(runs, 300);
  RecordOutcomes(runs);
}

TEST_F(RewriteFuzz, LongStatementsAroundThe16BitLimit) {
  // A statement beyond 32767 characters either keeps its keywords within
  // the 16-bit range or ends silently with "".
  for (size_t pad : {32700U, 32760U, 32770U, 40000U, 70000U}) {
    const std::string s =
        "SELECT " + std::string(pad, 'X') + " FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = 1";
    Check(s);
    if (HasFatalFailure()) return;
    Check("SELECT * FROM PD68_PROGETTI WHERE PD68_DESCR <> '" + std::string(pad, 'Y') + "'");
    if (HasFatalFailure()) return;
  }
}

}  // namespace
}  // namespace zarvik
