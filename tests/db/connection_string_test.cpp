#include "db/connection_string.h"

#include <gtest/gtest.h>

namespace zarvik::db {
namespace {

TEST(ConnectionStringTest, ParsesKeysValuesAndQuoting) {
  std::string parsed;
  for (const ConnectionStringItem& item : ParseConnectionString(
           " Provider = SQLOLEDB ;junk; Password=\"a;b\" ;PWD={x}}y;z};User ID='o''k';Empty=;"
           "Data Source=srv\\inst,1433")) {
    parsed += "[" + item.key + "=" + item.value + "]";
  }
  EXPECT_EQ(parsed,
            "[Provider=SQLOLEDB][Password=a;b][PWD=x}y;z][User ID=o'k][Empty=]"
            "[Data Source=srv\\inst,1433]");
  // The last of repeated keys counts; keys compare without regard to case.
  EXPECT_EQ(ConnectionStringValue("a=1;A=2", "a") + "|" + ConnectionStringValue("a=1", "b"), "2|");
  std::string known;  // the names taken for SQL Server's OLE DB providers
  for (const char* provider :
       {"SQLOLEDB", "sqloledb.1", "SQLNCLI11", "SQLNCLI11.1", "MSOLEDBSQL", "MSOLEDBSQL19",
        "SQLite", "MSDASQL", "Microsoft.Jet.OLEDB.4.0", "SQLOLEDBX", ""}) {
    if (IsSqlServerOleDbProvider(provider)) known += std::string(provider) + " ";
  }
  EXPECT_EQ(known, "SQLOLEDB sqloledb.1 SQLNCLI11 SQLNCLI11.1 MSOLEDBSQL MSOLEDBSQL19 ");
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

}  // namespace
}  // namespace zarvik::db
