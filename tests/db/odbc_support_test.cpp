#include "db/odbc_support.h"

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include <string>
#include <vector>

namespace zarvik::db::odbc {
namespace {

TEST(OdbcSupportTest, ColumnKindsFollowTheReportedType) {
  struct Case {
    int sql_type;
    const char* type_name;
    bool bit_is_integer;
    ColumnKind expected;
  };
  const std::vector<Case> cases = {
      {SQL_BIGINT, "BIGINT", false, ColumnKind::kInteger},
      {SQL_BIT, "bit", false, ColumnKind::kBoolean},
      {SQL_BIT, "BIT", true, ColumnKind::kInteger},
      {SQL_NUMERIC, "numeric", false, ColumnKind::kFloat},
      // The SQLite driver reports declared DECIMAL columns as VARCHAR.
      {SQL_VARCHAR, "numeric(10,2)", true, ColumnKind::kFloat},
      {SQL_VARCHAR, "money", false, ColumnKind::kFloat},
      {SQL_VARCHAR, "VARCHAR(50)", true, ColumnKind::kText},
      {SQL_WLONGVARCHAR, "ntext", false, ColumnKind::kWideText},
      {SQL_VARBINARY, "varbinary", false, ColumnKind::kBinary},
      {SQL_TYPE_DATE, "date", false, ColumnKind::kDateTime},
      {-154, "time", false, ColumnKind::kTime},  // SQL Server time(n)
      {SQL_GUID, "uniqueidentifier", false, ColumnKind::kText},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.sql_type) + " " + c.type_name);
    EXPECT_EQ(ClassifyColumn(c.sql_type, c.type_name, c.bit_is_integer), c.expected);
  }
}

TEST(OdbcSupportTest, ParameterTypesNamesAndDirections) {
  const std::vector<std::pair<int, int>> cases = {
      {SQL_TINYINT, adtype::kSmallInt}, {SQL_INTEGER, adtype::kInteger},
      {SQL_BIGINT, adtype::kDouble},    {SQL_DECIMAL, adtype::kDouble},
      {SQL_BIT, adtype::kBoolean},      {SQL_TYPE_DATE, adtype::kDate},
      {SQL_WVARCHAR, adtype::kVarChar}, {SQL_CHAR, adtype::kVarChar}};
  for (const auto& [sql_type, expected] : cases) {
    EXPECT_EQ(AdTypeFromSqlType(sql_type), expected) << sql_type;
  }
  EXPECT_EQ(DirectionFromColumnType(SQL_PARAM_INPUT), ParameterDirection::kInput);
  EXPECT_EQ(DirectionFromColumnType(SQL_PARAM_OUTPUT), ParameterDirection::kOutput);
  EXPECT_EQ(DirectionFromColumnType(SQL_PARAM_INPUT_OUTPUT), ParameterDirection::kInputOutput);
  EXPECT_EQ(DirectionFromColumnType(SQL_RETURN_VALUE), ParameterDirection::kReturnValue);
  EXPECT_FALSE(DirectionFromColumnType(SQL_RESULT_COL).has_value());
  EXPECT_FALSE(DirectionFromColumnType(SQL_PARAM_TYPE_UNKNOWN).has_value());
  EXPECT_EQ(ParameterName("@GruppoPDC"), "@GruppoPDC");
  EXPECT_EQ(ParameterName("GruppoPDC"), "@GruppoPDC");
  EXPECT_TRUE(SameName("canAbilitato", "CANABILITATO"));
  EXPECT_FALSE(SameName("canAbilitato", "canAbilitat"));
}

TEST(OdbcSupportTest, CallEscapeHasOneMarkerPerParameter) {
  const auto param = [](const char* name, ParameterDirection direction) {
    return ParameterInfo{name, adtype::kInteger, direction, Variant()};
  };
  using D = ParameterDirection;
  EXPECT_EQ(BuildProcedureCall("SP_X", {}), "{call SP_X}");
  EXPECT_EQ(BuildProcedureCall("dbo.SPFW_GetInfoRevokeContoPDC",
                               {param("@GruppoPDC", D::kInput), param("@ContoPDC", D::kInput),
                                param("@IdUtente", D::kInput), param("@canAbilitato", D::kOutput),
                                param("@canVisualizza", D::kInputOutput)}),
            "{call dbo.SPFW_GetInfoRevokeContoPDC(?, ?, ?, ?, ?)}");
  // The return value, as SQL Server describes it first, goes before "call".
  EXPECT_EQ(BuildProcedureCall("SP_X", {param("@RETURN_VALUE", D::kReturnValue),
                                        param("@A", D::kInput), param("@B", D::kOutput)}),
            "{? = call SP_X(?, ?)}");
  EXPECT_EQ(BuildProcedureCall("SP_X", {param("@RETURN_VALUE", D::kReturnValue)}),
            "{? = call SP_X}");
}

TEST(OdbcSupportTest, ProcedureNamesSplitAndPatternsEscape) {
  struct Case {
    const char* input;
    const char* schema;
    const char* name;
  };
  const std::vector<Case> cases = {{"SPFW_X", "", "SPFW_X"},
                                   {"dbo.SPFW_X", "dbo", "SPFW_X"},
                                   {"[my.schema].[odd.name]", "my.schema", "odd.name"},
                                   {"erp.dbo.SPFW_X", "dbo", "SPFW_X"},
                                   {"[SPFW_X]", "", "SPFW_X"}};
  for (const Case& c : cases) {
    const QualifiedName split = SplitProcedureName(c.input);
    EXPECT_EQ(split.schema, c.schema) << c.input;
    EXPECT_EQ(split.name, c.name) << c.input;
  }
  EXPECT_EQ(EscapeSearchPattern("SPFW_Get%Info", "\\"), "SPFW\\_Get\\%Info");
  EXPECT_EQ(EscapeSearchPattern("a\\b", "\\"), "a\\\\b");
  EXPECT_EQ(EscapeSearchPattern("SPFW_X", ""), "SPFW_X");
}

TEST(OdbcSupportTest, DateFieldsConvertToOleDates) {
  struct Case {
    DateTimeFields fields;
    double oa;
  };
  const std::vector<Case> cases = {
      {{1899, 12, 30, 0, 0, 0, 0}, 0.0},
      {{2024, 3, 5, 6, 0, 0, 0}, 45356.25},
      // Before day 0 the time still counts forward from the whole day.
      {{1899, 12, 29, 6, 0, 0, 0}, -1.25},
      {{1899, 12, 28, 12, 0, 0, 0}, -2.5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.oa);
    EXPECT_DOUBLE_EQ(OleDateFromFields(c.fields), c.oa);
    const DateTimeFields back = FieldsFromOleDate(c.oa);
    EXPECT_EQ(std::vector<int>({back.year, back.month, back.day, back.hour, back.minute}),
              std::vector<int>(
                  {c.fields.year, c.fields.month, c.fields.day, c.fields.hour, c.fields.minute}));
  }
  // Milliseconds are kept, and a time never spills into the next day.
  const double oa = OleDateFromFields({2024, 3, 5, 10, 11, 12, 345000000});
  EXPECT_NEAR(oa, 45356 + (10 * 3600 + 11 * 60 + 12.345) / 86400.0, 1e-9);
  EXPECT_EQ(FieldsFromOleDate(oa).fraction_ns, 345000000u);
  const DateTimeFields late = FieldsFromOleDate(45356 + 0.9999999999);
  EXPECT_EQ(std::vector<int>({late.day, late.hour, late.minute, late.second}),
            std::vector<int>({5, 23, 59, 59}));
  // The text omits a midnight time.
  EXPECT_EQ(DateText({2024, 3, 5, 0, 0, 0, 0}), "2024-03-05");
  EXPECT_EQ(DateText({2024, 3, 5, 7, 8, 9, 500000000}), "2024-03-05 07:08:09");
  EXPECT_EQ(DateText({999, 1, 2, 0, 0, 1, 0}), "0999-01-02 00:00:01");
}

TEST(OdbcSupportTest, NamedParametersBecomeMarkersOutsideQuotesAndComments) {
  struct Case {
    const char* body;
    const char* sql;
    std::vector<std::string> names;
  };
  const std::vector<Case> cases = {
      {"SELECT :Id + :B_2 WHERE :Id > 0", "SELECT ? + ? WHERE ? > 0", {"Id", "B_2", "Id"}},
      {"SELECT ':A', \"c:B\", [d:C], `e:D`, :E", "SELECT ':A', \"c:B\", [d:C], `e:D`, ?", {"E"}},
      {"SELECT 'it''s :x' || :y", "SELECT 'it''s :x' || ?", {"y"}},
      {"SELECT 1 -- :x\n, :y", "SELECT 1 -- :x\n, ?", {"y"}},
      {"SELECT /* :x */ :_u", "SELECT /* :x */ ?", {"_u"}},
      {"SELECT time('10:30'), 1:2", "SELECT time('10:30'), 1:2", {}},
      {"SELECT 'open :x", "SELECT 'open :x", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    const MarkedSql marked = ReplaceNamedParameters(c.body);
    EXPECT_EQ(marked.sql, c.sql);
    EXPECT_EQ(marked.names, c.names);
  }
}

TEST(OdbcSupportTest, Diagnostics) {
  const std::vector<DiagRecord> records = {
      {"42S02", 208, "[Driver][SQL Server]Invalid object name 'X'."},
      {"42000", 8180, "[Driver][SQL Server]Statement(s) could not be prepared."},
  };
  EXPECT_EQ(FormatDiagnostics(records, "unused"),
            "[42S02] (native 208) [Driver][SQL Server]Invalid object name 'X'.\n"
            "[42000] (native 8180) [Driver][SQL Server]Statement(s) could not be prepared.");
  EXPECT_EQ(FormatDiagnostics({}, "ODBC call SQLFetch failed (return code -1)"),
            "ODBC call SQLFetch failed (return code -1)");
}

}  // namespace
}  // namespace zarvik::db::odbc
