// Functions and stored procedures of the ZARVIK_ROUTINES table, reached
// through Connection and Command.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "db/backend.h"
#include "db/command.h"
#include "db/connection.h"
#include "db/db_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

// A transfer is revoked when a row of TRASF names both warehouses; the
// account procedure reads ACCOUNTS (missing row: everything allowed).
const char kRoutines[] =
    "CREATE TABLE ZARVIK_ROUTINES (NAME TEXT PRIMARY KEY, KIND TEXT NOT NULL, PARAMS TEXT NOT "
    "NULL, BODY TEXT NOT NULL);\n"
    "CREATE TABLE TRASF (DITTA INTEGER, UTENTE INTEGER, ORIG TEXT, DEST TEXT);\n"
    "INSERT INTO TRASF VALUES (1, 5, 'A1', 'B2');\n"
    "CREATE TABLE ACCOUNTS (UTENTE INTEGER, GRUPPO INTEGER, CONTO TEXT, ABIL INTEGER, VIS "
    "INTEGER);\n"
    "INSERT INTO ACCOUNTS VALUES (5, 12, '0100', 0, 1);\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('FNFW_TRASFREVOCATI', 'FUNCTION', '@Ditta INT, "
    "@IdUtente INT, @DepOrig VARCHAR, @DepDest VARCHAR', 'SELECT 1 FROM TRASF WHERE DITTA = "
    ":Ditta AND UTENTE = :IdUtente AND ORIG = :DepOrig AND DEST = :DepDest');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('KVL_GETDATE', 'FUNCTION', '', 'SELECT "
    "''2024-03-01 10:20:30''');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SPFW_GetInfoRevokeContoPDC', 'PROCEDURE', '@IdUtente "
    "INT IN, @GruppoPDC SMALLINT IN, @ContoPDC VARCHAR(20) IN, @canAbilitato INT OUT, "
    "@canVisualizza INT OUT', 'SELECT IFNULL(MAX(ABIL), 1) AS canAbilitato, IFNULL(MAX(VIS), 1) "
    "AS canVisualizza FROM ACCOUNTS WHERE UTENTE = :IdUtente AND GRUPPO = :GruppoPDC AND CONTO = "
    ":ContoPDC');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SP_DOUBLE', 'procedure', '@X FLOAT INOUT, @D DATETIME "
    "IN, @Flag INT OUT', 'SELECT :X * 2 AS X, :D AS Flag');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SP_ROWS', 'PROCEDURE', '@N INT', 'SELECT :N AS A UNION "
    "ALL SELECT :N + 1');\n";

const char kAccounts[] = "SPFW_GetInfoRevokeContoPDC";

std::shared_ptr<Connection> OpenWithRoutines() { return OpenConnection(kMemory, kRoutines); }

Variant TransferRevoked(Connection& connection, const std::string& orig, const std::string& dest) {
  return connection.Execute("SELECT dbo.FNFW_TRASFREVOCATI (1, 5, '" + orig + "', '" + dest + "')")
      ->Fields(0);
}

TEST(RoutinesTest, FunctionsCreatedByAScriptOrLaterAreCallable) {
  auto connection = OpenWithRoutines();
  EXPECT_EQ(TransferRevoked(*connection, "A1", "B2").ToLong(), 1);
  EXPECT_TRUE(TransferRevoked(*connection, "B2", "A1").IsNull());  // no row: NULL
  // Names are case-insensitive; arguments bind by declared position.
  auto rs =
      connection->Execute("SELECT fnfw_trasfrevocati(DITTA, UTENTE, ORIG, DEST) AS R FROM TRASF");
  EXPECT_EQ(rs->Fields("R").ToLong(), 1);
  connection->Execute(
      "INSERT INTO ZARVIK_ROUTINES VALUES ('FN_TWICE', 'FUNCTION', '@V INT', 'SELECT :V * 2')");
  EXPECT_EQ(connection->Execute("SELECT FN_TWICE(21) AS V")->Fields("V").ToLong(), 42);
}

TEST(RoutinesTest, FunctionsAreRegisteredWhenAFileDatabaseOpens) {
  const TempDbFile file("routines");
  const std::string source = "Provider=SQLite;Data Source=" + file.path();
  OpenConnection(source, kRoutines)->Close();
  auto connection = OpenConnection(source);
  EXPECT_EQ(TransferRevoked(*connection, "A1", "B2").ToLong(), 1);
  auto rs = connection->Execute(
      " INSERT INTO TRASF (DITTA, ORIG)  VALUES  (9, [dbo].[KVL_GETDATE]()) ;"
      "SELECT ORIG FROM TRASF WHERE DITTA = 9");
  EXPECT_EQ(rs->Fields("ORIG").ToString(), "2024-03-01 10:20:30");
}

TEST(RoutinesTest, RoutineErrorsAreProviderErrors) {
  auto connection = OpenWithRoutines();
  connection->Execute(
      "INSERT INTO ZARVIK_ROUTINES VALUES ('FN_BROKEN', 'FUNCTION', '@V INT', 'SELECT :V FROM "
      "NOSUCH'), ('SP_BAD', 'PROCEDURE', '@A GEOGRAPHY IN', 'SELECT 1')");
  VbError e = CaughtError([&] { connection->Execute("SELECT FN_BROKEN(1)"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("FN_BROKEN"), std::string::npos) << e.Description();
  EXPECT_NE(e.Description().find("no such table: NOSUCH"), std::string::npos) << e.Description();
  // Wrong number of arguments, an unknown function, a bad parameter list.
  EXPECT_EQ(ErrorOf([&] { connection->Execute("SELECT FNFW_TRASFREVOCATI(1)"); }),
            vberr::kProviderError);
  EXPECT_EQ(ErrorOf([&] { connection->Execute("SELECT FN_NOPE(1)"); }), vberr::kProviderError);
  e = CaughtError([&] { connection->OpenBackendOrThrow().DescribeProcedure("SP_BAD"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_NE(e.Description().find("@A GEOGRAPHY IN"), std::string::npos) << e.Description();
}

// Looked up without regard to case or the schema prefix; the direction
// defaults to IN.
TEST(RoutinesTest, ProcedureDescriptionFollowsParams) {
  const std::vector<ParameterInfo> params =
      OpenWithRoutines()->OpenBackendOrThrow().DescribeProcedure("[dbo].[sp_double]");
  ASSERT_EQ(params.size(), 3u);
  const std::vector<std::string> names = {"@X", "@D", "@Flag"};
  const std::vector<int> types = {adtype::kDouble, adtype::kDate, adtype::kInteger};
  const std::vector<ParameterDirection> directions = {
      ParameterDirection::kInputOutput, ParameterDirection::kInput, ParameterDirection::kOutput};
  for (size_t i = 0; i < params.size(); ++i) {
    EXPECT_EQ(params[i].name, names[i]);
    EXPECT_EQ(params[i].type, types[i]) << names[i];
    EXPECT_EQ(params[i].direction, directions[i]) << names[i];
  }
  EXPECT_EQ(OpenWithRoutines()->OpenBackendOrThrow().DescribeProcedure("SP_ROWS")[0].direction,
            ParameterDirection::kInput);
}

TEST(RoutinesTest, CommandDescribesBindsAndReadsOutputs) {
  auto connection = OpenWithRoutines();
  auto log = std::make_shared<StatementLog>();
  connection->SetStatementLog(log);
  struct Row {
    int16_t gruppo;
    const char* conto;
    int32_t abil, vis;
  };
  for (const Row& row : {Row{12, "0100", 0, 1}, Row{12, "0200", 1, 1}, Row{13, "0100", 1, 1}}) {
    Command command = StoredProc(kAccounts, connection);
    command.Parameters("@GruppoPDC").SetValue(Variant(row.gruppo));
    command.Parameters("@ContoPDC").SetValue(Variant(row.conto));
    command.Parameters("@idutente").SetValue(Variant(int32_t{5}));
    EXPECT_TRUE(command.Parameters("@canAbilitato").Value().IsEmpty());
    EXPECT_EQ(command.Execute()->State(), kStateClosed);
    EXPECT_EQ(command.Parameters("@canAbilitato").Value().ToLong(), row.abil) << row.conto;
    EXPECT_EQ(command.Parameters("@canVisualizza").Value().ToLong(), row.vis) << row.conto;
  }
  EXPECT_EQ(log->statements, std::vector<std::string>(3, "{call SPFW_GetInfoRevokeContoPDC}"));
}

TEST(RoutinesTest, InOutAndDateParameters) {
  Command command = StoredProc("SP_DOUBLE", OpenWithRoutines());
  command.Parameters("X").SetValue(Variant(1.25));
  command.Parameters("@D").SetValue(Variant::Date(45352.5));  // 2024-03-01 12:00
  command.Execute();
  EXPECT_EQ(command.Parameters("@X").Value().ToDouble(), 2.5);
  EXPECT_EQ(command.Parameters("@Flag").Value().ToString(), "2024-03-01 12:00:00");
  command.Parameters("@D").SetValue(Variant::Date(45352));
  command.Execute();
  EXPECT_EQ(command.Parameters("@X").Value().ToDouble(), 5.0);
  EXPECT_EQ(command.Parameters("@Flag").Value().ToString(), "2024-03-01");
}

TEST(RoutinesTest, ProcedureWithoutOutputsReturnsItsRows) {
  auto connection = OpenWithRoutines();
  Command command = StoredProc("SP_ROWS", connection);
  command.Parameters("@N").SetValue(Variant(int32_t{7}));
  auto rs = command.Execute();
  ASSERT_EQ(rs->State(), kStateOpen);
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("A").ToLong(), 7);
  // Called by name through the connection, without parameters.
  EXPECT_TRUE(connection->Execute("SP_ROWS", kCmdStoredProc)->Fields("A").IsNull());
  // A text command runs on the connection.
  Command text;
  text.SetCommandType(static_cast<int>(kCmdText));
  text.SetCommandText("SELECT COUNT(*) AS N FROM TRASF");
  text.SetActiveConnection(connection);
  EXPECT_EQ(text.Execute()->Fields("N").ToLong(), 1);
}

TEST(RoutinesTest, ExplicitParametersAreNotDescribed) {
  Command command = StoredProc(kAccounts, OpenWithRoutines());
  using D = ParameterDirection;
  command.AppendParameter({"@IdUtente", adtype::kInteger, D::kInput, Variant(int32_t{5})});
  command.AppendParameter({"@GruppoPDC", adtype::kSmallInt, D::kInput, Variant(int16_t{12})});
  command.AppendParameter({"@ContoPDC", adtype::kVarChar, D::kInput, Variant("0100")});
  command.AppendParameter({"@canAbilitato", adtype::kInteger, D::kOutput, Variant()});
  command.Execute();
  EXPECT_EQ(command.Parameters("@canAbilitato").Value().ToLong(), 0);
  EXPECT_EQ(ErrorOf([&] { command.Parameters("@canVisualizza"); }), vberr::kAdoItemNotFound);
}

TEST(RoutinesTest, CommandErrors) {
  Command unbound = StoredProc(kAccounts, nullptr);
  EXPECT_EQ(ErrorOf([&] { unbound.Parameters("@IdUtente"); }), vberr::kAdoConnectionUnusable);
  EXPECT_EQ(ErrorOf([&] { unbound.Execute(); }), vberr::kAdoConnectionUnusable);
  Command closed = StoredProc(kAccounts, std::make_shared<Connection>());
  EXPECT_EQ(ErrorOf([&] { closed.Parameters("@IdUtente"); }), vberr::kAdoConnectionUnusable);

  auto connection = OpenWithRoutines();
  Command command = StoredProc(kAccounts, connection);
  EXPECT_EQ(ErrorOf([&] { command.Parameters("@Nope"); }), vberr::kAdoItemNotFound);
  // A FUNCTION row is no procedure.
  for (const std::string missing : {"SP_NOPE", "FNFW_TRASFREVOCATI"}) {
    Command unknown = StoredProc(missing, connection);
    const VbError e = CaughtError([&] { unknown.Parameters("@X"); });
    EXPECT_EQ(e.Number(), vberr::kProviderError) << missing;
    EXPECT_EQ(e.Description(), "Could not find stored procedure '" + missing + "'.");
  }
  // Without a routines table at all.
  EXPECT_EQ(ErrorOf([] { OpenConnection()->Execute("SP_ROWS", kCmdStoredProc); }),
            vberr::kProviderError);
}

}  // namespace
}  // namespace zarvik::db
