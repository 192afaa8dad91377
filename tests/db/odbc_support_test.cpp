#include "db/odbc_support.h"

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include <tuple>

namespace zarvik::db::odbc {
namespace {

using D = ParameterDirection;

TEST(OdbcSupportTest, ColumnAndParameterTypes) {
  // SQL type, driver's type name, BIT is an integer, the kind.
  const std::vector<std::tuple<int, const char*, bool, ColumnKind>> columns = {
      {SQL_BIT, "bit", false, ColumnKind::kBoolean},
      {SQL_NUMERIC, "numeric", false, ColumnKind::kFloat},
      {SQL_VARCHAR, "money", false, ColumnKind::kFloat},
      {SQL_WLONGVARCHAR, "ntext", false, ColumnKind::kWideText},
      {SQL_VARBINARY, "varbinary", false, ColumnKind::kBinary},
      {SQL_TYPE_DATE, "date", false, ColumnKind::kDateTime},
      {-154, "time", false, ColumnKind::kTime},  // SQL Server time(n)
      {SQL_GUID, "uniqueidentifier", false, ColumnKind::kText}};
  for (const auto& [sql_type, name, bit_is_integer, kind] : columns) {
    EXPECT_EQ(ClassifyColumn(sql_type, name, bit_is_integer), kind) << name;
  }
  const std::vector<std::pair<int, int>> parameters = {
      {SQL_TINYINT, adtype::kSmallInt}, {SQL_INTEGER, adtype::kInteger},
      {SQL_BIGINT, adtype::kDouble},    {SQL_DECIMAL, adtype::kDouble},
      {SQL_BIT, adtype::kBoolean},      {SQL_TYPE_DATE, adtype::kDate},
      {SQL_WVARCHAR, adtype::kVarChar}, {SQL_CHAR, adtype::kVarChar}};
  for (const auto& [type, ad] : parameters) EXPECT_EQ(AdTypeFromSqlType(type), ad) << type;
  std::vector<std::optional<D>> directions;
  for (int column_type : {SQL_PARAM_INPUT, SQL_PARAM_OUTPUT, SQL_PARAM_INPUT_OUTPUT,
                          SQL_RETURN_VALUE, SQL_RESULT_COL, SQL_PARAM_TYPE_UNKNOWN}) {
    directions.push_back(DirectionFromColumnType(column_type));
  }
  EXPECT_EQ(directions,
            (std::vector<std::optional<D>>{D::kInput, D::kOutput, D::kInputOutput, D::kReturnValue,
                                           std::nullopt, std::nullopt}));
  EXPECT_EQ(ParameterName("@GruppoPDC") + ParameterName("GruppoPDC"), "@GruppoPDC@GruppoPDC");
}

TEST(OdbcSupportTest, CallEscapesNamesPatternsAndDiagnostics) {
  const auto p = [](const char* name, D direction) {
    return ParameterInfo{name, adtype::kInteger, direction, Variant()};
  };
  EXPECT_EQ(BuildProcedureCall("SP_X", {}), "{call SP_X}");
  EXPECT_EQ(BuildProcedureCall("dbo.SP_Y",
                               {p("@A", D::kInput), p("@B", D::kOutput), p("@C", D::kInputOutput)}),
            "{call dbo.SP_Y(?, ?, ?)}");
  // The return value, as SQL Server describes it first, goes before "call".
  EXPECT_EQ(BuildProcedureCall("SP_X", {p("@RETURN_VALUE", D::kReturnValue), p("@A", D::kInput),
                                        p("@B", D::kOutput)}),
            "{? = call SP_X(?, ?)}");
  EXPECT_EQ(BuildProcedureCall("SP_X", {p("@RETURN_VALUE", D::kReturnValue)}), "{? = call SP_X}");
  std::string split;  // schema|name of each
  for (const char* input :
       {"SPFW_X", "dbo.SPFW_X", "[my.schema].[odd.name]", "erp.dbo.SPFW_X", "[SPFW_X]"}) {
    split += SplitProcedureName(input).schema + "|" + SplitProcedureName(input).name + " ";
  }
  EXPECT_EQ(split, "|SPFW_X dbo|SPFW_X my.schema|odd.name dbo|SPFW_X |SPFW_X ");
  EXPECT_EQ(EscapeSearchPattern("SPFW_Get%Info", "\\") + " " + EscapeSearchPattern("a\\b", "\\") +
                " " + EscapeSearchPattern("SPFW_X", ""),
            "SPFW\\_Get\\%Info a\\\\b SPFW_X");
  EXPECT_EQ(FormatDiagnostics({{"42S02", 208, "Invalid object name 'X'."}, {"42000", 8180, "Y"}},
                              "unused") +
                "|" + FormatDiagnostics({}, "ODBC call SQLFetch failed"),
            "[42S02] (native 208) Invalid object name 'X'.\n[42000] (native 8180) Y|ODBC call "
            "SQLFetch failed");
}

TEST(OdbcSupportTest, DateFieldsConvertToOleDates) {
  const std::vector<std::pair<DateTimeFields, double>> cases = {
      {{1899, 12, 30, 0, 0, 0, 0}, 0.0},
      {{2024, 3, 5, 6, 0, 0, 0}, 45356.25},
      {{1899, 12, 29, 6, 0, 0, 0}, -1.25},  // before day 0 the time still counts forward
      {{1899, 12, 28, 12, 0, 0, 0}, -2.5}};
  for (const auto& [fields, oa] : cases) {
    EXPECT_DOUBLE_EQ(OleDateFromFields(fields), oa);
    EXPECT_EQ(DateText(FieldsFromOleDate(oa)), DateText(fields)) << oa;
  }
  // Milliseconds are kept, and a time never spills into the next day.
  const double oa = OleDateFromFields({2024, 3, 5, 10, 11, 12, 345000000});
  EXPECT_NEAR(oa, 45356 + (10 * 3600 + 11 * 60 + 12.345) / 86400.0, 1e-9);
  EXPECT_EQ(FieldsFromOleDate(oa).fraction_ns, 345000000u);
  EXPECT_EQ(DateText(FieldsFromOleDate(45356 + 0.9999999999)), "2024-03-05 23:59:59");
  EXPECT_EQ(DateText({2024, 3, 5, 0, 0, 0, 0}) + "|" + DateText({2024, 3, 5, 7, 8, 9, 500000000}) +
                "|" + DateText({999, 1, 2, 0, 0, 1, 0}),
            "2024-03-05|2024-03-05 07:08:09|0999-01-02 00:00:01");  // no midnight time
}

TEST(OdbcSupportTest, NamedParametersBecomeMarkersOutsideQuotesAndComments) {
  // Body, marked text, names in marker order.
  const std::vector<std::tuple<const char*, const char*, std::vector<std::string>>> cases = {
      {"SELECT :Id + :B_2 WHERE :Id > 0", "SELECT ? + ? WHERE ? > 0", {"Id", "B_2", "Id"}},
      {"SELECT ':A', \"c:B\", [d:C], `e:D`, :E", "SELECT ':A', \"c:B\", [d:C], `e:D`, ?", {"E"}},
      {"SELECT 'it''s :x' || :y", "SELECT 'it''s :x' || ?", {"y"}},
      {"SELECT 1 -- :x\n, :y", "SELECT 1 -- :x\n, ?", {"y"}},
      {"SELECT /* :x */ :_u", "SELECT /* :x */ ?", {"_u"}},
      {"SELECT time('10:30'), 1:2", "SELECT time('10:30'), 1:2", {}},
      {"SELECT 'open :x", "SELECT 'open :x", {}}};
  for (const auto& [body, sql, names] : cases) {
    const MarkedSql marked = ReplaceNamedParameters(body);
    EXPECT_EQ(marked.sql, sql);
    EXPECT_EQ(marked.names, names) << body;
  }
}

}  // namespace
}  // namespace zarvik::db::odbc
