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

std::vector<std::string> Words(const std::string& line) {
  std::istringstream in(line);
  std::vector<std::string> words;
  std::string w;
  while (in >> w) words.push_back(w);
  return words;
}

TEST(UserContextScene, ShowsResolvedIdsAndTheGuardsShortCuts) {
  auto db = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*db, out};
  demo::ShowUserContextScene(tour);

  // class, user, group, guard (two or three words), id, flag, statements.
  struct Expected {
    const char* starts;
    const char* id;
    const char* flag;
    const char* statements;
  };
  const std::vector<Expected> rows = {
      {"CLSFW_PARSER ROSSI VEN goes on", "5", "0", "1"},
      {"CLSFW_PARSER VERDI AMM goes on", "7", "1", "1"},
      {"CLSFW_PARSER NERI MAG goes on", "8", "0", "1"},
      {"CLSFW_FILTROQUERY NERI MAG user lookup", "0", "1", "1"},
      {"CLSFW_PARSER ZentAd SYS neutral", "0", "0", "0"},
      {"CLSFW_PARSER ROSSI VEN neutral", "0", "0", "0"},
  };
  std::istringstream lines(out.str());
  std::string line;
  size_t found = 0;
  while (std::getline(lines, line) && found < rows.size()) {
    const std::vector<std::string> w = Words(line);
    std::string joined;
    for (const std::string& s : w) joined += (joined.empty() ? "" : " ") + s;
    const Expected& e = rows[found];
    if (joined.rfind(e.starts, 0) != 0) continue;
    const size_t n = Words(e.starts).size();
    ASSERT_GE(w.size(), n + 3) << line;
    EXPECT_EQ(w[n], e.id) << line;
    EXPECT_EQ(w[n + 1], e.flag) << line;
    EXPECT_EQ(w[n + 2], e.statements) << line;
    ++found;
  }
  EXPECT_EQ(found, rows.size()) << out.str();
  // The lookup statement, shown with a line break before its WHERE.
  EXPECT_NE(out.str().find("    SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER\n"
                           "      WHERE FW07_CODICE_FW06 = 'VEN'  AND FW07_CODICE = 'ROSSI'\n"),
            std::string::npos)
      << out.str();
  for (std::istringstream again(out.str()); std::getline(again, line);) {
    EXPECT_TRUE(line.empty() || line.back() != ' ') << "trailing blank: " << line;
    EXPECT_LE(line.size(), 100u) << line;
  }
}

}  // namespace
}  // namespace zarvik
