// The revocation summary and the `zarvik demo` command.
#include "cli/tour.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/revocation_kinds.h"
#include "demo/demo_test_support.h"

namespace zarvik::cli {
using namespace zarvik::demo;
namespace {

using testing::FirstColumn;
using testing::FreshDemo;

const SummaryLine* FindLine(const std::vector<SummaryLine>& lines, const std::string& label) {
  for (const SummaryLine& l : lines) {
    if (l.label == label) return &l;
  }
  return nullptr;
}

// Every kind a user has rows of gets its own line, named after the kind.
TEST(RevocationSummary, HasALinePerKindTheUserHasRowsOf) {
  const auto db = FreshDemo();
  const auto lines = RevocationSummary(*db, user_id::kRossi);
  const auto kinds = FirstColumn(
      *db, "SELECT DISTINCT FW31_INDTIPO FROM VFW31_RVKPARAMETRI WHERE FW31_ID_FW07 = 5");
  ASSERT_FALSE(kinds.empty());
  for (const std::string& k : kinds) {
    const RevocationKind* kind = FindRevocationKind(std::stoi(k));
    ASSERT_NE(kind, nullptr) << "kind " << k << " has no name";
    EXPECT_NE(FindLine(lines, std::string(kind->name) + " (kind " + k + ")"), nullptr) << k;
  }
}

TEST(RevocationSummary, LinesReadAsExpected) {
  const struct {
    int32_t user;
    const char* label;
    const char* text;
  } cases[] = {
      {user_id::kRossi, "excluded companies", "2 (not visible, not enabled)"},
      {user_id::kRossi, "document types (kind 7)",
       "print status 0: DDT (no delete, no insert), NCV, OCL (no update), OFF; "
       "print status 1: FTVP"},
      {user_id::kRossi, "accounting reasons (kind 0)", "STORNO, register type 3 (every reason)"},
      {user_id::kRossi, "bill-of-materials types (kind 19)", "5 (no update), 35 (enabled), 99"},
      {user_id::kRossi, "revoked customers, resolved", "company 1: 2, 5, 6, 7, 8, 9, 10, 11"},
      {user_id::kRossi, "customer groupings",
       "company 1: area CENTRO (enabled), area NORD/NO/TO, area SUD, category PA, "
       "grouping 1 C, grouping 2 VIP, grouping 3 X2"},
      {user_id::kRossi, "article families",
       "company 1: ELE (no insert, no delete), MEC (no update)"},
      {user_id::kRossi, "project nodes", "company 1: P3/N2, P4/N1"},
      {user_id::kVerdi, "application functions", "101 Chiusura contabile"},
      {user_id::kVerdi, "warehouses (kind 6)", "company 1: B2, D4 (enabled)"},
  };
  const auto db = FreshDemo();
  for (const auto& c : cases) {
    const auto lines = RevocationSummary(*db, c.user);
    const SummaryLine* line = FindLine(lines, c.label);
    ASSERT_NE(line, nullptr) << c.label;
    EXPECT_EQ(line->text, c.text) << c.label;
  }
}

TEST(RevocationSummary, UsersWithoutRowsHaveNone) {
  const auto db = FreshDemo();
  for (int32_t id : {user_id::kGialli, user_id::kBruno, user_id::kGallo, user_id::kEsterno, 999}) {
    EXPECT_TRUE(RevocationSummary(*db, id).empty()) << id;
  }
}

int RunCli(const std::vector<std::string>& args, std::string* out, std::string* err) {
  std::vector<std::string> storage = {"zarvik"};
  storage.insert(storage.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& s : storage) argv.push_back(s.data());
  std::istringstream in;
  std::ostringstream o;
  std::ostringstream e;
  const int rc = cli::Main(static_cast<int>(argv.size()), argv.data(), in, o, e);
  *out = o.str();
  *err = e.str();
  return rc;
}

TEST(DemoCommand, ToursEverySceneInOneHundredColumnsWithoutTrailingBlanks) {
  std::string out;
  std::string err;
  ASSERT_EQ(RunCli({"demo"}, &out, &err), 0) << err;
  EXPECT_EQ(err, "");
  EXPECT_EQ(out.rfind("Demo database: in memory\n", 0), 0u);
  for (const TourScene& scene : TourScenes()) {
    const std::string title = scene.title;
    EXPECT_NE(out.find("\n" + title + "\n" + std::string(title.size(), '=') + "\n"),
              std::string::npos)
        << title;
  }
  for (const DemoUser& u : DemoUsers()) {
    EXPECT_NE(out.find("\n  " + std::string(u.code) + " (id " + std::to_string(u.id) + ", group "),
              std::string::npos)
        << u.code;
  }
  std::istringstream lines(out);
  std::string line;
  size_t count = 0;
  while (std::getline(lines, line)) {
    ++count;
    EXPECT_LE(line.size(), 100u) << line;
    EXPECT_TRUE(line.empty() || line.back() != ' ') << "trailing blank: [" << line << "]";
  }
  EXPECT_GT(count, 100u);
}

TEST(DemoCommand, UsageErrorsHelpAndAnUnopenableFile) {
  std::string out;
  std::string err;
  EXPECT_EQ(RunCli({"demo", "--bogus"}, &out, &err), 2);
  EXPECT_NE(err.find("usage: zarvik demo"), std::string::npos);
  EXPECT_EQ(RunCli({"demo", "--db"}, &out, &err), 2);  // path missing
  EXPECT_EQ(RunCli({"demo", "--help"}, &out, &err), 0);
  EXPECT_NE(out.find("usage: zarvik demo [--db PATH]"), std::string::npos);
  // Reported, not thrown.
  EXPECT_EQ(RunCli({"demo", "--db", "/nonexistent-dir/demo.db"}, &out, &err), 1);
  EXPECT_EQ(err.rfind("zarvik demo: ", 0), 0u) << err;
}

}  // namespace
}  // namespace zarvik::cli
