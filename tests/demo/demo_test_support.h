// Helpers shared by the tests of the demo database.
#ifndef ZARVIK_TESTS_DEMO_DEMO_TEST_SUPPORT_H_
#define ZARVIK_TESTS_DEMO_DEMO_TEST_SUPPORT_H_

#include <memory>
#include <string>
#include <vector>

#include "db/connection.h"
#include "demo/demo_db.h"

namespace zarvik::demo::testing {

// A fresh in-memory demo database.
inline std::shared_ptr<db::Connection> FreshDemo() { return OpenDemoDatabase(":memory:"); }

// The first column of every row, as text.
inline std::vector<std::string> FirstColumn(db::Connection& db, const std::string& sql) {
  std::vector<std::string> values;
  for (const auto& row : QueryRows(db, sql)) values.push_back(row.at(0).ConcatText());
  return values;
}

// The first column of the first row, as a number.
inline int32_t Scalar(db::Connection& db, const std::string& sql) {
  const auto rows = QueryRows(db, sql);
  return rows.empty() ? -999 : rows.at(0).at(0).ToLong();
}

}  // namespace zarvik::demo::testing

#endif  // ZARVIK_TESTS_DEMO_DEMO_TEST_SUPPORT_H_
