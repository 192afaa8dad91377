// The zarvik command in-process: `rewrite`, `demo` and the text layout they use.
#include "cli/cli.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "cli/text_table.h"
#include "demo/demo_db.h"

namespace zarvik::cli {
namespace {

struct CommandRun {
  int code;
  std::string out, err;
};

CommandRun Zarvik(std::vector<std::string> args) {
  args.insert(args.begin(), "zarvik");
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  std::istringstream in;
  std::ostringstream out, err;
  const int code = Main(static_cast<int>(argv.size()), argv.data(), in, out, err);
  return {code, out.str(), err.str()};
}

bool Has(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

const char kStatement[] = "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1";

TEST(RewriteCommand, RewritesForTheUserOfTheGivenDatabase) {
  // Arguments, a piece of the output, a piece of the error output ("": none at all).
  const std::tuple<std::vector<std::string>, std::string, std::string> cases[] = {
      // The group defaults to the user's own; in another one ROSSI is nobody (id 0).
      {{"--user", "ROSSI", kStatement}, "VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5 ", ""},
      {{"--user", "ROSSI", "--group", "AMM", kStatement}, "FW31_ID_FW07 = 0 ", ""},
      {{"--user", "ZentAd", "--company", "1", kStatement}, std::string(kStatement) + "\n", ""},
      {{"--user", "GIALLI", "--agent", "12", "SELECT * FROM MG17_AGENTI"}, "'12'", ""},
      // The parser's box goes to stderr, the empty answer to stdout.
      {{"--user", "ROSSI", "SELECT A FROM MG36_DOCUMENTI WHERE B IN (SELECT 1)"}, "\n", "[Parser"},
      {{"--user", "ROSSI", "--explain", "FROM ABCD JOIN X ON 1 = 1"},
       "Recognised tables:\n  1. ABCD  FROM list  segment 1  alias \"X.\"",
       ""},
  };
  for (auto [args, out, err] : cases) {
    args.insert(args.begin(), "rewrite");
    const CommandRun run = Zarvik(args);
    EXPECT_EQ(run.code, 0) << run.err;
    EXPECT_TRUE(Has(run.out, out)) << run.out;
    EXPECT_TRUE(err.empty() ? run.err.empty() : Has(run.err, err)) << run.err;
  }
  // A database file made by init-db, or a connection string to it.
  const std::string path = ::testing::TempDir() + "zarvik_cli_" + std::to_string(getpid());
  std::remove(path.c_str());
  EXPECT_TRUE(Has(Zarvik({"rewrite", "--user", "ROSSI", "--db", path, kStatement}).err, "init-db"));
  EXPECT_EQ(Zarvik({"init-db", path}).code, 0);
  const std::string in_memory = Zarvik({"rewrite", "--user", "ROSSI", kStatement}).out;
  EXPECT_EQ(Zarvik({"rewrite", "--user", "ROSSI", "--db", path, kStatement}).out, in_memory);
  EXPECT_EQ(Zarvik({"rewrite", "--user", "ROSSI", "--connect", demo::DemoConnectionString(path),
                    kStatement})
                .out,
            in_memory);
  std::remove(path.c_str());
}

TEST(RewriteCommand, UsageErrorsExitWith2AndFailuresWith1) {
  const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
      {{kStatement}, "--user is required"},
      {{"--user", "ROSSI"}, "no statement given"},
      {{"--user", "ROSSI", kStatement, "SELECT 2"}, "one argument"},
      {{"--user", "ROSSI", "--db", "a.db", "--connect", "x", kStatement}, "either --db or"},
      {{"--user", "ROSSI", "--bogus", kStatement}, "unknown option '--bogus'"},
      {{"--user"}, "--user needs a value"},
  };
  for (auto [args, message] : cases) {
    args.insert(args.begin(), "rewrite");
    const CommandRun run = Zarvik(args);
    EXPECT_EQ(run.code, 2) << message;
    EXPECT_TRUE(Has(run.err, message) && Has(run.err, "usage: zarvik rewrite")) << run.err;
  }
  EXPECT_EQ(Zarvik({"rewrite", "--help"}).out.rfind("usage: zarvik rewrite", 0), 0U);
  const CommandRun bad =
      Zarvik({"rewrite", "--user", "R", "--connect", "Provider=None", "SELECT 1"});
  EXPECT_EQ(bad.code, 1);
  EXPECT_EQ(bad.err.rfind("zarvik rewrite: ", 0), 0U) << bad.err;
  EXPECT_EQ(Zarvik({"nope"}).code, 2);
}

TEST(DemoCommand, TheWholeTourInOneHundredColumnsWithoutTrailingBlanks) {
  const CommandRun run = Zarvik({"demo"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  std::istringstream lines(run.out);
  // FNV-1a of the whole tour, its texts and answers; a deliberate change records the new value.
  uint64_t digest = 0xcbf29ce484222325ULL;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 100U) << line;
    EXPECT_TRUE(line.empty() || line.back() != ' ') << "trailing blank: [" << line << "]";
    for (unsigned char c : line + "\n") digest = (digest ^ c) * 0x100000001b3ULL;
  }
  EXPECT_EQ(digest, 0x55f28ba7c64d17a6ULL) << std::hex << "digest 0x" << digest;
  EXPECT_EQ(Zarvik({"demo", "--bogus"}).code, 2);
  EXPECT_EQ(Zarvik({"demo", "--db"}).code, 2);
  const CommandRun missing = Zarvik({"demo", "--db", "/nonexistent-dir/demo.db"});
  EXPECT_EQ(missing.code, 1);
  EXPECT_EQ(missing.err.rfind("zarvik demo: ", 0), 0U) << missing.err;
}

// What the demo tour does not show: short rows, labels wider than their column, odd words.
TEST(TextLayout, ShortRowsWideLabelsAndWrapping) {
  TextTable table({"ID", "CODE"});
  table.AddRow({"7"});  // missing cells are blank
  std::ostringstream out;
  table.Print(out, "");
  PrintLabelled(out, "", "a long label", 4, "x", 80);
  EXPECT_EQ(out.str(), "ID  CODE\n--  ----\n7\na long label  x\n");
  EXPECT_EQ(WrapText("a verylongwordhere b", 5),
            (std::vector<std::string>{"a", "verylongwordhere", "b"}));
  EXPECT_EQ(WrapText("  extra   blanks  ", 20), std::vector<std::string>{"extra blanks"});
  EXPECT_EQ(WrapText("", 10), std::vector<std::string>{""});
}

}  // namespace
}  // namespace zarvik::cli
