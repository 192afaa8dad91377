// Area and grouping lists: the statement on VFW32_RVKCLIFOR, both forms of
// the condition with their quirks, and what the SQL form does inside a real
// statement.
#include "filtroquery/area_lists.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "filtroquery/clsfw_filtroquery.h"
#include "filtroquery/filtroquery_test_support.h"
#include "platform/vb_error.h"
#include "platform/vb_string.h"

namespace zarvik::filtroquery {
namespace {

using testing::FilterOnDemo;

TEST(AreaListFilter, OneFilterPerLevel) {
  const std::vector<std::pair<AreaList, std::string>> cases = {
      {AreaList::kMacroArea,
       " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kMiddleArea,
       " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODMIDDLE <> '' AND FW32_CODRAGG = ''"},
      {AreaList::kArea, " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODRAGG <> ''"},
      {AreaList::kGrouping1,
       " AND FW32_TIPORAGG = 'RAGG1'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kGrouping2,
       " AND FW32_TIPORAGG = 'RAGG2'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
      {AreaList::kGrouping3,
       " AND FW32_TIPORAGG = 'RAGG3'  AND FW32_CODMIDDLE = '' AND FW32_CODRAGG = ''"},
  };
  for (const auto& [list, expected] : cases) {
    EXPECT_EQ(AreaListFilter(list), expected) << static_cast<int>(list);
  }
  EXPECT_STREQ(AreaListCodeColumn(AreaList::kMacroArea), "FW32_CODMACRO");
  EXPECT_STREQ(AreaListCodeColumn(AreaList::kMiddleArea), "FW32_CODMIDDLE");
  EXPECT_STREQ(AreaListCodeColumn(AreaList::kArea), "FW32_CODRAGG");
  EXPECT_STREQ(AreaListCodeColumn(AreaList::kGrouping1), "FW32_CODMACRO");
  EXPECT_STREQ(AreaListCodeColumn(AreaList::kGrouping3), "FW32_CODMACRO");
}

TEST(QueryRvkCliFor, MacroAreaStatementAsSent) {
  const std::string expected =
      "SELECT * FROM VFW32_RVKCLIFOR WHERE FW32_ID_FW07 = 5  AND FW32_TIPORAGG = 'AREA'  AND "
      "FW32_CODMIDDLE = '' AND FW32_CODRAGG = '' AND FW32_FLGABILITATO = 0 AND FW32_DITTA = 1 "
      "ORDER BY FW32_DITTA, FW32_TIPOCF , FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO";
  EXPECT_EQ(QueryRvkCliFor(5, AreaListExtra(AreaList::kMacroArea, Variant(int32_t{1}))), expected);

  FilterOnDemo f;
  f.Filter("MG07_MACROAREA");
  ASSERT_FALSE(f.Sent().empty());
  EXPECT_EQ(f.Sent().back(), expected);
}

TEST(QueryRvkCliFor, CompanyIsPastedAsItsText) {
  EXPECT_EQ(AreaListExtra(AreaList::kArea, Variant("001")),
            " AND FW32_TIPORAGG = 'AREA'  AND FW32_CODRAGG <> '' AND FW32_FLGABILITATO = 0 AND "
            "FW32_DITTA = 001");
  EXPECT_EQ(QueryRvkCliFor(-1, ""),
            "SELECT * FROM VFW32_RVKCLIFOR WHERE FW32_ID_FW07 = -1  ORDER BY FW32_DITTA, "
            "FW32_TIPOCF , FW32_CODRAGG , FW32_CODMIDDLE , FW32_CODMACRO");
}

struct ListCase {
  const char* field;
  const char* sql;
  const char* report;  // with the report field "{F}"
};

TEST(AreaLists, RossiInCompanyOne) {
  // ROSSI: macro-area SUD; the supplier area SUD/SU (the lists do not look
  // at the customer/supplier kind); the zone NORD/NO/TO; grouping 3 X2 with
  // its code in FW32_CODMACRO. His groupings 1 and 2 carry their codes in
  // FW32_CODRAGG, which these lists do not read; CENTRO is enabled.
  const std::vector<ListCase> cases = {
      {"MG07_MACROAREA", "MG07_MACROAREA NOT IN (SUD')", " (NOT ({F} IN [SUD]))"},
      {"MG08_AREA", "MG08_AREA NOT IN (SU')", " (NOT ({F} IN [SU]))"},
      {"MG09_ZONA", "MG09_ZONA NOT IN (TO')", " (NOT ({F} IN [TO]))"},
      {"CG44_ZONA_MG09", "CG44_ZONA_MG09 NOT IN (TO')", " (NOT ({F} IN [TO]))"},
      {"MG31_CODRAGGRCF1", "", ""},
      {"MG32_CODRAGGRCF2", "", ""},
      {"MG33_CODRAGGRCF3", "MG33_CODRAGGRCF3 NOT IN (X2')", " (NOT ({F} IN [X2]))"},
  };
  FilterOnDemo f;
  for (const ListCase& c : cases) {
    f.Filter(c.field, Variant("{F}"));
    EXPECT_EQ(f.Sql(), c.sql) << c.field;
    EXPECT_EQ(f.Report(), c.report) << c.field;
  }
}

TEST(AreaLists, TwoCodesInTheFormTheHostReceives) {
  // BIANCHI has nothing of his own in company 1: give him N and S (in
  // reverse order, the statement sorts them), plus rows that must not count.
  FilterOnDemo f("BIANCHI");
  f.Setup(
      "INSERT INTO FW32_RVKCLIFOR (FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, "
      "FW32_CODMACRO, FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO) VALUES "
      "(6, 1, 0, 'AREA', 'S', '', '', 0), (6, 1, 0, 'AREA', 'N', '', '', 0), "
      "(6, 1, 0, 'AREA', 'E', '', '', 1), (6, 2, 0, 'AREA', 'W', '', '', 0), "
      "(6, 1, 0, 'AREA', 'N', 'NO', '', 0)");
  f.Filter("MG07_MACROAREA", Variant("{MG07.MACROAREA}"));
  EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (N', 'S')");
  EXPECT_EQ(f.Report(), " (NOT ({MG07.MACROAREA} IN [N,S]))");
}

TEST(AreaLists, ThreeCodesAddOneQuotedCodeEach) {
  FilterOnDemo f("BIANCHI");
  f.Setup(
      "INSERT INTO FW32_RVKCLIFOR (FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, "
      "FW32_CODMACRO, FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO) VALUES "
      "(6, 1, 0, 'RAGG2', 'STD', '', '', 0), (6, 1, 0, 'RAGG2', 'VIP', '', '', 0), "
      "(6, 1, 0, 'RAGG2', 'ALT', '', '', 0)");
  f.Filter("MG32_CODRAGGRCF2", Variant("R"));
  EXPECT_EQ(f.Sql(), std::string("MG32_CODRAGGRCF2") + " NOT IN (" + "ALT" + "'" + ", '" + "STD" +
                         "'" + ", '" + "VIP" + "'" + ")");
  EXPECT_EQ(f.Report(), " (NOT (R IN [ALT,STD,VIP]))");
}

TEST(AreaLists, ReportFieldOmittedBlankOrGiven) {
  FilterOnDemo f;
  f.Filter("MG07_MACROAREA");  // omitted: the data field stands in
  EXPECT_EQ(f.Report(), " (NOT (MG07_MACROAREA IN [SUD]))");
  for (const Variant& blank : {Variant(""), Variant("   "), Variant::Null(), Variant()}) {
    f.Filter("MG07_MACROAREA", blank);
    EXPECT_EQ(f.Sql(), "MG07_MACROAREA NOT IN (SUD')");
    EXPECT_EQ(f.Report(), "");
  }
  f.Filter("MG07_MACROAREA", Variant("{@Zona}"));
  EXPECT_EQ(f.Report(), " (NOT ({@Zona} IN [SUD]))");
}

TEST(AreaLists, NothingRevokedInTheCurrentCompany) {
  FilterOnDemo f;
  f.filter->SetDittaCorrente(Variant(int32_t{demo::kOtherCompany}));
  for (const char* field : {"MG07_MACROAREA", "MG08_AREA", "MG09_ZONA", "MG33_CODRAGGRCF3"}) {
    f.Filter(field, Variant("R"));
    EXPECT_EQ(f.Sql(), "") << field;
    EXPECT_EQ(f.Report(), "") << field;
  }
}

TEST(AreaLists, DatabaseErrorEndsInTheBoxOfFiltroCondizione) {
  FilterOnDemo f;
  f.filter->SetDittaCorrente(Variant());  // "FW32_DITTA = " with nothing after it
  f.Filter("MG07_MACROAREA", Variant("R"));
  EXPECT_EQ(testing::BoxTags(f.Boxes()), std::vector<std::string>{"FiltroCondizione"});
  EXPECT_EQ(f.Sql(), "");
  EXPECT_EQ(f.Report(), "");
}

// The SQL form inside a statement on the demo database. The missing opening
// quote of the first code leaves an odd number of quotes, so the engine
// refuses the statement as the host receives it; with that one quote put
// back, the list keeps exactly the codes that are not revoked.
std::string WithOpeningQuote(const std::string& condition) {
  std::string repaired = condition;
  const size_t at = repaired.find("NOT IN (");
  if (at != std::string::npos) repaired.insert(at + 8, "'");
  return repaired;
}

std::vector<std::string> Sorted(std::vector<std::string> values) {
  std::sort(values.begin(), values.end());
  return values;
}

TEST(AreaListsOnTheDemo, ZoneCondition) {
  FilterOnDemo f;
  f.Filter("MG09_ZONA");
  const std::string head =
      "SELECT MG09_ZONA FROM MG09_ZONE WHERE MG09_DITTA_CG18 = 1 AND MG09_TIPOCF_MG08 = 0 AND ";
  EXPECT_THROW(f.db->Execute(head + f.Sql(), db::kCmdText), VbError);
  EXPECT_EQ(Sorted(f.Column(head + WithOpeningQuote(f.Sql()))),
            (std::vector<std::string>{"BA", "FI", "MI", "NA", "RM", "VE"}));
}

TEST(AreaListsOnTheDemo, MacroAreaConditionWithTwoCodes) {
  FilterOnDemo f("BIANCHI");
  f.Setup(
      "INSERT INTO FW32_RVKCLIFOR (FW32_ID_FW07, FW32_DITTA, FW32_TIPOCF, FW32_TIPORAGG, "
      "FW32_CODMACRO, FW32_CODMIDDLE, FW32_CODRAGG, FW32_FLGABILITATO) VALUES "
      "(6, 1, 0, 'AREA', 'NORD', '', '', 0), (6, 1, 0, 'AREA', 'SUD', '', '', 0)");
  f.Filter("MG07_MACROAREA");
  const std::string head =
      "SELECT MG07_MACROAREA FROM MG07_MACROAREE WHERE MG07_DITTA_CG18 = 1 AND MG07_TIPOCF = 0 "
      "AND ";
  EXPECT_THROW(f.db->Execute(head + f.Sql(), db::kCmdText), VbError);
  EXPECT_EQ(f.Column(head + WithOpeningQuote(f.Sql())), std::vector<std::string>{"CENTRO"});
}

TEST(AreaListsOnTheDemo, GroupingCondition) {
  FilterOnDemo f;
  f.Filter("MG33_CODRAGGRCF3");
  const std::string head =
      "SELECT MG33_CODRAGGRCF3 FROM MG33_RAGGRCF3 WHERE MG33_DITTA_CG18 = 1 AND ";
  EXPECT_THROW(f.db->Execute(head + f.Sql(), db::kCmdText), VbError);
  EXPECT_EQ(f.Column(head + WithOpeningQuote(f.Sql())), std::vector<std::string>{"X1"});
  // The customers whose third grouping survives (NULL is never IN a list).
  const std::string customers =
      "SELECT MG19_CLIFOR_CG44 FROM MG19_CLIFORVA WHERE MG19_DITTA_CG18 = 1 AND "
      "MG19_TIPOCF_CG44 = 0 AND ";
  const std::string condition =
      vb::Replace(WithOpeningQuote(f.Sql()), "MG33_CODRAGGRCF3", "MG19_RAGGCRF3");
  EXPECT_EQ(f.Column(customers + condition), (std::vector<std::string>{"1", "12"}));
}

}  // namespace
}  // namespace zarvik::filtroquery
