
#include "db/db_test_support.h"

namespace zarvik::db {
namespace {

using D = ParameterDirection;

const char kRoutines[] =
    "CREATE TABLE ZARVIK_ROUTINES (ROUTINE_NAME TEXT PRIMARY KEY, ROUTINE_BODY TEXT NOT NULL);\n"
    "CREATE TABLE TRASF (DITTA INTEGER, UTENTE INTEGER, ORIG TEXT, DEST TEXT);\n"
    "INSERT INTO TRASF VALUES (1, 5, 'A1', 'B2');\n"
    "CREATE TABLE ACCOUNTS (UTENTE INTEGER, GRUPPO INTEGER, CONTO TEXT, ABIL INT, VIS INT);\n"
    "INSERT INTO ACCOUNTS VALUES (5, 12, '0100', 0, 1);\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('FNFW_TRASFREVOCATI', 'SELECT 1 FROM TRASF WHERE "
    "DITTA = ?1 AND UTENTE = ?2 AND ORIG = ?3 AND DEST = ?4'), ('KVL_GETDATE', 'SELECT "
    "''2024-03-01 10:20:30'''), ('FN_GAP', 'SELECT ?1 || ?3'), ('FN_NONE', 'SELECT ''x'''), "
    "('FN_BROKEN', 'SELECT ?1 FROM NOSUCH');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SPFW_GetInfoRevokeContoPDC', 'SELECT "
    "IFNULL(MAX(ABIL), 1) AS canAbilitato, IFNULL(MAX(VIS), 1) AS canVisualizza FROM ACCOUNTS "
    "WHERE UTENTE = :IdUtente AND GRUPPO = :GruppoPDC AND CONTO = :ContoPDC');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SP_DOUBLE', 'SELECT :X * 2 AS X, :D AS Flag');\n"
    "INSERT INTO ZARVIK_ROUTINES VALUES ('SP_ROWS', 'SELECT :N AS A UNION ALL SELECT :N + 1 "
    "WHERE :N IS NOT NULL');\n";

const char kAccounts[] = "SPFW_GetInfoRevokeContoPDC";

std::shared_ptr<Connection> OpenWithRoutines() { return OpenConnection(kMemory, kRoutines); }

// Every name form reaches the function; arguments beyond the body's highest ?n are ignored.
TEST(RoutinesTest, EveryRowIsAFunction) {
  auto connection = OpenWithRoutines();
  for (const char* name :
       {"FNFW_TRASFREVOCATI", "dbo.FNFW_TRASFREVOCATI", "[dbo].[FNFW_TRASFREVOCATI]",
        "DBO.fnfw_trasfrevocati", "[dbo].FNFW_TRASFREVOCATI"}) {
    EXPECT_EQ(Answer(*connection, std::string("SELECT ") + name + " (1, 5, 'A1', 'B2')"), "1");
    EXPECT_EQ(Answer(*connection, std::string("SELECT ") + name + "(1, 5, 'B2', 'A1')"), "");
  }
  const std::string e = std::to_string(vberr::kProviderError) + " ";
  const std::vector<std::pair<const char*, std::string>> cases = {
      {"SELECT fnfw_trasfrevocati(DITTA, UTENTE, ORIG, DEST) FROM TRASF", "1"},
      {"SELECT FN_GAP('a', 'b', 'c', 'd', 'e')", "ac"},
      {"SELECT FN_NONE(1, 2)", "x"},
      {"SELECT FN_NONE()", "x"},
      {"SELECT FN_GAP('a', 'b')",
       e + "SQLite error 1: function FN_GAP: needs 3 argument(s), called with 2"},
      {"SELECT FN_BROKEN(1)", e + "SQLite error 1: function FN_BROKEN: no such table: NOSUCH"},
      {"SELECT FN_NOPE(1)", e + "SQLite error 1: no such function: FN_NOPE"}};
  for (const auto& [sql, answer] : cases) {
    EXPECT_EQ(Answer(*connection, sql).substr(0, answer.size()), answer) << sql;
  }
  // A row added later is callable at once.
  connection->Execute("INSERT INTO ZARVIK_ROUTINES VALUES ('FN_TWICE', 'SELECT ?1 * 2')");
  EXPECT_EQ(Answer(*connection, "SELECT dbo.FN_TWICE(21)"), "42");
}

// Routines another connection stored are found, also when added after this one opened.
TEST(RoutinesTest, AnotherConnectionsRoutinesAreFound) {
  const TempDbFile file("routines");
  const std::string source = "Provider=SQLite;Mode=ReadWriteCreate;Data Source=" + file.path();
  OpenConnection(source, kRoutines)->Close();
  auto connection = OpenConnection("Provider=SQLite;Data Source=" + file.path());
  EXPECT_EQ(Answer(*connection, "SELECT [dbo].[KVL_GETDATE]()"), "2024-03-01 10:20:30");
  OpenConnection(source, "INSERT INTO ZARVIK_ROUTINES VALUES ('FN_LATE', 'SELECT 8')");
  EXPECT_EQ(Answer(*connection, "SELECT FN_LATE()"), "8");
}

// Inputs are the body's :Name parameters, outputs its result columns, a name in both InOut.
TEST(RoutinesTest, ProcedureDescriptionComesFromTheBody) {
  auto connection = OpenWithRoutines();
  const char* in_out[] = {"", "in", "out", "in-out", "return"};
  std::string described;
  for (const ParameterInfo& p :
       connection->OpenBackendOrThrow().DescribeProcedure("[dbo].[sp_double]")) {
    EXPECT_EQ(p.type, adtype::kVariant) << p.name;
    described += p.name + " " + in_out[static_cast<int>(p.direction)] + ", ";
  }
  EXPECT_EQ(described, "@X in-out, @D in, @Flag out, ");
}

// The values of the command's parameters `names`, joined by "|".
std::string Values(Command& command, const std::vector<std::string>& names) {
  std::string values;
  for (const std::string& name : names)
    values += "|" + command.Parameters(name).Value().ConcatText();
  return values.substr(1);
}

// Described parameters are found without "@" and case; a date is bound as SQLite text.
TEST(RoutinesTest, CommandDescribesBindsAndReadsOutputs) {
  auto connection = OpenWithRoutines();
  Command command = StoredProc(kAccounts, connection);
  EXPECT_TRUE(command.Parameters("@canAbilitato").Value().IsEmpty());
  command.SetCommandText("SP_DOUBLE");  // another text describes its own
  command.Parameters("X").SetValue(Variant(1.25));
  command.Parameters("@d").SetValue(Variant::Date(45352.5));  // 2024-03-01 12:00
  EXPECT_EQ(command.Execute()->State(), kStateClosed);
  EXPECT_EQ(Values(command, {"@X", "@Flag"}), "2.5|2024-03-01 12:00:00");
  command.SetCommandText("SP_DOUBLE");  // the same text keeps the parameters
  command.Parameters("@D").SetValue(Variant::Date(45352));
  command.Execute();
  EXPECT_EQ(Values(command, {"@X", "@Flag"}), "5|2024-03-01");
}

// Declared explicitly: an output without a column is NULL; without outputs, rows come back.
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
  auto rs = rows.Execute();  // open, two rows
  EXPECT_EQ(std::to_string(rs->RecordCount()) + " " + rs->Fields("A").ConcatText(), "2 7");
  // Called by name through the connection, without parameters: :N is NULL.
  EXPECT_TRUE(connection->Execute("SP_ROWS", kCmdStoredProc)->Fields("A").IsNull());
}

TEST(RoutinesTest, CommandErrors) {
  Command unbound = StoredProc(kAccounts, nullptr);
  Command closed = StoredProc(kAccounts, std::make_shared<Connection>());
  auto connection = OpenWithRoutines();
  const int32_t kUnusable = vberr::kAdoConnectionUnusable;
  EXPECT_EQ(ErrorsOf({[&] { unbound.Parameters("@IdUtente"); }, [&] { unbound.Execute(); },
                      [&] { closed.Parameters("@IdUtente"); }, [&] { closed.Execute(); },
                      [&] { StoredProc(kAccounts, connection).Parameters("@Nope"); },
                      [] { OpenConnection()->Execute("SP_ROWS", kCmdStoredProc); }}),
            (std::vector<int32_t>{kUnusable, kUnusable, kUnusable, kUnusable,
                                  vberr::kAdoItemNotFound, vberr::kProviderError}));
  EXPECT_EQ(Failure([&] { StoredProc("SP_NOPE", connection).Parameters("@X"); }),
            std::to_string(vberr::kProviderError) + " Could not find stored procedure 'SP_NOPE'.");
  // A body SQLite cannot prepare names the procedure.
  connection->Execute("INSERT INTO ZARVIK_ROUTINES VALUES ('SP_BAD', 'SELECT FROM')");
  const std::string bad = Failure([&] { connection->Execute("SP_BAD", kCmdStoredProc); });
  EXPECT_NE(bad.find("procedure SP_BAD"), std::string::npos) << bad;
}

}  // namespace
}  // namespace zarvik::db
