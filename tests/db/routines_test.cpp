// Functions and stored procedures of the ZARVIK_ROUTINES table, reached
// through Connection and Command on the embedded engine.
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

using D = ParameterDirection;

// A transfer is revoked when a row of TRASF names both warehouses; the
// account procedure reads ACCOUNTS (missing row: everything allowed).
const char kRoutines[] =
    "CREATE TABLE ZARVIK_ROUTINES (ROUTINE_NAME TEXT PRIMARY KEY, ROUTINE_BODY TEXT NOT NULL);\n"
    "CREATE TABLE TRASF (DITTA INTEGER, UTENTE INTEGER, ORIG TEXT, DEST TEXT);\n"
    "INSERT INTO TRASF VALUES (1, 5, 'A1', 'B2');\n"
    "CREATE TABLE ACCOUNTS (UTENTE INTEGER, GRUPPO INTEGER, CONTO TEXT, ABIL INTEGER, VIS "
    "INTEGER);\n"
    "INSERT INTO ACCOUNTS VALUES (5, 12, '0100', 0, 1);\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('FNFW_TRASFREVOCATI', 'SELECT 1 FROM TRASF WHERE "
    "DITTA = ?1 AND UTENTE = ?2 AND ORIG = ?3 AND DEST = ?4');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('KVL_GETDATE', 'SELECT ''2024-03-01 10:20:30''');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SPFW_GetInfoRevokeContoPDC', 'SELECT "
    "IFNULL(MAX(ABIL), 1) AS canAbilitato, IFNULL(MAX(VIS), 1) AS canVisualizza FROM ACCOUNTS "
    "WHERE UTENTE = :IdUtente AND GRUPPO = :GruppoPDC AND CONTO = :ContoPDC');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SP_DOUBLE', 'SELECT :X * 2 AS X, :D AS Flag');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SP_ROWS', 'SELECT :N AS A UNION ALL SELECT :N + 1 "
    "WHERE :N IS NOT NULL');\n";

const char kAccounts[] = "SPFW_GetInfoRevokeContoPDC";

std::shared_ptr<Connection> OpenWithRoutines() { return OpenConnection(kMemory, kRoutines); }

Variant Scalar(Connection& connection, const std::string& sql) {
  return connection.Execute(sql)->Fields(0);
}

// Every way a host writes the call reaches the same function; the
// arguments bind to ?1..?4 in order; no row gives NULL.
TEST(RoutinesTest, EveryRowIsAFunctionUnderEveryNameForm) {
  auto connection = OpenWithRoutines();
  for (const char* name :
       {"FNFW_TRASFREVOCATI", "dbo.FNFW_TRASFREVOCATI", "[dbo].[FNFW_TRASFREVOCATI]",
        "DBO.fnfw_trasfrevocati", "[dbo].FNFW_TRASFREVOCATI"}) {
    EXPECT_EQ(Scalar(*connection, std::string("SELECT ") + name + " (1, 5, 'A1', 'B2')").ToLong(),
              1)
        << name;
    EXPECT_TRUE(Scalar(*connection, std::string("SELECT ") + name + "(1, 5, 'B2', 'A1')").IsNull())
        << name;
  }
  EXPECT_EQ(Scalar(*connection, "SELECT fnfw_trasfrevocati(DITTA, UTENTE, ORIG, DEST) FROM TRASF")
                .ToLong(),
            1);
  // A row added later is callable at once.
  connection->Execute("INSERT INTO ZARVIK_ROUTINES VALUES ('FN_TWICE', 'SELECT ?1 * 2')");
  EXPECT_EQ(Scalar(*connection, "SELECT dbo.FN_TWICE(21)").ToLong(), 42);
}

TEST(RoutinesTest, FunctionsAreRegisteredWhenAFileDatabaseOpens) {
  const TempDbFile file("routines");
  const std::string source = "Provider=SQLite;Mode=ReadWriteCreate;Data Source=" + file.path();
  OpenConnection(source, kRoutines)->Close();
  auto connection = OpenConnection("Provider=SQLite;Data Source=" + file.path());
  EXPECT_EQ(Scalar(*connection, "SELECT dbo.FNFW_TRASFREVOCATI(1, 5, 'A1', 'B2')").ToLong(), 1);
  auto rs = connection->ExecuteScript(
      " INSERT INTO TRASF (DITTA, ORIG)  VALUES  (9, [dbo].[KVL_GETDATE]()) ;"
      "SELECT ORIG FROM TRASF WHERE DITTA = 9");
  EXPECT_EQ(rs->Fields("ORIG").ToString(), "2024-03-01 10:20:30");
}

TEST(RoutinesTest, FunctionErrorsAreProviderErrorsNamingTheFunction) {
  auto connection = OpenWithRoutines();
  connection->Execute("INSERT INTO ZARVIK_ROUTINES VALUES ('FN_BROKEN', 'SELECT ?1 FROM NOSUCH')");
  struct Case {
    const char* sql;
    const char* says;
  };
  for (const Case& c : {Case{"SELECT FN_BROKEN(1)", "no such table: NOSUCH"},
                        Case{"SELECT FNFW_TRASFREVOCATI(1)", "needs 4 argument(s), called with 1"},
                        Case{"SELECT FN_NOPE(1)", "no such function: FN_NOPE"}}) {
    const VbError e = CaughtError([&] { connection->Execute(c.sql); });
    EXPECT_EQ(e.Number(), vberr::kProviderError) << c.sql;
    EXPECT_NE(e.Description().find(c.says), std::string::npos) << e.Description();
  }
}

// Inputs come from the body's :Name parameters, outputs from its result
// columns; a name in both is input-output. Looked up without regard to
// case or the schema prefix.
TEST(RoutinesTest, ProcedureDescriptionComesFromTheBody) {
  auto connection = OpenWithRoutines();
  struct Expected {
    const char* name;
    D direction;
  };
  const std::vector<std::pair<std::string, std::vector<Expected>>> cases = {
      {"[dbo].[sp_double]", {{"@X", D::kInputOutput}, {"@D", D::kInput}, {"@Flag", D::kOutput}}},
      {kAccounts,
       {{"@IdUtente", D::kInput},
        {"@GruppoPDC", D::kInput},
        {"@ContoPDC", D::kInput},
        {"@canAbilitato", D::kOutput},
        {"@canVisualizza", D::kOutput}}},
  };
  for (const auto& [procedure, expected] : cases) {
    const std::vector<ParameterInfo> params =
        connection->OpenBackendOrThrow().DescribeProcedure(procedure);
    ASSERT_EQ(params.size(), expected.size()) << procedure;
    for (size_t i = 0; i < params.size(); ++i) {
      EXPECT_EQ(params[i].name, expected[i].name) << procedure;
      EXPECT_EQ(params[i].direction, expected[i].direction) << params[i].name;
      EXPECT_EQ(params[i].type, adtype::kVariant) << params[i].name;
    }
  }
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

// Declared explicitly (as for a driver that cannot describe): only inputs
// bind, an output without a column of its name is NULL, and a procedure
// without outputs returns its rows.
TEST(RoutinesTest, ExplicitParametersAndProcedureRows) {
  auto connection = OpenWithRoutines();
  Command command = StoredProc(kAccounts, connection);
  command.AppendParameter({"@IdUtente", adtype::kInteger, D::kInput, Variant(int32_t{5})});
  command.AppendParameter({"@GruppoPDC", adtype::kSmallInt, D::kInput, Variant(int16_t{12})});
  command.AppendParameter({"@ContoPDC", adtype::kVarChar, D::kInput, Variant("0100")});
  command.AppendParameter({"@canAbilitato", adtype::kInteger, D::kOutput, Variant()});
  command.AppendParameter({"@Other", adtype::kInteger, D::kOutput, Variant(int32_t{3})});
  command.Execute();
  EXPECT_EQ(command.Parameters("@canAbilitato").Value().ToLong(), 0);
  EXPECT_TRUE(command.Parameters("@Other").Value().IsNull());
  EXPECT_EQ(ErrorOf([&] { command.Parameters("@canVisualizza"); }), vberr::kAdoItemNotFound);

  Command rows = StoredProc("SP_ROWS", connection);
  rows.AppendParameter({"@N", adtype::kInteger, D::kInput, Variant(int32_t{7})});
  auto rs = rows.Execute();
  ASSERT_EQ(rs->State(), kStateOpen);
  EXPECT_EQ(rs->RecordCount(), 2);
  EXPECT_EQ(rs->Fields("A").ToLong(), 7);
  // Called by name through the connection, without parameters: :N is NULL.
  EXPECT_TRUE(connection->Execute("SP_ROWS", kCmdStoredProc)->Fields("A").IsNull());
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
  Command unknown = StoredProc("SP_NOPE", connection);
  const VbError e = CaughtError([&] { unknown.Parameters("@X"); });
  EXPECT_EQ(e.Number(), vberr::kProviderError);
  EXPECT_EQ(e.Description(), "Could not find stored procedure 'SP_NOPE'.");
  // A body SQLite cannot prepare names the procedure.
  connection->Execute("INSERT INTO ZARVIK_ROUTINES VALUES ('SP_BAD', 'SELECT FROM')");
  const VbError bad = CaughtError([&] { connection->Execute("SP_BAD", kCmdStoredProc); });
  EXPECT_EQ(bad.Number(), vberr::kProviderError);
  EXPECT_NE(bad.Description().find("procedure SP_BAD"), std::string::npos) << bad.Description();
  // Without a routines table at all.
  EXPECT_EQ(ErrorOf([] { OpenConnection()->Execute("SP_ROWS", kCmdStoredProc); }),
            vberr::kProviderError);
}

}  // namespace
}  // namespace zarvik::db
