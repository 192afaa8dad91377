// Random and mutated statements through ElaboraStrSQL: no crash, no hang,
// nothing thrown, and every answer is one the rewriter can give. The seed
// is fixed and the run is bounded in count and time.
#include <gtest/gtest.h>

#include <cctype>
#include <chrono>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "parser/rewriter/scan_report.h"

namespace zarvik {
namespace {

using Clock = std::chrono::steady_clock;
using rewriter::ScanOutcome;

// Pieces the generator glues together, '|'-separated: keywords in both
// cases, table names of every prefix the dispatch knows, aliases, literals
// and the characters the scanner looks at.
std::vector<std::string> Tokens() {
  const std::string all =
      "SELECT|select|FROM|from|WHERE|where|UNION|union|JOIN|join|INNER|LEFT|left|RIGHT|"
      "OUTER|ON|on|GROUP BY|group by|ORDER BY|ORDER  BY|order\r\nby|WITH(NOLOCK)|WITH|{oj |"
      "}|AND|OR|IN|*|CG16_ANAGRAFICA|CG18_DITTE|CG44_CLIFOR|CG31_SEDI|CG33_TABCAU|"
      "CG41_TESMOVCONT|VCG42_MOVCONT|DO11_DOCTESTATA|MG07_MACROAREE|MG08_AREE|MG09_ZONE|"
      "MG10_MACROCAT|MG11_CATEGORIE|MG12_SOTTOCAT|MG17_AGENTI|MG31_RAGGRCF1|MG36_DOCUMENTI|"
      "MG3N_TRASFDOC|MG58_DEPOSITI|MG0F_BLMPARAM|PD68_PROGETTI|PD0C_NODO|VPD0C_NODIPROG|"
      "PD90_SIMULAZIONI|FW34_VISSOURCE|FW36_VISMATRICI|FW57_STPLIBERE|XX99_ALTRO|A|B|C.|D|"
      "X1|CG44_TIPOCF = 0|CG44_TIPOCF = 1|'|'UNION'|'SELECT'|(|)|,| , | | | |  |\t|\r\n|=|"
      "1|0|.|_|-|\xC3\xA8";
  std::vector<std::string> tokens;
  for (size_t at = 0, bar = 0; bar != std::string::npos; at = bar + 1) {
    bar = all.find('|', at);
    tokens.push_back(all.substr(at, bar - at));
  }
  return tokens;
}
const std::vector<std::string> kTokens = Tokens();

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
  using Pick = std::uniform_int_distribution<size_t>;
  using Op = std::function<void(size_t)>;
  const Op ops[] = {
      [&](size_t p) { s.insert(p, kTokens[Pick(0, kTokens.size() - 1)(rng)]); },
      [&](size_t p) { s.erase(p, Pick(0, 12)(rng)); },
      [&](size_t p) { s.resize(p); },
      // Long statements, for the 16-bit positions.
      [&](size_t) { s += s.size() < 20000 ? s : ""; },
      [&](size_t p) {
        if (p < s.size()) s[p] = static_cast<char>(Pick(1, 255)(rng));
      },
      [&](size_t p) {  // swap the case of a stretch
        for (size_t i = p; i < s.size() && i < p + 10; ++i) {
          if (std::isalpha(static_cast<unsigned char>(s[i]))) s[i] = static_cast<char>(s[i] ^ 0x20);
        }
      },
  };
  for (int n = std::uniform_int_distribution<int>(1, 8)(rng); n > 0; --n) {
    const size_t p = Pick(0, s.size())(rng);
    ops[Pick(0, 5)(rng)](p);
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

TEST_F(RewriteFuzz, RandomStatements) {
  std::mt19937 rng(1234567);
  int runs = 0;
  Fuzz(20000, [&] { return RandomStatement(rng, ++runs % 10 == 0 ? 400 : 40); });
  // The generator reaches every way a call can end.
  for (ScanOutcome outcome : {ScanOutcome::kRewritten, ScanOutcome::kParserError,
                              ScanOutcome::kRunTimeError, ScanOutcome::kDerivedTable}) {
    EXPECT_GT(outcomes[static_cast<size_t>(outcome)], 0U);
  }
}

TEST_F(RewriteFuzz, MutatedHostStatements) {
  std::mt19937 rng(7654321);
  std::uniform_int_distribution<size_t> pick(0, kCorpus.size() - 1);
  Fuzz(10000, [&] { return Mutate(rng, kCorpus[pick(rng)]); });
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
