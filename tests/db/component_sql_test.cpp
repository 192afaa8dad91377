// The T-SQL texts the component sends, run on the embedded engine against a
// small revocation database: each must run and answer what SQL Server would.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "db/connection.h"
#include "db/db_test_support.h"

namespace zarvik::db {
namespace {

const std::string kCrLf = "\r\n";

// User 5 belongs to groups 1 and 2.
const char kSchema[] =
    "CREATE TABLE VFW31_RVKPARAMETRI (FW31_ID_FW07 INTEGER, FW31_INDTIPO INTEGER, "
    "FW31_DITTARAGG INTEGER, FW31_CODTIPO TEXT, FW31_FLGABILITATO INTEGER, FW31_FLGMODIFICA "
    "INTEGER, FW31_FLGELIMINA INTEGER, FW31_FLGINSERISCI INTEGER);\n"
    "INSERT INTO VFW31_RVKPARAMETRI VALUES (5, 14, -1, '3', 0, 1, 1, 1), (5, 34, -1, '2', 0, 1, "
    "1, 1), (5, 19, -1, '31', 1, 1, 0, 1), (5, 19, -1, '99', 1, 0, 1, 1), (5, 26, 10, '1001', 0, "
    "1, 1, 1), (5, 26, 10, '1002', 1, 0, 1, 1), (5, 6, 1, 'A1', 0, 1, 1, 1);\n"
    "CREATE TABLE MG6W_STATIART (MG6W_INDSTATO INTEGER);\n"
    "INSERT INTO MG6W_STATIART VALUES (1), (2), (3);\n"
    "CREATE TABLE MG66_ARTICOLI (MG66_CODART TEXT, MG66_INDSTATO_MG6W INTEGER);\n"
    "INSERT INTO MG66_ARTICOLI VALUES ('ART1', 1), ('ART2', 2), ('ART3', 3), ('ART4', 1);\n"
    "CREATE TABLE FW00_GRPUSRASSOC (FW00_ID_FW07 INTEGER, FW00_ID_FW06 INTEGER);\n"
    "INSERT INTO FW00_GRPUSRASSOC VALUES (5, 1), (5, 2);\n"
    "CREATE TABLE FW3G_RVKFUNZIONI (FW3G_ID_FW07 INTEGER, FW3G_ID_FW06 INTEGER, "
    "FW3G_CODICE_FW3F INTEGER, FW3G_FLGABILITATO INTEGER);\n"
    "INSERT INTO FW3G_RVKFUNZIONI VALUES (NULL, 1, 7, 0), (NULL, 2, 7, 0), (NULL, 1, 8, 0);\n"
    "CREATE TABLE CG41_RIGHE (CG41_GRUPPO INTEGER, CG41_CONTO TEXT);\n"
    "INSERT INTO CG41_RIGHE VALUES (10, '1001'), (10, '1002'), (10, '1003'), (11, '1001');\n"
    "CREATE TABLE FW33_RVKUSER (FW33_ID_FW07 INTEGER, FW33_DATA TEXT, FW33_AZIONE INTEGER, "
    "FW33_RISULTATO INTEGER, FW33_WINUSER TEXT, FW33_DATAORA TEXT);\n"
    "INSERT INTO FW33_RVKUSER VALUES (5, '2024-03-01', 10, 0, 'admin', '2024-03-01 "
    "10:00:00.250'), (5, '2024-03-01', 0, 1, 'u', '2024-03-01 09:00:00.000'), (5, "
    "'2024-03-01', 0, 1, 'u', '2024-03-01 10:00:00.750');\n";

struct Case {
  const char* what;
  std::string sql;
  std::string rows;  // rows joined by ",", the columns of a row by "|"
};

class ComponentSqlTest : public ::testing::TestWithParam<Case> {};

TEST_P(ComponentSqlTest, RunsAndAnswers) {
  auto rs = OpenConnection(kMemory, kSchema)->Execute(GetParam().sql, kCmdText);
  std::string rows;
  for (; !rs->EOF(); rs->MoveNext()) {
    if (!rows.empty()) rows += ",";
    for (int c = 0; c < rs->FieldCount(); ++c) {
      rows += (c == 0 ? "" : "|") + rs->Fields(c).ConcatText();
    }
  }
  EXPECT_EQ(rows, GetParam().rows) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Statements, ComponentSqlTest,
    ::testing::Values(
        Case{"article states not revoked: TOP in NOT EXISTS inside IN ((SELECT ...))",
             "SELECT MG66_CODART FROM MG66_ARTICOLI WHERE  MG66_INDSTATO_MG6W IN (  "
             "                 (SELECT MG6W_INDSTATO                       FROM MG6W_STATIART "
             "                     WHERE NOT EXISTS (SELECT TOP 1 1  "
             "                                       FROM VFW31_RVKPARAMETRI "
             "                                       WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS "
             "NVARCHAR)                                              AND FW31_ID_FW07 = 5"
             "                                             AND FW31_INDTIPO = 14   "
             "                                             AND FW31_DITTARAGG = -1)))  ORDER BY "
             "MG66_CODART",
             "ART1,ART2,ART4"},
        Case{"function revoked by every group: ISNULL in the select list and GROUP BY",
             "          SELECT  *     FROM    (                    SELECT  FW00_ID_FW07, "
             "ISNULL(FW3G_CODICE_FW3F, 7) AS FW3G_CODICE_FW3F, MAX(ISNULL(FW3G_FLGABILITATO, 1)) "
             "AS FW3G_FLGABILITATO                  FROM    FW00_GRPUSRASSOC             "
             "                 LEFT JOIN FW3G_RVKFUNZIONI                      ON FW00_ID_FW06 = "
             "FW3G_ID_FW06 AND FW3G_CODICE_FW3F = 7         WHERE   FW00_ID_FW07 = 5         "
             "GROUP BY FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, 7)                  ) TT    WHERE "
             "  TT.FW3G_FLGABILITATO = 0  ",
             "5|7|0"},
        Case{"the '99' row wins for bill types 30 to 39: TOP 1 after ORDER BY",
             "SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
             "FW31_FLGINSERISCI FROM VFW31_RVKPARAMETRI " +
                 kCrLf + " WHERE FW31_ID_FW07 = 5 " + kCrLf + " AND FW31_INDTIPO = 19" + kCrLf +
                 " AND FW31_DITTARAGG = -1" + kCrLf +
                 " AND FW31_CODTIPO IN ('31', '99') ORDER BY FW31_CODTIPO DESC",
             "1|0|1|1"},
        Case{"blocked or not visible accounts: hint, CONVERT to DECIMAL and CHAR",
             "SELECT CG41_CONTO FROM CG41_RIGHE     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)" +
                 kCrLf + "         ON CONVERT(DECIMAL(2,0), FW31_DITTARAGG) = CG41_GRUPPO" + kCrLf +
                 "         AND CONVERT(CHAR(10), FW31_CODTIPO) = CG41_CONTO" + kCrLf +
                 "         AND FW31_INDTIPO = 26" + kCrLf + "         AND FW31_ID_FW07 = 5" +
                 kCrLf + "     AND (FW31_FLGABILITATO = 0" + kCrLf +
                 "    OR FW31_FLGMODIFICA = 0                    )  ORDER BY CG41_CONTO",
             "1001,1002"},
        Case{"latest re-enabling of the day as style-120 text",
             "SELECT  convert(varchar(25), FW33_DATAORA, 120) AS FW33_DATAORA  FROM FW33_RVKUSER "
             " WHERE FW33_ID_FW07 = 5 AND FW33_DATA = '2024-03-01' AND FW33_AZIONE = 10 order "
             "by FW33_DATAORA desc ",
             "2024-03-01 10:00:00"}));

}  // namespace
}  // namespace zarvik::db
