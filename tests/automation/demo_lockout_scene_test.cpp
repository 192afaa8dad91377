// The login lock-out scene of `zarvik demo`: the user is locked at the
// third failure, refused while locked, and counted from one again after
// the re-enabling.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "automation/cli.h"

namespace zarvik::cli {
namespace {

// The words of each table row of the scene (rows start with a time).
std::vector<std::vector<std::string>> SceneRows(const std::string& output) {
  const size_t start = output.find("Login lock-out\n==============\n");
  EXPECT_NE(start, std::string::npos);
  std::vector<std::vector<std::string>> rows;
  if (start == std::string::npos) return rows;
  std::istringstream lines(output.substr(start));
  std::string line;
  while (std::getline(lines, line)) {
    std::istringstream words(line);
    std::vector<std::string> row;
    for (std::string w; words >> w;) row.push_back(w);
    if (!row.empty() && row[0].size() == 5 && row[0][2] == ':') rows.push_back(row);
  }
  return rows;
}

TEST(DemoLockOutScene, LocksAtTheThirdFailureAndCountsAgainAfterReEnabling) {
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  ASSERT_EQ(RunDemo({}, Streams{in, out, err}), 0) << err.str();
  const auto rows = SceneRows(out.str());
  // TIME, RISULTATO, AFTER, ISREVOKED, COUNTED, FW07_FLGREVOKE, then the note.
  const std::vector<std::vector<std::string>> expected = {
      {"09:00", "1", "1", "NoRevoke", "1", "0"},
      {"09:01", "1", "1", "NoRevoke", "2", "0"},
      {"09:02", "1", "1", "RevokeVantor", "3", "1"},
      {"09:05", "0", "2", "RevokeVantor", "-", "1"},
      {"10:00", "0"},
      {"10:05", "1", "1", "NoRevoke", "1", "0"},
      {"10:06", "0", "0", "NoRevoke", "-", "0"},
  };
  ASSERT_EQ(rows.size(), expected.size());
  for (size_t i = 0; i < rows.size(); ++i) {
    ASSERT_GE(rows[i].size(), expected[i].size()) << "row " << i;
    const std::vector<std::string> head(rows[i].begin(),
                                        rows[i].begin() + static_cast<long>(expected[i].size()));
    EXPECT_EQ(head, expected[i]) << "row " << i;
  }
}

}  // namespace
}  // namespace zarvik::cli
