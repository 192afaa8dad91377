// The T-SQL texts the component sends, run on the embedded engine against a
// small revocation database: each must run and answer what SQL Server would.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "db/connection.h"

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
    "CREATE TABLE MG6W_STATIART (MG6W_INDSTATO INTEGER, MG6W_DESCR TEXT);\n"
    "INSERT INTO MG6W_STATIART VALUES (1, 'attivo'), (2, 'sospeso'), (3, 'obsoleto');\n"
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
    "'2024-03-01', 0, 1, 'u', '2024-03-01 10:00:00.750');\n"
    "CREATE TABLE ZARVIK_ROUTINES (NAME TEXT PRIMARY KEY, KIND TEXT, PARAMS TEXT, BODY TEXT);\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('KVL_GETDATE', 'FUNCTION', '', 'SELECT "
    "''2024-03-01 11:00:00.000''');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('FNFW_TRASFREVOCATI', 'FUNCTION', '@Ditta INT, @IdUtente "
    "INT, @DepOrig VARCHAR, @DepDest VARCHAR', 'SELECT COUNT(*) FROM VFW31_RVKPARAMETRI WHERE "
    "FW31_INDTIPO = 6 AND FW31_ID_FW07 = :IdUtente AND FW31_DITTARAGG = :Ditta AND FW31_CODTIPO "
    "IN (:DepOrig, :DepDest)');\n";

struct Case {
  const char* what;
  std::string sql;
  std::string rows;  // rows joined by ",", the columns of a row by "|"
};

class ComponentSqlTest : public ::testing::TestWithParam<Case> {};

TEST_P(ComponentSqlTest, RunsAndAnswers) {
  auto connection = std::make_shared<Connection>();
  connection->SetConnectionString("Provider=SQLite;Data Source=:memory:");
  connection->SetCursorLocation(kUseClient);
  connection->Open();
  connection->Execute(kSchema);
  auto rs = connection->Execute(GetParam().sql, kCmdText);
  std::string rows;
  for (; !rs->EOF(); rs->MoveNext()) {
    if (!rows.empty()) rows += ",";
    for (int c = 0; c < rs->FieldCount(); ++c) {
      rows += (c == 0 ? "" : "|") + rs->Fields(c).ConcatText();
    }
  }
  EXPECT_EQ(rows, GetParam().rows) << GetParam().what;
}

std::string StatiArticoloCondition(const std::string& user) {
  return " MG66_INDSTATO_MG6W IN (  "
         "                 (SELECT MG6W_INDSTATO  "
         "                     FROM MG6W_STATIART "
         "                     WHERE NOT EXISTS (SELECT TOP 1 1  "
         "                                       FROM VFW31_RVKPARAMETRI "
         "                                       WHERE FW31_CODTIPO = CAST(MG6W_INDSTATO AS "
         "NVARCHAR) "
         "                                             AND FW31_ID_FW07 = " +
         user +
         "                                             AND FW31_INDTIPO = 14   "
         "                                             AND FW31_DITTARAGG = -1))) ";
}

std::string FunctionByGroups(const std::string& function) {
  return "          SELECT  *    "
         " FROM    (           "
         "         SELECT  FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, " +
         function +
         ") AS FW3G_CODICE_FW3F, MAX(ISNULL(FW3G_FLGABILITATO, 1)) AS FW3G_FLGABILITATO         "
         "         FROM    FW00_GRPUSRASSOC             "
         "                 LEFT JOIN FW3G_RVKFUNZIONI "
         "                     ON FW00_ID_FW06 = FW3G_ID_FW06 AND FW3G_CODICE_FW3F = " +
         function + "         WHERE   FW00_ID_FW07 = 5         GROUP BY FW00_ID_FW07, ISNULL(" +
         "FW3G_CODICE_FW3F, " + function +
         ")         "
         "         ) TT   "
         " WHERE   TT.FW3G_FLGABILITATO = 0  ";
}

std::string BillTypeRights(const std::string& type) {
  return "SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI "
         "FROM VFW31_RVKPARAMETRI " +
         kCrLf + " WHERE FW31_ID_FW07 = 5 " + kCrLf + " AND FW31_INDTIPO = 19" + kCrLf +
         " AND FW31_DITTARAGG = -1" + kCrLf + " AND FW31_CODTIPO IN ('" + type + "', '99')" +
         " ORDER BY FW31_CODTIPO DESC";
}

std::string BlockedAccountsJoin(bool exclude_not_visible) {
  return "SELECT CG41_CONTO FROM CG41_RIGHE"
         "     INNER JOIN VFW31_RVKPARAMETRI WITH (NOLOCK)" +
         kCrLf + "         ON CONVERT(DECIMAL(2,0), FW31_DITTARAGG) = CG41_GRUPPO" + kCrLf +
         "         AND CONVERT(CHAR(10), FW31_CODTIPO) = CG41_CONTO" + kCrLf +
         "         AND FW31_INDTIPO = 26" + kCrLf + "         AND FW31_ID_FW07 = 5" + kCrLf +
         "     AND (FW31_FLGABILITATO = 0" + kCrLf +
         (exclude_not_visible ? "    OR FW31_FLGMODIFICA = 0" : "") +
         "                    ) "
         " ORDER BY CG41_CONTO";
}

INSTANTIATE_TEST_SUITE_P(
    Statements, ComponentSqlTest,
    ::testing::Values(
        Case{"article states not revoked, through IN ((SELECT ...))",
             "SELECT MG66_CODART FROM MG66_ARTICOLI WHERE " + StatiArticoloCondition("5") +
                 " ORDER BY MG66_CODART",
             "ART1,ART2,ART4"},
        Case{"article states with their enabled flag",
             " SELECT MG6W_INDSTATO, MG6W_DESCR,   (CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 "
             "ELSE FW31_FLGABILITATO END) AS ENABLED  FROM MG6W_STATIART  LEFT OUTER JOIN "
             "VFW31_RVKPARAMETRI ON FW31_CODTIPO = MG6W_INDSTATO                          AND "
             "FW31_ID_FW07 = 5                      AND FW31_INDTIPO = 14  ORDER BY MG6W_INDSTATO ",
             "1|attivo|1,2|sospeso|1,3|obsoleto|0"},
        Case{"function revoked by every group", FunctionByGroups("7"), "5|7|0"},
        Case{"function enabled by one group", FunctionByGroups("8"), ""},
        Case{"the '99' row wins for bill types 30 to 39", BillTypeRights("31"), "1|0|1|1"},
        Case{"bill revision state with a hint",
             "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE   "
             "FW31_INDTIPO      = 34 AND   FW31_CODTIPO      = '2' AND   FW31_ID_FW07      = 5 "
             "AND   FW31_FLGABILITATO = 0",
             "0"},
        Case{"blocked accounts", BlockedAccountsJoin(false), "1001"},
        Case{"blocked or not visible accounts", BlockedAccountsJoin(true), "1001,1002"},
        Case{"warehouse revocation, TOP 1 *",
             "SELECT TOP 1 * FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = "
             "6  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND FW31_CODTIPO = 'A1'",
             "5|6|1|A1|0|1|1|1"},
        Case{"transfer function through dbo.", "SELECT dbo.FNFW_TRASFREVOCATI (1, 5, 'A1', 'B2')",
             "1"},
        Case{"latest re-enabling of the day as style-120 text",
             "SELECT  convert(varchar(25), FW33_DATAORA, 120) AS FW33_DATAORA  FROM FW33_RVKUSER "
             " WHERE FW33_ID_FW07 = 5 AND FW33_DATA = '2024-03-01' AND FW33_AZIONE = 10 order "
             "by FW33_DATAORA desc ",
             "2024-03-01 10:00:00"},
        Case{"failures since the re-enabling",
             "SELECT COUNT(FW33_ID_FW07) AS NUMPROVE FROM FW33_RVKUSER  WHERE FW33_ID_FW07 = 5  "
             "AND FW33_DATAORA > convert(datetime, '2024-03-01 10:00:00', 120) AND FW33_AZIONE = "
             "0 AND FW33_RISULTATO = 1",
             "1"},
        Case{"login log insert with the server clock, read back",
             " INSERT INTO FW33_RVKUSER  (FW33_ID_FW07, FW33_DATA, FW33_AZIONE, FW33_RISULTATO, "
             "FW33_WINUSER, FW33_DATAORA)  VALUES  (5, '2024-03-01', 0, 1,'mario', "
             "[dbo].[KVL_GETDATE]()) ; SELECT FW33_DATAORA FROM FW33_RVKUSER WHERE FW33_WINUSER "
             "= N'mario'",
             "2024-03-01 11:00:00.000"}));

}  // namespace
}  // namespace zarvik::db
