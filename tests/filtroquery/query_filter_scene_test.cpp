// The query-filter scene of the demo tour shows both forms side by side and
// the two boxes of an agent of another company.
#include "automation/query_filter_scene.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "demo/demo_db.h"

namespace zarvik::cli {
namespace {

TEST(QueryFilterScene, ShowsBothFormsAndTheBoxes) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*database, out};
  ShowQueryFilterScene(tour);
  const std::string text = out.str();
  // SQL and report form of one field on the same line.
  EXPECT_NE(text.find("\"MG09_ZONA NOT IN (TO')\"  " + std::string(38 - 24, ' ') +
                      "\" (NOT (MG09_ZONA IN [TO]))\""),
            std::string::npos)
      << text;
  EXPECT_NE(text.find("\"CG44_CLIFOR NOT IN (104)\""), std::string::npos);
  EXPECT_NE(text.find("\"(1=1)\""), std::string::npos);
  EXPECT_NE(text.find("CLSFW_FILTROQUERY - CliForRevocati"), std::string::npos);
  EXPECT_NE(text.find("CLSFW_FILTROQUERY - FiltroCondizione"), std::string::npos);
  for (size_t start = 0; start < text.size();) {
    const size_t end = text.find('\n', start);
    const std::string line = text.substr(start, end - start);
    EXPECT_LE(line.size(), 100u) << line;
    EXPECT_TRUE(line.empty() || line.back() != ' ') << line;
    start = end == std::string::npos ? text.size() : end + 1;
  }
}

}  // namespace
}  // namespace zarvik::cli
