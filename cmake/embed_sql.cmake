# Writes the SQL files FILES ('|'-separated, in the order they run) into a
# C++ source OUT as a table of (file name, text) pairs.
string(REPLACE "|" ";" files "${FILES}")
set(body "// Generated from the demo database's SQL files; do not edit.\n#include \"demo/demo_sql.h\"\n\nnamespace zarvik::demo {\n\nconst std::vector<SqlFile>& DemoSqlFiles() {\n  static const std::vector<SqlFile> files = {\n")
foreach(f ${files})
  get_filename_component(name ${f} NAME)
  file(READ ${f} text)
  set(body "${body}      {\"${name}\", R\"zarvik_sql(${text})zarvik_sql\"},\n")
endforeach()
set(body "${body}  };\n  return files;\n}\n\n}  // namespace zarvik::demo\n")
file(WRITE ${OUT}.tmp "${body}")
file(COPY_FILE ${OUT}.tmp ${OUT} ONLY_IF_DIFFERENT)
