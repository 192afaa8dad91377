// ContoPDCBloccato on a provider that describes some of the procedure's
// parameters but not all: the missing name is ADO's error 3265 under the
// method's tag, and the procedure is not called.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

TEST(PartlyDescribedProcedure, AMissingParameterIsReportedAndNothingIsCalled) {
  testing::ParserSession rossi("ROSSI");
  // A body that names only :ContoPDC; 1001 is the revoked account.
  rossi.Run(
      "UPDATE ZARVIK_ROUTINES SET ROUTINE_BODY = 'SELECT CASE WHEN :ContoPDC = ''1001'' THEN 0 "
      "ELSE 1 END AS canAbilitato, 1 AS canVisualizza' "
      "WHERE ROUTINE_NAME = 'SPFW_GetInfoRevokeContoPDC'");
  rossi.log->statements.clear();
  int16_t can_abilitato = 4;
  int16_t can_visualizza = 4;
  EXPECT_FALSE(rossi.parser.ContoPDCBloccato(10, "1001", can_abilitato, can_visualizza));
  EXPECT_EQ(can_abilitato, 4);
  EXPECT_EQ(can_visualizza, 4);
  EXPECT_EQ(rossi.BoxTags(), std::vector<std::string>{"ContoPDCBloccato"});
  EXPECT_EQ(rossi.Boxes().at(0).text.rfind("3265 - Item cannot be found in the collection", 0), 0u)
      << rossi.Boxes().at(0).text;
  for (const std::string& statement : rossi.Statements()) {
    EXPECT_EQ(statement.find("{call"), std::string::npos) << statement;
  }
}

}  // namespace
}  // namespace zarvik
