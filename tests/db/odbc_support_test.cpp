#include "db/odbc_support.h"

#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>

#include <cmath>
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
      {SQL_INTEGER, "INTEGER", false, ColumnKind::kInteger},
      {SQL_SMALLINT, "smallint", false, ColumnKind::kInteger},
      {SQL_TINYINT, "tinyint", false, ColumnKind::kInteger},
      {SQL_BIGINT, "BIGINT", false, ColumnKind::kInteger},
      {SQL_BIT, "bit", false, ColumnKind::kBoolean},
      {SQL_BIT, "BIT", true, ColumnKind::kInteger},
      {SQL_DECIMAL, "decimal", false, ColumnKind::kFloat},
      {SQL_NUMERIC, "numeric", false, ColumnKind::kFloat},
      {SQL_DOUBLE, "float", false, ColumnKind::kFloat},
      {SQL_REAL, "real", false, ColumnKind::kFloat},
      // The SQLite driver reports declared DECIMAL columns as VARCHAR.
      {SQL_VARCHAR, "DECIMAL", true, ColumnKind::kFloat},
      {SQL_VARCHAR, "numeric(10,2)", true, ColumnKind::kFloat},
      {SQL_VARCHAR, "money", false, ColumnKind::kFloat},
      {SQL_VARCHAR, "VARCHAR(50)", true, ColumnKind::kText},
      {SQL_VARCHAR, "", false, ColumnKind::kText},
      {SQL_CHAR, "char", false, ColumnKind::kText},
      {SQL_LONGVARCHAR, "text", false, ColumnKind::kText},
      {SQL_WVARCHAR, "nvarchar", false, ColumnKind::kWideText},
      {SQL_WLONGVARCHAR, "ntext", false, ColumnKind::kWideText},
      {SQL_VARBINARY, "varbinary", false, ColumnKind::kBinary},
      {SQL_TYPE_TIMESTAMP, "datetime", false, ColumnKind::kDateTime},
      {SQL_TYPE_DATE, "date", false, ColumnKind::kDateTime},
      {SQL_TYPE_TIME, "time", false, ColumnKind::kTime},
      {-154, "time", false, ColumnKind::kTime},  // SQL Server time(n)
      {SQL_GUID, "uniqueidentifier", false, ColumnKind::kText},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.sql_type) + " " + c.type_name);
    EXPECT_EQ(ClassifyColumn(c.sql_type, c.type_name, c.bit_is_integer), c.expected);
  }
}

TEST(OdbcSupportTest, ParameterTypesMapToAdoTypes) {
  const std::vector<std::pair<int, int>> cases = {
      {SQL_SMALLINT, adtype::kSmallInt}, {SQL_TINYINT, adtype::kSmallInt},
      {SQL_INTEGER, adtype::kInteger},   {SQL_BIGINT, adtype::kDouble},
      {SQL_DECIMAL, adtype::kDouble},    {SQL_FLOAT, adtype::kDouble},
      {SQL_BIT, adtype::kBoolean},       {SQL_TYPE_TIMESTAMP, adtype::kDate},
      {SQL_TYPE_DATE, adtype::kDate},    {SQL_VARCHAR, adtype::kVarChar},
      {SQL_WVARCHAR, adtype::kVarChar},  {SQL_CHAR, adtype::kVarChar},
  };
  for (const auto& [sql_type, expected] : cases) {
    EXPECT_EQ(AdTypeFromSqlType(sql_type), expected) << sql_type;
  }
}

TEST(OdbcSupportTest, CatalogColumnTypesMapToDirections) {
  EXPECT_EQ(DirectionFromColumnType(SQL_PARAM_INPUT), ParameterDirection::kInput);
  EXPECT_EQ(DirectionFromColumnType(SQL_PARAM_OUTPUT), ParameterDirection::kOutput);
  EXPECT_EQ(DirectionFromColumnType(SQL_PARAM_INPUT_OUTPUT), ParameterDirection::kInputOutput);
  EXPECT_EQ(DirectionFromColumnType(SQL_RETURN_VALUE), ParameterDirection::kReturnValue);
  EXPECT_FALSE(DirectionFromColumnType(SQL_RESULT_COL).has_value());
  EXPECT_FALSE(DirectionFromColumnType(SQL_PARAM_TYPE_UNKNOWN).has_value());
}

TEST(OdbcSupportTest, ParameterNamesCarryOneLeadingAt) {
  EXPECT_EQ(ParameterName("@GruppoPDC"), "@GruppoPDC");
  EXPECT_EQ(ParameterName("GruppoPDC"), "@GruppoPDC");
  EXPECT_EQ(ParameterName("@RETURN_VALUE"), "@RETURN_VALUE");
}

ParameterInfo Param(const char* name, ParameterDirection direction) {
  ParameterInfo info;
  info.name = name;
  info.direction = direction;
  return info;
}

TEST(OdbcSupportTest, CallEscapeHasOneMarkerPerParameter) {
  using D = ParameterDirection;
  EXPECT_EQ(BuildProcedureCall("SP_X", {}), "{call SP_X}");
  EXPECT_EQ(BuildProcedureCall("SP_X", {Param("@A", D::kInput)}), "{call SP_X(?)}");
  EXPECT_EQ(BuildProcedureCall("dbo.SPFW_GetInfoRevokeContoPDC",
                               {Param("@GruppoPDC", D::kInput), Param("@ContoPDC", D::kInput),
                                Param("@IdUtente", D::kInput), Param("@canAbilitato", D::kOutput),
                                Param("@canVisualizza", D::kInputOutput)}),
            "{call dbo.SPFW_GetInfoRevokeContoPDC(?, ?, ?, ?, ?)}");
  // The return value, as SQL Server describes it first, goes before "call".
  EXPECT_EQ(BuildProcedureCall("SP_X", {Param("@RETURN_VALUE", D::kReturnValue),
                                        Param("@A", D::kInput), Param("@B", D::kOutput)}),
            "{? = call SP_X(?, ?)}");
  EXPECT_EQ(BuildProcedureCall("SP_X", {Param("@RETURN_VALUE", D::kReturnValue)}),
            "{? = call SP_X}");
}

TEST(OdbcSupportTest, ProcedureNamesSplitIntoSchemaAndName) {
  struct Case {
    const char* input;
    const char* schema;
    const char* name;
  };
  const std::vector<Case> cases = {
      {"SPFW_GetInfoRevokeContoPDC", "", "SPFW_GetInfoRevokeContoPDC"},
      {"dbo.SPFW_X", "dbo", "SPFW_X"},
      {"[dbo].[SPFW_X]", "dbo", "SPFW_X"},
      {"[my.schema].[odd.name]", "my.schema", "odd.name"},
      {"erp.dbo.SPFW_X", "dbo", "SPFW_X"},
      {"[SPFW_X]", "", "SPFW_X"},
  };
  for (const Case& c : cases) {
    const QualifiedName split = SplitProcedureName(c.input);
    EXPECT_EQ(split.schema, c.schema) << c.input;
    EXPECT_EQ(split.name, c.name) << c.input;
  }
}

TEST(OdbcSupportTest, SearchPatternCharactersAreEscaped) {
  EXPECT_EQ(EscapeSearchPattern("SPFW_Get%Info", "\\"), "SPFW\\_Get\\%Info");
  EXPECT_EQ(EscapeSearchPattern("a\\b", "\\"), "a\\\\b");
  EXPECT_EQ(EscapeSearchPattern("SPFW_X", ""), "SPFW_X");
  EXPECT_EQ(EscapeSearchPattern("", "\\"), "");
}

TEST(OdbcSupportTest, DateFieldsConvertToOleDates) {
  struct Case {
    DateTimeFields fields;
    double oa;
  };
  const std::vector<Case> cases = {
      {{1899, 12, 30, 0, 0, 0, 0}, 0.0},
      {{2024, 3, 5, 0, 0, 0, 0}, 45356.0},
      {{2024, 3, 5, 12, 0, 0, 0}, 45356.5},
      {{2024, 3, 5, 6, 0, 0, 0}, 45356.25},
      {{1900, 1, 1, 18, 0, 0, 0}, 2.75},
      // Before day 0 the time still counts forward from the whole day.
      {{1899, 12, 29, 6, 0, 0, 0}, -1.25},
      {{1899, 12, 28, 12, 0, 0, 0}, -2.5},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.oa);
    EXPECT_DOUBLE_EQ(OleDateFromFields(c.fields), c.oa);
    const DateTimeFields back = FieldsFromOleDate(c.oa);
    EXPECT_EQ(back.year, c.fields.year);
    EXPECT_EQ(back.month, c.fields.month);
    EXPECT_EQ(back.day, c.fields.day);
    EXPECT_EQ(back.hour, c.fields.hour);
    EXPECT_EQ(back.minute, c.fields.minute);
  }
}

TEST(OdbcSupportTest, TimesKeepMillisecondsAndNeverSpillIntoTheNextDay) {
  const DateTimeFields precise{2024, 3, 5, 10, 11, 12, 345000000};
  const double oa = OleDateFromFields(precise);
  EXPECT_NEAR(oa, 45356 + (10 * 3600 + 11 * 60 + 12.345) / 86400.0, 1e-9);
  const DateTimeFields back = FieldsFromOleDate(oa);
  EXPECT_EQ(back.second, 12);
  EXPECT_EQ(back.fraction_ns, 345000000u);

  const DateTimeFields late = FieldsFromOleDate(45356 + 0.9999999999);
  EXPECT_EQ(late.day, 5);
  EXPECT_EQ(late.hour, 23);
  EXPECT_EQ(late.minute, 59);
  EXPECT_EQ(late.second, 59);
}

TEST(OdbcSupportTest, DateTextOmitsAMidnightTime) {
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
      {"SELECT :A + :B_2 AS X", "SELECT ? + ? AS X", {"A", "B_2"}},
      {"SELECT :Id WHERE :Id > 0", "SELECT ? WHERE ? > 0", {"Id", "Id"}},
      {"SELECT ':A', \"c:B\", [d:C], `e:D`, :E", "SELECT ':A', \"c:B\", [d:C], `e:D`, ?", {"E"}},
      {"SELECT 'it''s :x' || :y", "SELECT 'it''s :x' || ?", {"y"}},
      {"SELECT 1 -- :x\n, :y", "SELECT 1 -- :x\n, ?", {"y"}},
      {"SELECT /* :x */ :y", "SELECT /* :x */ ?", {"y"}},
      {"SELECT time('10:30'), 1:2", "SELECT time('10:30'), 1:2", {}},
      {"SELECT :_u", "SELECT ?", {"_u"}},
      {"SELECT 'open :x", "SELECT 'open :x", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    const MarkedSql marked = ReplaceNamedParameters(c.body);
    EXPECT_EQ(marked.sql, c.sql);
    EXPECT_EQ(marked.names, c.names);
  }
}

TEST(OdbcSupportTest, Utf16ConvertsToUtf8) {
  EXPECT_EQ(Utf8FromUtf16(u"abc"), "abc");
  EXPECT_EQ(Utf8FromUtf16(u"\u00e0\u00e9\u20ac"), "\xc3\xa0\xc3\xa9\xe2\x82\xac");
  EXPECT_EQ(Utf8FromUtf16(u"x\U0001F600y"), "x\xf0\x9f\x98\x80y");
  const std::u16string lone = {u'a', static_cast<char16_t>(0xD800), u'b'};
  EXPECT_EQ(Utf8FromUtf16(lone),
            "a\xef\xbf\xbd"
            "b");
  EXPECT_EQ(Utf8FromUtf16(u""), "");
}

TEST(OdbcSupportTest, DiagnosticsFormatOneRecordPerLine) {
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

TEST(OdbcSupportTest, NamesCompareWithoutCase) {
  EXPECT_TRUE(SameName("canAbilitato", "CANABILITATO"));
  EXPECT_FALSE(SameName("canAbilitato", "canAbilitat"));
}

}  // namespace
}  // namespace zarvik::db::odbc
