#include "db/tsql_dialect.h"

#include <gtest/gtest.h>

#include <vector>

namespace zarvik::db {
namespace {

TEST(TranslateTest, ComponentTexts) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"SELECT dbo.FNFW_TRASFREVOCATI (1, 5, 'A1', 'B2')",
       "SELECT FNFW_TRASFREVOCATI (1, 5, 'A1', 'B2')"},
      {"SELECT  convert(varchar(25), FW33_DATAORA, 120) AS D  FROM R order by D desc ",
       "SELECT  strftime('%Y-%m-%d %H:%M:%S', FW33_DATAORA) AS D  FROM R order by D desc "},
      {"     INNER JOIN V WITH (NOLOCK)\r\n"
       "  ON CONVERT(DECIMAL(2,0), F) = G AND CONVERT(CHAR(10), T) = C",
       "     INNER JOIN V \r\n  ON CAST(F AS NUMERIC) = G AND CAST(T AS TEXT) = C"},
      // A style 120 text shorter than the full stamp is cut.
      {"SELECT convert(varchar(10), D, 120) FROM T",
       "SELECT substr(strftime('%Y-%m-%d %H:%M:%S', D), 1, 10) FROM T"},
      {" AND D > convert(datetime, '2024-03-01 10:00:00', 120)",
       " AND D > datetime('2024-03-01 10:00:00')"},
      {" NOT EXISTS (SELECT M  FROM D WITH (NOLOCK)  INNER JOIN V WITH(NOLOCK) ON F = 5) ",
       " NOT EXISTS (SELECT M  FROM D   INNER JOIN V  ON F = 5) "},
      // x IN ((SELECT ...)) loses the inner pair, a TOP inside an EXISTS goes.
      {" S IN (  (SELECT I  FROM A  WHERE NOT EXISTS (SELECT TOP 1 1  FROM V "
       "WHERE C = CAST(I AS NVARCHAR)  AND T = 14))) ",
       " S IN (  SELECT I  FROM A  WHERE NOT EXISTS (SELECT 1  FROM V "
       "WHERE C = CAST(I AS TEXT)  AND T = 14)) "},
      {" CG44_CLIFOR = N'AB''C' OR X = n'd' ", " CG44_CLIFOR = 'AB''C' OR X = 'd' "},
      {"SELECT [Desc], [a]]b], [q\"r] FROM [dbo].[MG36_DOCUMENTI]",
       "SELECT \"Desc\", \"a]b\", \"q\"\"r\" FROM MG36_DOCUMENTI"},
      {"SELECT * FROM {oj A LEFT OUTER JOIN B ON A.X = B.Y} WHERE 1=1",
       "SELECT * FROM A LEFT OUTER JOIN B ON A.X = B.Y WHERE 1=1"},
      // TOP in a scalar sub-query closes with its parenthesis.
      {"SELECT A FROM T WHERE X = (SELECT TOP 1 Y FROM U ORDER BY Z) AND W = 1",
       "SELECT A FROM T WHERE X = (SELECT Y FROM U ORDER BY Z LIMIT 1) AND W = 1"},
      {"select top 3 a from t with (nolock) where isnull(b, 0) = 1",
       "select a from t  where IFNULL(b, 0) = 1 LIMIT 3"},
      {"SELECT DISTINCT TOP (2) A FROM T", "SELECT DISTINCT A FROM T LIMIT 2"},
      // LIMIT ends each statement of a script, before trailing blanks and comments.
      {"SELECT TOP 1 A FROM T; SELECT TOP 4 B FROM U  ",
       "SELECT A FROM T LIMIT 1; SELECT B FROM U LIMIT 4  "},
      {"SELECT TOP 1 A FROM T -- first", "SELECT A FROM T LIMIT 1 -- first"},
      {"SELECT CONVERT(VARCHAR(10), CONVERT(DECIMAL(5,2), ISNULL(X, 0))) FROM T",
       "SELECT CAST(CAST(IFNULL(X, 0) AS NUMERIC) AS TEXT) FROM T"},
      {"SELECT GETDATE(), getdate ( ), CONVERT(varchar(10), GETDATE(), 120) FROM T",
       "SELECT strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime'), strftime('%Y-%m-%d "
       "%H:%M:%f', 'now', 'localtime'), substr(strftime('%Y-%m-%d %H:%M:%S', "
       "strftime('%Y-%m-%d %H:%M:%f', 'now', 'localtime')), 1, 10) FROM T"},
      {"SELECT CONVERT(varchar(23), D, 121) FROM T",  // keeps the milliseconds
       "SELECT strftime('%Y-%m-%d %H:%M:%f', D) FROM T"},
      {"SELECT [a]]], [1a] FROM T", "SELECT \"a]\", \"1a\" FROM T"}};
  for (const auto& [tsql, sqlite] : cases) EXPECT_EQ(TranslateTsqlToSqlite(tsql), sqlite);
  // Sub-query lists, literals, SQLite texts, words holding a keyword, unknown targets: unchanged.
  for (const char* same :
       {"SELECT A FROM T WHERE A IN ((SELECT B FROM U), 3) OR A IN ((1), 2)",
        "SELECT 'TOP 1 ISNULL( WITH (NOLOCK) [x] dbo.y N''z''' FROM T",
        "CREATE TABLE T (A INTEGER, \"B\" TEXT);\nINSERT INTO T VALUES (1, 'x'); -- [c]\n"
        "SELECT A FROM T WHERE A ISNULL OR B = 'dbo.x' /* TOP 1 */",
        "SELECT TOPX, MYISNULL(1), CONVERTED, INN'a' FROM T", "SELECT GETDATE FROM T",
        "SELECT CONVERT(UNIQUEIDENTIFIER, X) FROM T"}) {
    EXPECT_EQ(TranslateTsqlToSqlite(same), same);
  }
}

TEST(TranslationCacheTest, KeepsEachTextOnceAndDropsTheLeastRecentlyUsedBeyondItsBytes) {
  // Entries of 172, 180 and 162 bytes (both texts and the bookkeeping).
  TsqlTranslationCache cache(500);
  std::string answers;  // the second A comes from the cache; B is then the least recently used
  for (const char* text :
       {"SELECT TOP 1 A FROM T", "SELECT ISNULL(B, 0) FROM U", "SELECT TOP 1 A FROM T"}) {
    answers += cache.Translate(text) + "|";
  }
  EXPECT_EQ(answers, "SELECT A FROM T LIMIT 1|SELECT IFNULL(B, 0) FROM U|SELECT A FROM T LIMIT 1|");
  EXPECT_EQ(cache.bytes(), 352u);
  EXPECT_EQ(cache.Translate("SELECT [C] FROM V"), "SELECT \"C\" FROM V");
  EXPECT_EQ(std::to_string(cache.size()) + " " + std::to_string(cache.bytes()), "2 334");
  // A text too large for the bound is translated and not kept.
  EXPECT_EQ(cache.Translate("SELECT '" + std::string(400, 'x') + "'"),
            "SELECT '" + std::string(400, 'x') + "'");
  EXPECT_EQ(cache.bytes(), 334u);
}

}  // namespace
}  // namespace zarvik::db
