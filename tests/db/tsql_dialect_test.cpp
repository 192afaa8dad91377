// T-SQL to SQLite translation of the texts the component sends.
#include "db/tsql_dialect.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zarvik::db {
namespace {

struct Case {
  const char* what;
  std::string tsql;
  std::string sqlite;
};

TEST(TranslateTest, ComponentTexts) {
  const std::string kCrLf = "\r\n";
  const std::vector<Case> cases = {
      Case{"dbo. qualifier of a function", "SELECT dbo.FNFW_TRASFREVOCATI (1, 5, 'A1', 'B2')",
           "SELECT FNFW_TRASFREVOCATI (1, 5, 'A1', 'B2')"},
      Case{"convert to text with style 120",
           "SELECT  convert(varchar(25), FW33_DATAORA, 120) AS FW33_DATAORA  FROM FW33_RVKUSER "
           " WHERE FW33_ID_FW07 = 5 AND FW33_AZIONE = 10 order by FW33_DATAORA desc ",
           "SELECT  strftime('%Y-%m-%d %H:%M:%S', FW33_DATAORA) AS FW33_DATAORA  FROM "
           "FW33_RVKUSER  WHERE FW33_ID_FW07 = 5 AND FW33_AZIONE = 10 order by FW33_DATAORA "
           "desc "},
      Case{"join clause with hints and CONVERT to DECIMAL and CHAR",
           "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)" + kCrLf +
               "         ON CONVERT(DECIMAL(2,0), FW31_DITTARAGG) = CG41_GRUPPO" + kCrLf +
               "         AND CONVERT(CHAR(10), FW31_CODTIPO) = CG41_CONTO" + kCrLf +
               "         AND FW31_INDTIPO = 26",
           "     INNER JOIN VFW31_RVKPARAMETRI " + kCrLf +
               "         ON CAST(FW31_DITTARAGG AS NUMERIC) = CG41_GRUPPO" + kCrLf +
               "         AND CAST(FW31_CODTIPO AS TEXT) = CG41_CONTO" + kCrLf +
               "         AND FW31_INDTIPO = 26"},
      Case{"a style 120 text shorter than the full stamp is cut",
           "SELECT convert(varchar(10), D, 120) FROM T",
           "SELECT substr(strftime('%Y-%m-%d %H:%M:%S', D), 1, 10) FROM T"},
      Case{"convert text to datetime with style 120",
           " AND FW33_DATAORA > convert(datetime, '2024-03-01 10:00:00', 120)",
           " AND FW33_DATAORA > datetime('2024-03-01 10:00:00')"},
      Case{"hints with and without a blank",
           " NOT EXISTS (SELECT MG3G_CODDOCUM_MG36          FROM MG3G_DOCDITTA WITH (NOLOCK) "
           "         INNER JOIN VFW31_RVKPARAMETRI WITH(NOLOCK) ON FW31_ID_FW07 = 5) ",
           " NOT EXISTS (SELECT MG3G_CODDOCUM_MG36          FROM MG3G_DOCDITTA  "
           "         INNER JOIN VFW31_RVKPARAMETRI  ON FW31_ID_FW07 = 5) "},
      Case{"CAST to NVARCHAR and TOP inside an EXISTS nested in IN",
           " MG66_INDSTATO_MG6W IN (                   (SELECT MG6W_INDSTATO  "
           "                     FROM MG6W_STATIART                      WHERE NOT EXISTS "
           "(SELECT TOP 1 1                                         FROM VFW31_RVKPARAMETRI "
           "WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS NVARCHAR)  AND FW31_INDTIPO = 14))) ",
           " MG66_INDSTATO_MG6W IN (                   SELECT MG6W_INDSTATO  "
           "                     FROM MG6W_STATIART                      WHERE NOT EXISTS "
           "(SELECT 1                                         FROM VFW31_RVKPARAMETRI "
           "WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS TEXT)  AND FW31_INDTIPO = 14)) "},
      Case{"a list that holds a scalar sub-query stays a list",
           "SELECT A FROM T WHERE A IN ((SELECT B FROM U), 3) OR A IN ((1), 2)",
           "SELECT A FROM T WHERE A IN ((SELECT B FROM U), 3) OR A IN ((1), 2)"},
      Case{"Unicode literal prefix", " CG44_CLIFOR = N'AB''C' OR X = n'd' ",
           " CG44_CLIFOR = 'AB''C' OR X = 'd' "},
      Case{"literals are never touched",
           "SELECT 'TOP 1 ISNULL( WITH (NOLOCK) [x] dbo.y N''z''' FROM T",
           "SELECT 'TOP 1 ISNULL( WITH (NOLOCK) [x] dbo.y N''z''' FROM T"},
      Case{"bracketed names", "SELECT [Desc], [a]]b], [q\"r] FROM [dbo].[MG36_DOCUMENTI]",
           "SELECT \"Desc\", \"a]b\", \"q\"\"r\" FROM MG36_DOCUMENTI"},
      Case{"ODBC outer-join escape",
           "SELECT * FROM {oj CG44_CLIFOR A LEFT OUTER JOIN MG19_CLIFORVA B ON A.X = B.Y} "
           "WHERE 1=1",
           "SELECT * FROM CG44_CLIFOR A LEFT OUTER JOIN MG19_CLIFORVA B ON A.X = B.Y WHERE 1=1"},
      Case{"TOP in a scalar sub-query closes with its parenthesis",
           "SELECT A FROM T WHERE X = (SELECT TOP 1 Y FROM U ORDER BY Z) AND W = 1",
           "SELECT A FROM T WHERE X = (SELECT Y FROM U ORDER BY Z LIMIT 1) AND W = 1"},
      Case{"keywords in any case", "select top 3 a from t with (nolock) where isnull(b, 0) = 1",
           "select a from t  where IFNULL(b, 0) = 1 LIMIT 3"},
      Case{"TOP (n) and DISTINCT TOP n", "SELECT DISTINCT TOP (2) A FROM T",
           "SELECT DISTINCT A FROM T LIMIT 2"},
      Case{"LIMIT ends each statement of a script, before trailing blanks",
           "SELECT TOP 1 A FROM T; SELECT TOP 4 B FROM U  ",
           "SELECT A FROM T LIMIT 1; SELECT B FROM U LIMIT 4  "},
      Case{"LIMIT before a trailing comment", "SELECT TOP 1 A FROM T -- first",
           "SELECT A FROM T LIMIT 1 -- first"},
      Case{"SQLite script passes unchanged",
           "CREATE TABLE T (A INTEGER, \"B\" TEXT);\nINSERT INTO T VALUES (1, 'x'); -- [c]\n"
           "SELECT A FROM T WHERE A ISNULL OR B = 'dbo.x' /* TOP 1 */",
           "CREATE TABLE T (A INTEGER, \"B\" TEXT);\nINSERT INTO T VALUES (1, 'x'); -- [c]\n"
           "SELECT A FROM T WHERE A ISNULL OR B = 'dbo.x' /* TOP 1 */"},
      Case{"words that only contain a keyword stay",
           "SELECT TOPX, MYISNULL(1), CONVERTED, INN'a' FROM T",
           "SELECT TOPX, MYISNULL(1), CONVERTED, INN'a' FROM T"},
      Case{"CONVERT inside CONVERT",
           "SELECT CONVERT(VARCHAR(10), CONVERT(DECIMAL(5,2), ISNULL(X, 0))) FROM T",
           "SELECT CAST(CAST(IFNULL(X, 0) AS NUMERIC) AS TEXT) FROM T"},
      Case{"GETDATE in any case and spacing, and inside CONVERT",
           "SELECT GETDATE(), getdate ( ), CONVERT(varchar(10), GETDATE(), 120) FROM T",
           "SELECT strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'), strftime('%Y-%m-%d "
           "%H:%M:%f', 'now', 'localtime'), substr(strftime('%Y-%m-%d %H:%M:%S', "
           "strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime')), 1, 10) FROM T"},
      Case{"GETDATE without its parentheses is a name", "SELECT GETDATE FROM T",
           "SELECT GETDATE FROM T"},
      Case{"style 121 keeps the milliseconds", "SELECT CONVERT(varchar(23), D, 121) FROM T",
           "SELECT strftime('%Y-%m-%d %H:%M:%f', D) FROM T"},
      Case{"a doubled bracket at the end of a name", "SELECT [a]]] FROM T", "SELECT \"a]\" FROM T"},
      Case{"unknown CONVERT target is left alone", "SELECT CONVERT(UNIQUEIDENTIFIER, X) FROM T",
           "SELECT CONVERT(UNIQUEIDENTIFIER, X) FROM T"}};
  for (const Case& c : cases) EXPECT_EQ(TranslateTsqlToSqlite(c.tsql), c.sqlite) << c.what;
}

TEST(TranslationCacheTest, KeepsEachTextOnceAndDropsTheLeastRecentlyUsedBeyondItsBytes) {
  // Entries of 172, 180 and 162 bytes (both texts and the bookkeeping).
  const std::string a = "SELECT TOP 1 A FROM T";
  const std::string b = "SELECT ISNULL(B, 0) FROM U";
  const std::string c = "SELECT [C] FROM V";
  TsqlTranslationCache cache(500);
  EXPECT_EQ(cache.Translate(a), "SELECT A FROM T LIMIT 1");
  EXPECT_EQ(cache.Translate(b), "SELECT IFNULL(B, 0) FROM U");
  EXPECT_EQ(cache.Translate(a), "SELECT A FROM T LIMIT 1");
  EXPECT_EQ(cache.bytes(), 352u);
  EXPECT_EQ(cache.Translate(c), "SELECT \"C\" FROM V");
  EXPECT_EQ(cache.size(), 2u);
  EXPECT_EQ(cache.bytes(), 334u);  // a and c: b was used least recently
  // A text too large for the bound is translated and not kept.
  EXPECT_EQ(cache.Translate("SELECT '" + std::string(400, 'x') + "'"),
            "SELECT '" + std::string(400, 'x') + "'");
  EXPECT_EQ(cache.bytes(), 334u);
}

}  // namespace
}  // namespace zarvik::db
