// The block checks and rights records scene of `zarvik demo`: each check's
// answer for ROSSI and for ZentAd, and ROSSI's rights, as the table shows
// them.
#include "automation/check_scene.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "demo/demo_db.h"

namespace zarvik::cli {
namespace {

// The cells of every table row whose first cell is a call ("Name(...)"),
// split at runs of two or more blanks.
std::map<std::string, std::vector<std::string>> RowsByCall(const std::string& output) {
  std::map<std::string, std::vector<std::string>> rows;
  std::istringstream lines(output);
  std::string line;
  while (std::getline(lines, line)) {
    std::vector<std::string> cells;
    size_t pos = line.find_first_not_of(' ');
    while (pos != std::string::npos) {
      const size_t end = line.find("  ", pos);
      cells.push_back(line.substr(pos, end == std::string::npos ? end : end - pos));
      pos = end == std::string::npos ? end : line.find_first_not_of(' ', end);
    }
    if (!cells.empty() && cells[0].find('(') != std::string::npos && cells[0].back() == ')') {
      rows[cells[0]] = std::vector<std::string>(cells.begin() + 1, cells.end());
    }
  }
  return rows;
}

TEST(CheckScene, ShowsTheAnswersForAnOrdinaryAndThePrivilegedUser) {
  const auto database = demo::OpenDemoDatabase(":memory:");
  std::ostringstream out;
  demo::TourContext tour{*database, out};
  ShowCheckScene(tour);
  const auto rows = RowsByCall(out.str());
  ASSERT_EQ(rows.size(), 20u) << out.str();
  EXPECT_EQ(rows.at("ProgettoBloccato(\"P1\")").at(0), "True");
  EXPECT_EQ(rows.at("ProgettoBloccato(\"P1\")").at(1), "False");
  EXPECT_EQ(rows.at("ProgettoBloccato(\"P3\")").at(0), "False");
  EXPECT_EQ(rows.at("DocumentoTestataBloccato(\"1008\")").at(0), "False");
  // Out-of-range revision states are blocked for everyone.
  EXPECT_EQ(rows.at("StatoRevisioneDistintaBloccato(4)").at(1), "True");
  EXPECT_EQ(rows.at("PermessiDocTipologie(\"OCL\", 0)"),
            (std::vector<std::string>{"yes", "yes", "no", "no"}));
  EXPECT_EQ(rows.at("PermessiTipologieDistintaBase(35)"),
            (std::vector<std::string>{"no", "no", "no", "no"}));
  EXPECT_EQ(rows.at("InitRevokeFamiglia(\"MEC\")"),
            (std::vector<std::string>{"yes", "yes", "no", "yes"}));
  EXPECT_EQ(database->State(), 1);
}

}  // namespace
}  // namespace zarvik::cli
