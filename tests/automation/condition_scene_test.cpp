// The condition predicates scene of `zarvik demo`: every call is followed by
// the rows the predicate keeps, which are the ones ROSSI may see.
#include "automation/condition_scene.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>

#include "demo/demo_db.h"

namespace zarvik::cli {
namespace {

// Each call line of the scene with the text of the line below it.
std::map<std::string, std::string> KeptByCall(const std::string& output) {
  std::map<std::string, std::string> kept;
  std::istringstream lines(output);
  std::string line;
  std::string call;
  while (std::getline(lines, line)) {
    if (line.rfind("  SQLCondition", 0) == 0) {
      call = line.substr(2);
    } else if (!call.empty() && line.rfind("      ", 0) == 0) {
      const size_t start = line.find_first_not_of(' ');
      kept[call] = line.substr(start);
      call.clear();
    }
  }
  return kept;
}

TEST(ConditionScene, ShowsTheRowsEachPredicateKeeps) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*database, out};
  ShowConditionScene(tour);
  const auto kept = KeptByCall(out.str());
  EXPECT_EQ(kept.size(), 11u);
  EXPECT_EQ(kept.at("SQLConditionCliFor(\"CG44\", True)"),
            "8 of 19:  1, 3, 4, 12, 13, 40, 101, 105");
  EXPECT_EQ(kept.at("SQLConditionDepositi(\"MG58_CODDEP\", True)"), "2 of 4:   C3, D4");
  EXPECT_EQ(kept.at("SQLConditionDO11(True)"),
            "7 of 27:  1004, 1008, 1010, 1011, 1015, 2002, 2004");
  EXPECT_EQ(kept.at("SQLConditionSediMov(\"DO11_CODSEDE_CG31\", False, False)"),
            "\"DO11_CODSEDE_CG31 NOT IN (3 , 12 )\"");
  // The tour's own database is not used.
  EXPECT_EQ(database->State(), 1);
}

}  // namespace
}  // namespace zarvik::cli
