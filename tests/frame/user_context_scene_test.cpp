// The tour scene of the frame, on the demo database: the resolved ids and
// the statement counts it prints come from the real objects.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "demo/demo_db.h"
#include "demo/frame_scene.h"
#include "demo/tour.h"

namespace zarvik {
namespace {

TEST(UserContextScene, ShowsResolvedIdsAndTheGuardsShortCuts) {
  auto db = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*db, out};
  demo::ShowUserContextScene(tour);

  // The table rows with their blanks collapsed, in order.
  std::vector<std::string> rows;
  std::istringstream lines(out.str());
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string row;
    for (std::string w; words >> w;) row += w + " ";
    if (row.rfind("CLSFW_", 0) == 0) rows.push_back(row);
  }
  // class, user, group, guard, id, flag, statements sent, then the case.
  const std::vector<std::string> expected = {
      "CLSFW_PARSER ROSSI VEN goes on 5 0 1 ",  "CLSFW_PARSER VERDI AMM goes on 7 1 1 ",
      "CLSFW_PARSER NERI MAG goes on 8 0 1 ",   "CLSFW_FILTROQUERY NERI MAG user lookup 0 1 1 ",
      "CLSFW_PARSER ZentAd SYS neutral 0 0 0 ", "CLSFW_PARSER ROSSI VEN neutral 0 0 0 ",
  };
  ASSERT_EQ(rows.size(), expected.size()) << out.str();
  for (size_t i = 0; i < rows.size(); ++i) EXPECT_EQ(rows[i].rfind(expected[i], 0), 0u) << rows[i];
  // The lookup statement, shown with a line break before its WHERE.
  EXPECT_NE(out.str().find("    SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER\n"
                           "      WHERE FW07_CODICE_FW06 = 'VEN'  AND FW07_CODICE = 'ROSSI'\n"),
            std::string::npos)
      << out.str();
}

}  // namespace
}  // namespace zarvik
