// The scanner's text functions one by one: what each finds, where, and the
// quirks it keeps.
#include "parser/rewriter/statement_scanner.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <random>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::rewriter {

// Comparison and printing for the join tests (found by argument lookup).
bool operator==(const JoinedTable& a, const JoinedTable& b) {
  return a.prefix == b.prefix && a.alias == b.alias;
}

std::ostream& operator<<(std::ostream& out, const JoinedTable& j) {
  return out << "{" << j.prefix << ", " << j.alias << "}";
}

namespace {

// 1-based position of the first occurrence of `what` in `text`.
int16_t At(const std::string& text, const std::string& what) {
  const size_t at = text.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  return static_cast<int16_t>(at + 1);
}

// The position of the M of the first "FROM" (what the rewriter hands on).
int16_t MOfFrom(const std::string& text) {
  return static_cast<int16_t>(vb::InStr(1, text, "FROM", vb::Compare::kText) + 3);
}

int16_t FirstJoin(const std::string& text) {
  return static_cast<int16_t>(vb::InStr(1, text, "JOIN", vb::Compare::kText));
}

StatementText Text(std::string text) { return StatementText(std::move(text)); }

int32_t ErrorNumberOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const VbError& e) {
    return e.Number();
  }
  return 0;
}

TEST(LastOrderByPos, OnlyTheLastMatchIsConvertedTo16Bits) {
  EXPECT_EQ(ErrorNumberOf([] { LastOrderByPos(Text(std::string(40000, 'x') + " ORDER BY A")); }),
            vberr::kOverflow);
  EXPECT_EQ(LastOrderByPos(Text("A ORDER BY B ORDER BY C " + std::string(40000, 'x'))), 14);
}

// The hand-written matcher answers what the regular expression answers.
TEST(LastOrderByPos, AgreesWithTheRegularExpression) {
  const std::regex pattern(R"(\bORDER\W+(?:\w+\W+){0,0}?BY\b)", std::regex::icase);
  const std::vector<std::string> pieces = {"ORDER", "order", "Order", "BY", "by", " ", "  ",
                                           "_",     "x",     "\r\n",  "-",  "1",  "B", "O",
                                           "(",     ")",     "R",     "Y",  ".",  "'"};
  std::mt19937 rng(20240305);
  std::uniform_int_distribution<size_t> pick(0, pieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 12);
  for (int i = 0; i < 5000; ++i) {
    std::string text;
    for (int k = length(rng); k > 0; --k) text += pieces[pick(rng)];
    int16_t expected = 0;
    for (auto m = std::sregex_iterator(text.begin(), text.end(), pattern);
         m != std::sregex_iterator(); ++m) {
      expected = static_cast<int16_t>(m->position() + 1);
    }
    ASSERT_EQ(LastOrderByPos(Text(text)), expected) << "[" << text << "]";
  }
}

TEST(StatementScanner, NextNonBlankAfterWordSkipsTheWordAtPosThenTheBlanks) {
  EXPECT_EQ(NextNonBlankAfterWord(Text("SELECT * FROM   T1"), 13), "T");
  // The last character of the text is not answered.
  EXPECT_EQ(NextNonBlankAfterWord(Text("SELECT * FROM   T"), 13), "");
  EXPECT_FALSE(ReadsDerivedTable(Text("SELECT * FROM ("), 13));
  // A blank at pos restarts at position 1 (deliberate): the scan then
  // answers the second character, not the word after the blank.
  EXPECT_EQ(NextNonBlankAfterWord(Text("AB CD EF"), 3), "B");
}

TEST(StatementScanner, FindMainFromPassesOverTheFromsOfSelectListSubQueries) {
  const struct {
    std::string text;
    MainFrom expected;
  } cases[] = {
      {"SELECT (SELECT 1 FROM U) A, (SELECT 2 FROM V) B FROM T", MainFrom::kFound},
      {"SELECT A FROM T WHERE B IN (SELECT C FROM U)", MainFrom::kFound},
      {"SELECT 'SELECT' FROM T", MainFrom::kFound},  // quoted SELECT ignored
      {"select a from t", MainFrom::kFound},
      {"SELECT 1", MainFrom::kNoFrom},
      // A sub-query nested in a select-list sub-query.
      {"SELECT (SELECT (SELECT 1 FROM A) FROM B) FROM C", MainFrom::kUnpaired},
      // Deliberate: a later SELECT without a FROM counts as unpaired too.
      {"SELECT A FROM T WHERE B IN (SELECT 1)", MainFrom::kUnpaired},
  };
  for (const auto& c : cases) {
    int16_t from = -1;
    EXPECT_EQ(FindMainFrom(Text(c.text), from), c.expected) << c.text;
    if (c.expected == MainFrom::kFound) {
      EXPECT_EQ(from, At(c.text, c.text[0] == 's' ? "from t" : "FROM T")) << c.text;
    }
  }
}

TEST(StatementScanner, ReadFromListCollectsThePrefixesOfTheFromList) {
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"FROM MG36_DOCUMENTI A, CG44_CLIFOR B, PD68_PROGETTI C WHERE X = 1",
       {"MG36", "CG44", "PD68"}},
      {"FROM MG36_DOCUMENTI,CG44_CLIFOR", {"MG36", "CG44"}},
      {"FROM   MG36_DOCUMENTI   A,   CG44_CLIFOR", {"MG36", "CG44"}},
      // Deliberate: a blank before the comma ends the list.
      {"FROM MG36_DOCUMENTI A , CG44_CLIFOR B", {"MG36"}},
      {"FROM MG36_DOCUMENTI A INNER JOIN CG44_CLIFOR B ON 1 = 1", {"MG36"}},
      {"FROM MG36_DOCUMENTI A, PD68_PROGETTI B, MG36_DOCUMENTI C", {"MG36", "PD68"}},
      // CG16, CG44 and CG18 stand for one customer/supplier and company test.
      {"FROM CG44_CLIFOR A, CG16_ANAGRAFICA B", {"CG44"}},
      {"FROM CG18_DITTE A, CG16_ANAGRAFICA B", {"CG18"}},
      {"FROM CG16_ANAGRAFICA A, CG18_DITTE B, CG44_CLIFOR C", {"CG18", "CG44"}},
      {"FROM CG16_ANAGRAFICA A", {"CG16"}},
      // Five-letter prefixes of two views; lower case is not one of them.
      {"FROM VCG42_MOVCONT V, VPD0C_NODIPROG N", {"VCG42", "VPD0C"}},
      {"FROM vcg42_movcont V", {"vcg4"}},
      // The ODBC outer-join escape.
      {"FROM {oj   MG36_DOCUMENTI D LEFT OUTER JOIN CG44_CLIFOR C ON 1 = 1}", {"MG36"}},
  };
  for (const auto& [tail, expected] : cases) {
    const std::string s = "SELECT * " + tail;
    int16_t from = MOfFrom(s);
    EXPECT_EQ(ReadFromList(Text(s), from), expected) << s;
  }
  // The FROM position moves past the first prefix.
  const std::string s = "SELECT * FROM  MG36_DOCUMENTI D, CG44_CLIFOR C";
  int16_t from = MOfFrom(s);
  ReadFromList(Text(s), from);
  EXPECT_EQ(from, At(s, "_DOCUMENTI"));
}

TEST(StatementScanner, MainWherePassesOverTheWhereOfEverySubQueryBeforeIt) {
  const struct {
    std::string text, first_where, main_where;  // main_where "" = taken as no WHERE
  } cases[] = {
      {"SELECT * FROM T INNER JOIN (SELECT K FROM U WHERE U.X = 1) S ON S.K = T.K WHERE T.Y = 2",
       "WHERE U.X", "WHERE T.Y"},
      {"SELECT * FROM T WHERE T.Y IN (SELECT K FROM U WHERE U.X = 1)", "WHERE T.Y", "WHERE T.Y"},
      // A sub-query without a WHERE of its own before the main WHERE makes
      // the scanner skip the main one as well.
      {"SELECT * FROM T INNER JOIN (SELECT K FROM U) S ON S.K = T.K WHERE T.Y = 2", "WHERE", ""},
  };
  for (const auto& c : cases) {
    int16_t from = MOfFrom(c.text);
    ReadFromList(Text(c.text), from);
    EXPECT_EQ(MainWherePos(Text(c.text), from, At(c.text, c.first_where)),
              c.main_where.empty() ? 0 : At(c.text, c.main_where))
        << c.text;
  }
}

TEST(StatementScanner, FirstTableAliasIsTheWordAfterTheFirstTableWhenAJoinFollows) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"FROM MG36_DOCUMENTI D INNER JOIN CG44_CLIFOR C ON 1 = 1", "D."},
      {"FROM MG36_DOCUMENTI D", ""},  // no JOIN: no alias
      {"FROM MG36_DOCUMENTI LEFT JOIN CG44_CLIFOR C ON 1 = 1", ""},
      {"FROM MG36_DOCUMENTI JOIN CG44_CLIFOR C ON 1 = 1", ""},
      {"FROM MG36_DOCUMENTI WITH (NOLOCK) INNER JOIN CG44_CLIFOR C ON 1 = 1", ""},
      {"from mg36_documenti d inner join cg44_clifor c on 1 = 1", "d."},
      // Deliberate: a bare four-letter table name gives its alias away.
      {"FROM CG18 X INNER JOIN CG44_CLIFOR C ON 1 = 1", ""},
  };
  for (const auto& [tail, expected] : cases) {
    const std::string s = "SELECT * " + tail;
    int16_t from = MOfFrom(s);
    ReadFromList(Text(s), from);
    EXPECT_EQ(FirstTableAlias(Text(s), from, FirstJoin(s)), expected) << s;
  }
}

TEST(StatementScanner, CutsOrderByGroupByAndWhereKeepingTheCharacterBefore) {
  const std::string text = "SELECT A, COUNT(*) FROM T WHERE B = 1 GROUP BY A ORDER   BY A";
  StatementText s = Text(text);
  EXPECT_EQ(CutOrderBy(s), " ORDER   BY A");
  EXPECT_EQ(CutGroupBy(s), " GROUP BY A");
  EXPECT_EQ(CutWhere(s, At(text, "WHERE")), " B = 1");
  EXPECT_EQ(s.Segment(), "SELECT A, COUNT(*) FROM T ");
  // Nothing to cut: the statement stays as it is.
  s = Text("SELECT A FROM T");
  EXPECT_EQ(std::string(CutOrderBy(s)) + std::string(CutGroupBy(s)), "");
  EXPECT_EQ(CutWhere(s, 0), "");
  EXPECT_EQ(s.Segment(), "SELECT A FROM T");
  // A GROUP BY followed by " ON " belongs to a joined sub-query and stays.
  s = Text("SELECT * FROM T INNER JOIN (SELECT K FROM U GROUP BY K) S ON S.K = T.K");
  EXPECT_EQ(CutGroupBy(s), "");
  // Exactly one blank between GROUP and BY; any case.
  s = Text("SELECT A FROM T GROUP  BY A");
  EXPECT_EQ(CutGroupBy(s), "");
  s = Text("select a from t group by a");
  EXPECT_EQ(CutGroupBy(s), " group by a");
  // A keyword at the first position raises "invalid procedure call".
  s = Text("ORDER BY A");
  EXPECT_EQ(ErrorNumberOf([&] { CutOrderBy(s); }), vberr::kInvalidProcedureCall);
  s = Text("GROUP BY A");
  EXPECT_EQ(ErrorNumberOf([&] { CutGroupBy(s); }), vberr::kInvalidProcedureCall);
}

TEST(StatementScanner, CustomerKindHintNeedsOneBlankEachSideAndUpperCase) {
  const std::vector<std::pair<std::string, int16_t>> cases = {
      {" WHERE (  A = 1 ) ", -1},
      {" WHERE (  CG44_TIPOCF = 0 ) ", 0},
      {" WHERE (  C.CG44_TIPOCF = 1 AND X = 2 ) ", 1},
      {" WHERE (  CG44_TIPOCF=0 ) ", -1},
      {" WHERE (  CG44_TIPOCF  = 0 ) ", -1},
      {" WHERE (  cg44_tipocf = 0 ) ", -1},
      {" WHERE (  CG44_TIPOCF = 1 OR CG44_TIPOCF = 0 ) ", 0},
      {"", -1},
  };
  for (const auto& [tail, expected] : cases) EXPECT_EQ(CustomerKindHint(tail), expected) << tail;
}

TEST(StatementScanner, ReadJoinsCollectsInnerAndRightJoinsWithTheirAliases) {
  const std::string head = "SELECT * FROM DO11_DOCTESTATA D ";
  const struct {
    std::string text;
    std::vector<JoinedTable> expected;
    std::string from_table = "DO11";
  } cases[] = {
      {head + "INNER JOIN CG44_CLIFOR C ON C.K = D.K INNER JOIN MG36_DOCUMENTI M ON M.K = D.K",
       {{"CG44", "C."}, {"MG36", "M."}}},
      {head + "RIGHT JOIN CG44_CLIFOR C ON C.K = D.K", {{"CG44", "C."}}},
      {head + "JOIN   CG44_CLIFOR    C ON C.K = D.K", {{"CG44", "C."}}},
      // No alias: ON or a table hint follows the name (in any case).
      {head + "inner join CG44_CLIFOR on 1 = 1", {{"CG44", ""}}},
      {head + "INNER JOIN CG44_CLIFOR WITH(NOLOCK) ON 1 = 1", {{"CG44", ""}}},
      {head + "INNER JOIN CG44_CLIFOR WITH (NOLOCK) ON 1 = 1", {{"CG44", ""}}},
      // The optional side of a LEFT join is never restricted; the test is
      // case-sensitive (deliberate), so a lower-case left join is.
      {head + "LEFT JOIN CG44_CLIFOR C ON 1 = 1", {}},
      {head + "left outer join CG44_CLIFOR C ON 1 = 1", {{"CG44", "C."}}},
      // "LEFT" anywhere in the 15 characters before JOIN counts.
      {"SELECT * FROM DO11_DOCTESTATA LEFTIE INNER JOIN CG44_CLIFOR C ON 1 = 1", {}},
      // A view is taken by its first four letters.
      {head + "INNER JOIN VPD0C_NODIPROG N ON 1 = 1", {{"VPD0", "N."}}},
      // Already restricted through the FROM list.
      {head + "INNER JOIN DO11_DOCTESTATA E ON 1 = 1", {}},
      {"SELECT * FROM MG3N_TRASFDOC X INNER JOIN MG36_DOCUMENTI Y ON 1 = 1", {}, "MG3N"},
      {"SELECT * FROM CG44_CLIFOR X INNER JOIN CG16_ANAGRAFICA Y ON 1 = 1", {}, "CG44"},
      // ... or through an earlier join; deliberate: the duplicate's alias
      // replaces the alias of the join before it.
      {head + "INNER JOIN CG44_CLIFOR C ON 1 = 1 INNER JOIN CG44_CLIFOR C2 ON 1 = 1",
       {{"CG44", "C2."}}},
      {head + "INNER JOIN MG3N_TRASFDOC T ON 1 = 1 INNER JOIN MG36_DOCUMENTI M ON 1 = 1",
       {{"MG3N", "M."}}},
      // MG3N after MG36 is not a duplicate.
      {head + "INNER JOIN MG36_DOCUMENTI M ON 1 = 1 INNER JOIN MG3N_TRASFDOC T ON 1 = 1",
       {{"MG36", "M."}, {"MG3N", "T."}}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ReadJoins(Text(c.text), FirstJoin(c.text), {c.from_table}), c.expected) << c.text;
  }
  // A JOIN within the first 15 characters raises "invalid procedure call".
  const std::string s = "SELECT*FROM A JOIN B ON 1 = 1";
  ASSERT_EQ(vb::InStr(1, s, "JOIN"), 15);
  EXPECT_EQ(ErrorNumberOf([&] { ReadJoins(Text(s), FirstJoin(s), {"A"}); }),
            vberr::kInvalidProcedureCall);
  const std::string t = "SELECT* FROM A JOIN B ON 1 = 1";
  EXPECT_EQ(ErrorNumberOf([&] { ReadJoins(Text(t), FirstJoin(t), {"A"}); }), 0);
}

}  // namespace
}  // namespace zarvik::rewriter
