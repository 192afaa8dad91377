// The statement rewriter's scene of `zarvik demo`: the rows each user keeps
// (the layout rules are checked on the whole tour).
#include "automation/rewrite_scene.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "demo/demo_db.h"

namespace zarvik {
namespace {

TEST(RewriteScene, ShowsTheRowsEachUserKeeps) {
  const auto db = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*db, out};
  cli::ShowRewriteScene(tour);
  const std::string text = out.str();
  // ROSSI: P1 and P2 revoked; VERDI: P5 (his own row wins over his group's).
  EXPECT_NE(text.find("rows kept: ROSSI 9 of 11, VERDI 10 of 11\n"), std::string::npos) << text;
  // ROSSI: A1 and B2; VERDI: B2, revoked by both of his groups.
  EXPECT_NE(text.find("rows kept: ROSSI 4 of 6, VERDI 5 of 6\n"), std::string::npos) << text;
  // Company 2 is excluded for both; ROSSI also loses 8 customers of company 1.
  EXPECT_NE(text.find("rows kept: ROSSI 6 of 17, VERDI 14 of 17\n"), std::string::npos) << text;
  EXPECT_NE(text.find("    1        P5       Nuovo stabilimento     yes    -\n"), std::string::npos)
      << text;
  // The scene works on its own copy: the tour's database is left open.
  EXPECT_EQ(db->State(), db::kStateOpen);
}

}  // namespace
}  // namespace zarvik
