// Embedded functions take any number of arguments from the highest ?n their
// body reads on: further arguments are ignored, fewer are an error naming
// the function.
#include <gtest/gtest.h>

#include <string>

#include "db/connection.h"
#include "db/db_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::db {
namespace {

TEST(FunctionArguments, ArgumentsBeyondTheBodysHighestParameterAreIgnored) {
  auto connection = OpenConnection(
      kMemory,
      "CREATE TABLE ZARVIK_ROUTINES (ROUTINE_NAME TEXT PRIMARY KEY, ROUTINE_BODY TEXT);"
      "INSERT INTO ZARVIK_ROUTINES VALUES ('FN_THREE', 'SELECT ?1 || ?2 || ?3');"
      "INSERT INTO ZARVIK_ROUTINES VALUES ('FN_GAP', 'SELECT ?1 || ?3');"
      "INSERT INTO ZARVIK_ROUTINES VALUES ('FN_NONE', 'SELECT ''x''');");
  const struct {
    const char* sql;
    const char* answer;  // or the error's text
  } cases[] = {
      {"SELECT FN_THREE('a', 'b', 'c')", "abc"},
      {"SELECT FN_THREE('a', 'b', 'c', 'd')", "abc"},
      {"SELECT FN_THREE('a', 'b', 'c', 'd', 'e', 'f')", "abc"},
      {"SELECT FN_GAP('a', 'b', 'c', 'd')", "ac"},
      {"SELECT FN_NONE(1, 2)", "x"},
      {"SELECT FN_NONE()", "x"},
      {"SELECT FN_THREE('a', 'b')", "function FN_THREE: needs 3 argument(s), called with 2"},
      {"SELECT FN_GAP('a', 'b')", "function FN_GAP: needs 3 argument(s), called with 2"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sql);
    std::string answer;
    const VbError e =
        CaughtError([&] { answer = connection->Execute(c.sql)->Fields(0).ToString(); });
    if (e.Number() != 0) answer = e.Description();
    EXPECT_NE(answer.find(c.answer), std::string::npos) << answer;
  }
}

}  // namespace
}  // namespace zarvik::db
