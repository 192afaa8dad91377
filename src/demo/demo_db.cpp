#include "demo/demo_db.h"

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <memory>
#include <string>

#include "demo/demo_sql.h"
#include "platform/vb_error.h"

namespace zarvik::demo {
namespace {

bool IsBlank(const std::string& text) {
  return text.find_first_not_of(" \t\r\n\f\v") == std::string::npos;
}

std::string TrimBlankLines(const std::string& text) {
  const char* blanks = " \t\r\n\f\v";
  const size_t first = text.find_first_not_of(blanks);
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Runs one statement; a failure names the demo file it comes from.
void RunStatement(db::Connection& connection, const std::string& statement, const char* file) {
  try {
    connection.Execute(statement, db::kCmdText);
  } catch (const VbError& e) {
    throw VbError(e.Number(), e.Description() + " (demo/" + file + ")");
  }
}

}  // namespace

const std::vector<DemoUser>& DemoUsers() {
  static const std::vector<DemoUser> users = {
      {user_id::kZentAd, "ZentAd", "SYS", "zentad", false, true, false, 0,
       "privileged user code: no revocation applies",
       "nothing applies; an old exclusion of company 2 is read only by the company check"},
      {user_id::kRossi, "ROSSI", "VEN", "mrossi", false, true, false, 0,
       "ordinary user with revocations of every kind",
       "company 2; customers 7, SUD, NORD/NO/TO, PA, groupings C, VIP, X2; suppliers 103, EST, "
       "SUD/SU; offices 3, 12; warehouses A1, B2; documents NCV, OFF, FTVP; projects P1, P2; "
       "nodes P3/N2, P4/N1; and one or more codes of every other kind"},
      {user_id::kBianchi, "BIANCHI", "VEN", "lbianchi", false, true, false, 0,
       "ordinary user with revocations in company 2 only",
       "company 2: customer 2, warehouse C3, project Q1, node Q1/N1"},
      {user_id::kVerdi, "VERDI", "AMM", "pverdi", true, true, false, 0,
       "group-based user in the groups AMM and MAG; the most permissive group wins",
       "company 2 (group AMM); warehouse B2 (both groups); project P5 (own row); "
       "function 101 (both groups)"},
      {user_id::kNeri, "NERI", "MAG", "cneri", false, false, false, 0,
       "inactive user: the query filter does not find him",
       "warehouse A1; customers of the macro-area NORD"},
      {user_id::kGialli, "GIALLI", "VEN", "ggialli", false, true, false, 12,
       "agent 12 of company 1 (customers 12 and 40)", "nothing"},
      {user_id::kBruno, "BRUNO", "AMM", "lbruno", false, true, false, 0,
       "login name for the login lock-out", "nothing"},
      {user_id::kGallo, "GALLO", "MAG", "cgallo", false, true, true, 0,
       "login name already locked out", "nothing"},
      {user_id::kEsterno, "ESTERNO", "VEN", "esterno", false, true, false, 0,
       "user id above 32767 (does not fit 16 bits)", "nothing"},
  };
  return users;
}

const DemoUser* FindDemoUser(const std::string& code) {
  for (const DemoUser& u : DemoUsers()) {
    if (code == u.code) return &u;
  }
  return nullptr;
}

std::vector<std::string> SplitSqlScript(const std::string& script) {
  std::vector<std::string> statements;
  std::string current;
  const size_t n = script.size();
  size_t i = 0;
  auto flush = [&]() {
    if (!IsBlank(current)) statements.push_back(TrimBlankLines(current));
    current.clear();
  };
  // Copies a quoted run (literal or identifier) up to its closing character;
  // a doubled closing quote inside stays part of the run.
  auto copy_quoted = [&](char close) {
    current += script[i++];
    while (i < n) {
      const char c = script[i++];
      current += c;
      if (c != close) continue;
      if (close != ']' && i < n && script[i] == close) {
        current += script[i++];
        continue;
      }
      return;
    }
  };
  while (i < n) {
    const char c = script[i];
    if (c == '-' && i + 1 < n && script[i + 1] == '-') {
      while (i < n && script[i] != '\n') ++i;  // the line break stays
    } else if (c == '/' && i + 1 < n && script[i + 1] == '*') {
      const size_t end = script.find("*/", i + 2);
      i = end == std::string::npos ? n : end + 2;
      current += ' ';
    } else if (c == '\'') {
      copy_quoted('\'');
    } else if (c == '"') {
      copy_quoted('"');
    } else if (c == '[') {
      copy_quoted(']');
    } else if (c == ';') {
      ++i;
      flush();
    } else {
      current += c;
      ++i;
    }
  }
  flush();
  return statements;
}

bool IsEmptyDatabase(db::Connection& open_connection) {
  auto rs =
      open_connection.Execute("SELECT COUNT(*) AS NUMOGGETTI FROM sqlite_master", db::kCmdText);
  return rs->Fields("NUMOGGETTI").ToLong() == 0;
}

void CreateDemoDatabase(db::Connection& open_connection) {
  // One transaction: a file database is written once, and a failure leaves
  // it empty rather than half built.
  open_connection.Execute("BEGIN TRANSACTION", db::kCmdText);
  try {
    for (const SqlFile& file : DemoSqlFiles()) {
      for (const std::string& statement : SplitSqlScript(file.text)) {
        RunStatement(open_connection, statement, file.name);
      }
    }
  } catch (...) {
    try {
      open_connection.Execute("ROLLBACK TRANSACTION", db::kCmdText);
    } catch (const VbError&) {
      // The statement's own error is the one worth reporting.
    }
    throw;
  }
  open_connection.Execute("COMMIT TRANSACTION", db::kCmdText);
}

std::string DemoConnectionString(const std::string& path) {
  return "Provider=SQLite;Data Source=" + path;
}

std::shared_ptr<db::Connection> OpenDemoDatabase(const std::string& path) {
  auto connection = std::make_shared<db::Connection>();
  connection->SetConnectionString(DemoConnectionString(path));
  connection->SetCursorLocation(db::kUseClient);
  connection->Open();
  if (path == ":memory:") {
    CreateDemoDatabase(*connection);
  } else if (IsEmptyDatabase(*connection)) {
    throw VbError(vberr::kProviderConnectFailed, "the database " + path +
                                                     " holds no tables; zarvik init-db " + path +
                                                     " creates the demo database in a new file");
  }
  return connection;
}

void InitDemoDatabase(const std::string& path) {
  if (path.empty() || path == ":memory:") {
    throw VbError(vberr::kInvalidProcedureCall, "init-db needs the path of a new database file");
  }
  if (std::ifstream(path).good()) {
    throw VbError(vberr::kInvalidProcedureCall,
                  path +
                      " already exists; init-db creates a new database and leaves an "
                      "existing file alone");
  }
  try {
    db::Connection connection;
    connection.SetConnectionString(DemoConnectionString(path) + ";Mode=ReadWriteCreate");
    connection.Open();
    CreateDemoDatabase(connection);
    connection.Close();
  } catch (...) {
    std::remove(path.c_str());  // no half-built database left behind
    throw;
  }
}

std::vector<std::vector<Variant>> QueryRows(db::Connection& db, const std::string& sql) {
  std::vector<std::vector<Variant>> rows;
  const auto rs = db.Execute(sql, db::kCmdText);
  if (rs->State() != db::kStateOpen) return rows;
  while (!rs->EOF()) {
    std::vector<Variant> row;
    for (int c = 0; c < rs->FieldCount(); ++c) row.push_back(rs->Fields(c));
    rows.push_back(std::move(row));
    rs->MoveNext();
  }
  rs->Close();
  return rows;
}

}  // namespace zarvik::demo
