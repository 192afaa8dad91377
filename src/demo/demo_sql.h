// The SQL of the embedded demo database (demo/schema.sql and demo/data.sql,
// compiled in).
#ifndef ZARVIK_DEMO_DEMO_SQL_H_
#define ZARVIK_DEMO_DEMO_SQL_H_

#include <vector>

namespace zarvik::demo {

struct SqlFile {
  const char* name;  // file name, e.g. "schema.sql"
  const char* text;
};

// All files, the schema first: running them in this order on an empty
// SQLite database creates the demo database.
const std::vector<SqlFile>& DemoSqlFiles();

}  // namespace zarvik::demo

#endif  // ZARVIK_DEMO_DEMO_SQL_H_
