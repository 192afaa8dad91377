// Connection strings: parsing, the SQL Server mapping, providers, SQLite modes.
#include "db/connection_string.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "db/backend.h"
#include "db/db_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

TEST(ConnectionStringTest, ParsesKeysValuesAndQuoting) {
  const std::vector<ConnectionStringItem> items = ParseConnectionString(
      " Provider = SQLOLEDB ;junk; Password=\"a;b\" ;PWD={x}}y;z};User ID='o''k';Empty=;"
      "Data Source=srv\\inst,1433");
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"Provider", "SQLOLEDB"}, {"Password", "a;b"}, {"PWD", "x}y;z"},
      {"User ID", "o'k"},       {"Empty", ""},       {"Data Source", "srv\\inst,1433"}};
  std::vector<std::pair<std::string, std::string>> parsed;
  for (const ConnectionStringItem& item : items) parsed.emplace_back(item.key, item.value);
  EXPECT_EQ(parsed, expected);
  // The last of repeated keys counts; keys compare without regard to case.
  EXPECT_EQ(ConnectionStringValue("a=1;A=2", "a"), "2");
  EXPECT_EQ(ConnectionStringValue("a=1", "b"), "");
}

TEST(ConnectionStringTest, SqlServerOleDbStringsBecomeOdbcStrings) {
  const std::pair<const char*, const char*> cases[] = {
      {"Provider=SQLOLEDB.1;Data Source=erp01;Initial Catalog=ERP;User ID=sa;Password=s3cret",
       "Driver={D};Server=erp01;Database=ERP;UID=sa;PWD=s3cret"},
      {"Provider=MSOLEDBSQL;Server=tcp:erp01,1433;Database=ERP;Integrated Security=SSPI;"
       "Persist Security Info=False;Encrypt=yes;TrustServerCertificate=yes",
       "Driver={D};Server=tcp:erp01,1433;Database=ERP;Trusted_Connection=yes;Encrypt=yes;"
       "TrustServerCertificate=yes"},
      {"Provider=SQLNCLI11;Data Source=.\\SQLEXPRESS;Initial Catalog=ERP;"
       "Integrated Security=False;User ID=app;Password=\"p;w{d}\";Application Name=ERP;"
       "Connect Timeout=15",
       "Driver={D};Server=.\\SQLEXPRESS;Database=ERP;UID=app;PWD={p;w{d}}};APP=ERP"},
      // A Driver item names the driver; unknown keywords pass unchanged.
      {"Provider=SQLOLEDB;Driver=FreeTDS;Server=h;TDS_Version=7.4",
       "Driver={FreeTDS};Server=h;TDS_Version=7.4"},
  };
  for (const auto& [oledb, odbc] : cases) EXPECT_EQ(SqlServerOdbcFromOleDb(oledb, "D"), odbc);
}

TEST(ConnectionStringTest, KnownAndUnknownProviders) {
  for (const auto& [provider, known] :
       std::vector<std::pair<const char*, bool>>{{"SQLOLEDB", true},
                                                 {"sqloledb.1", true},
                                                 {"SQLNCLI11", true},
                                                 {"SQLNCLI11.1", true},
                                                 {"MSOLEDBSQL", true},
                                                 {"MSOLEDBSQL19", true},
                                                 {"SQLite", false},
                                                 {"MSDASQL", false},
                                                 {"Microsoft.Jet.OLEDB.4.0", false},
                                                 {"SQLOLEDBX", false},
                                                 {"", false}}) {
    EXPECT_EQ(IsSqlServerOleDbProvider(provider), known) << provider;
  }
  const VbError e =
      CaughtError([] { OpenBackend("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=x.mdb", 0); });
  EXPECT_EQ(e.Number(), vberr::kAdoProviderNotFound);
  EXPECT_EQ(e.Description(),
            "Provider cannot be found. It may not be properly installed. (Provider="
            "Microsoft.Jet.OLEDB.4.0; known providers: SQLite, SQLOLEDB, SQLNCLI11, MSOLEDBSQL, "
            "MSDASQL)");
  // MSDASQL hands the rest to the driver manager.
  const VbError odbc =
      CaughtError([] { OpenBackend("Provider=MSDASQL;DSN=zarvik_no_such_dsn", 0); });
  EXPECT_EQ(odbc.Number(), vberr::kProviderConnectFailed);
  EXPECT_EQ(odbc.Description().rfind("[IM002]", 0), 0u) << odbc.Description();
}

// A missing database file is an error and is not created, unless Mode says so.
TEST(ConnectionStringTest, SqliteOpenModes) {
  const TempDbFile file("modes");
  const std::string source = "Provider=SQLite;Data Source=" + file.path();
  const VbError missing = CaughtError([&] { OpenBackend(source, 0); });
  EXPECT_EQ(missing.Number(), vberr::kProviderConnectFailed);
  EXPECT_NE(missing.Description().find("zarvik init-db"), std::string::npos)
      << missing.Description();
  EXPECT_FALSE(std::ifstream(file.path()).good());

  OpenBackend(source + ";Mode=ReadWriteCreate", 0)->Execute("CREATE TABLE T (A INTEGER)");
  OpenBackend(source, 0)->Execute("INSERT INTO T VALUES (1)");
  auto read_only = OpenBackend(source + ";Mode=ReadOnly", 0);
  EXPECT_EQ(read_only->Execute("SELECT COUNT(*) FROM T").rows[0][0].ToLong(), 1);
  const VbError write = CaughtError([&] { read_only->Execute("INSERT INTO T VALUES (2)"); });
  EXPECT_NE(write.Description().find("readonly"), std::string::npos) << write.Description();
  const VbError mode = CaughtError([&] { OpenBackend(source + ";Mode=Sometimes", 0); });
  EXPECT_EQ(mode.Number(), vberr::kProviderConnectFailed);
  EXPECT_EQ(mode.Description(),
            "SQLite: Mode must be ReadWrite, ReadWriteCreate or ReadOnly, not 'Sometimes'");
}

}  // namespace
}  // namespace zarvik::db
