// The SQL of the embedded demo database (demo/*.sql, compiled in).
#ifndef ZARVIK_DEMO_DEMO_SQL_H_
#define ZARVIK_DEMO_DEMO_SQL_H_

#include <vector>

namespace zarvik::demo {

struct SqlFile {
  const char* name;  // file name, e.g. "10_schema.sql"
  const char* text;
};

// All files, in file-name order: running them in this order on an empty
// SQLite database creates the demo database.
const std::vector<SqlFile>& DemoSqlFiles();

}  // namespace zarvik::demo

#endif  // ZARVIK_DEMO_DEMO_SQL_H_
