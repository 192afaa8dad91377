// The embedded demo database: creating it, opening it, and who is in it.
//
// The database is built from the SQL compiled in from demo/*.sql (see
// demo_sql.h): the host and revocation schema, the routines table and seed
// data with two companies and a handful of users whose revocations cover
// every kind the component handles.
#ifndef ZARVIK_DEMO_DEMO_DB_H_
#define ZARVIK_DEMO_DEMO_DB_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"
#include "platform/variant.h"

namespace zarvik::demo {

// Companies of the demo database.
constexpr int32_t kMainCompany = 1;   // where the revocations of ROSSI live
constexpr int32_t kOtherCompany = 2;  // excluded for ROSSI and the group AMM

// FW07_ID of the demo users.
namespace user_id {
constexpr int32_t kZentAd = 1;
constexpr int32_t kRossi = 5;
constexpr int32_t kBianchi = 6;
constexpr int32_t kVerdi = 7;
constexpr int32_t kNeri = 8;
constexpr int32_t kGialli = 9;
constexpr int32_t kBruno = 10;
constexpr int32_t kGallo = 11;
constexpr int32_t kEsterno = 40000;
}  // namespace user_id

// One user of the demo database, as the tour and the tests describe it.
struct DemoUser {
  int32_t id;           // FW07_ID
  const char* code;     // FW07_CODICE
  const char* group;    // FW07_CODICE_FW06
  const char* login;    // FW07_USERNAME
  bool group_based;     // FW07_FLGGRP = 1: revocations come from the groups
  bool active;          // FW07_FLGATTIVO = 1
  bool locked;          // FW07_FLGREVOKE = 1
  int32_t agent_id;     // MG17_IDAGENTE the host gives as the agent, or 0
  const char* role;     // what the user is in the demo for
  const char* revoked;  // what is revoked for the user, in words
};

// Every demo user, in FW07_ID order.
const std::vector<DemoUser>& DemoUsers();

// The user with that FW07_CODICE, or nullptr.
const DemoUser* FindDemoUser(const std::string& code);

// Splits an SQL script into statements. A ';' outside string literals,
// quoted identifiers and comments ends a statement; comments are dropped
// and statements that are left blank are skipped. The texts keep their own
// line breaks and indentation.
std::vector<std::string> SplitSqlScript(const std::string& script);

// Creates the demo database on an open, empty connection: runs every demo
// SQL file in order, statement by statement. A failing statement raises the
// provider's VbError with the file name added to its description.
void CreateDemoDatabase(db::Connection& open_connection);

// True when the database behind the open connection holds no table yet.
bool IsEmptyDatabase(db::Connection& open_connection);

// Opens the demo database with client-side cursors: ":memory:" builds a
// private one that lives as long as the connection; any other path must be
// a database that zarvik init-db created (a missing file or one without
// tables raises VbError).
std::shared_ptr<db::Connection> OpenDemoDatabase(const std::string& path = ":memory:");

// Creates the demo database in the new file `path`. An existing file is left
// alone (VbError 5); a failure removes the file it began.
void InitDemoDatabase(const std::string& path);

// The connection string of the embedded engine for a database file.
std::string DemoConnectionString(const std::string& path);

// All rows of a query, each as its field values in column order.
std::vector<std::vector<Variant>> QueryRows(db::Connection& db, const std::string& sql);

}  // namespace zarvik::demo

#endif  // ZARVIK_DEMO_DEMO_DB_H_
