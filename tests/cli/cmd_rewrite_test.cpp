// `zarvik rewrite`, run in-process: the rewritten statement, the
// explanation, the defaults for group and database, and usage errors.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "demo/demo_db.h"

namespace zarvik {
namespace {

struct CommandRun {
  int code;
  std::string out;
  std::string err;
};

CommandRun Rewrite(std::vector<std::string> args) {
  args.insert(args.begin(), {"zarvik", "rewrite"});
  std::vector<char*> argv;
  for (std::string& a : args) argv.push_back(a.data());
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  const int code = cli::Main(static_cast<int>(argv.size()), argv.data(), in, out, err);
  return {code, out.str(), err.str()};
}

const char kStatement[] =
    "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A WHERE A.MG36_DITTA_CG18 = 1 ORDER BY "
    "A.MG36_NUMREG";
const char kRewritten[] =
    "SELECT A.MG36_NUMREG FROM MG36_DOCUMENTI A  WHERE (  A.MG36_DITTA_CG18 = 1 )  AND  NOT "
    "EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = 7  AND "
    "FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = MG36_INDSTAPER  AND FW31_CODTIPO = "
    "MG36_CODDOCUM)  ORDER BY A.MG36_NUMREG";

TEST(RewriteCommand, PrintsTheStatementRewrittenForTheUser) {
  const struct {
    std::vector<std::string> args;
    std::string out;  // the whole output, or (contains) a piece of it
    bool contains;
    std::string err;  // a piece of the error output ("": none at all)
  } cases[] = {
      // The group defaults to the user's group in FW07_APPUSER (VEN for ROSSI).
      {{"--user", "ROSSI", kStatement}, std::string(kRewritten) + "\n", false, ""},
      // With the wrong group the user is not found: user id 0.
      {{"--user", "ROSSI", "--group", "AMM", kStatement}, "FW31_ID_FW07 = 0 ", true, ""},
      // The privileged user gets the statement back.
      {{"--user", "ZentAd", kStatement}, std::string(kStatement) + "\n", false, ""},
      {{"--user", "GIALLI", "--agent", "12", "--company", "1",
        "SELECT MG17_DESCR FROM MG17_AGENTI WHERE MG17_DITTA_CG18 = 1"},
       " AND  MG17_IDAGENTE = '12'",
       true,
       ""},
      // The parser's message box goes to stderr, the empty result to stdout.
      {{"--user", "ROSSI", "SELECT A FROM MG36_DOCUMENTI WHERE B IN (SELECT 1)"},
       "\n",
       false,
       "[Parser Error] Caso non contemplato dal Parser"},
  };
  for (const auto& c : cases) {
    const CommandRun run = Rewrite(c.args);
    EXPECT_EQ(run.code, 0) << run.err;
    if (c.contains) {
      EXPECT_NE(run.out.find(c.out), std::string::npos) << run.out;
    } else {
      EXPECT_EQ(run.out, c.out);
    }
    if (c.err.empty()) {
      EXPECT_EQ(run.err, "");
    } else {
      EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
    }
  }
}

TEST(RewriteCommand, ExplainListsEveryRecognisedTable) {
  const CommandRun run = Rewrite({"--user", "ROSSI", "--explain",
                                  "SELECT * FROM MG36_DOCUMENTI D INNER JOIN CG44_CLIFOR C ON "
                                  "C.CG44_DITTA_CG18 = D.MG36_DITTA_CG18 WHERE 1 = 1"});
  ASSERT_EQ(run.code, 0) << run.err;
  EXPECT_NE(run.out.find("\nScanner: rewritten\n"), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("  1. MG36  FROM list  segment 1  alias \"D.\"\n"), std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("  2. CG44  join  segment 1  alias \"C.\"\n"), std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("     condition: \" AND  NOT EXISTS  (SELECT RVKCLIFOR"),
            std::string::npos)
      << run.out;

  const CommandRun failed = Rewrite({"--user", "ROSSI", "--explain", "FROM ABCD JOIN X ON 1 = 1"});
  EXPECT_EQ(failed.out,
            "\n\nScanner: run-time error: scan ended silently (5 - Invalid procedure call or "
            "argument)\nRecognised tables:\n  1. ABCD  FROM list  segment 1  alias \"X.\"\n"
            "     condition: \"\"\n");
}

TEST(RewriteCommand, UsesADatabaseFileOrAConnectionString) {
  const std::string path = (std::filesystem::temp_directory_path() /
                            ("zarvik_rewrite_cmd_" + std::to_string(::getpid()) + ".db"))
                               .string();
  std::filesystem::remove(path);
  const CommandRun missing = Rewrite({"--user", "ROSSI", "--db", path, kStatement});
  EXPECT_NE(missing.code, 0);
  EXPECT_NE(missing.err.find("zarvik init-db"), std::string::npos) << missing.err;
  demo::InitDemoDatabase(path);
  const CommandRun created = Rewrite({"--user", "ROSSI", "--db", path, kStatement});
  EXPECT_EQ(created.out, std::string(kRewritten) + "\n") << created.err;
  const CommandRun connected =
      Rewrite({"--user", "ROSSI", "--connect", demo::DemoConnectionString(path), kStatement});
  EXPECT_EQ(connected.out, std::string(kRewritten) + "\n") << connected.err;
  std::filesystem::remove(path);
}

TEST(RewriteCommand, UsageErrors) {
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{kStatement}, "--user is required"},
      {{"--user", "ROSSI"}, "no statement given"},
      {{"--user", "ROSSI", kStatement, "SELECT 2"}, "one argument"},
      {{"--user", "ROSSI", "--db", "a.db", "--connect", "x", kStatement}, "either --db or"},
      {{"--user", "ROSSI", "--bogus", kStatement}, "unknown option '--bogus'"},
      {{"--user"}, "--user needs a value"},
  };
  for (const Case& c : cases) {
    const CommandRun run = Rewrite(c.args);
    EXPECT_EQ(run.code, 2) << c.message;
    EXPECT_NE(run.err.find(c.message), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("usage: zarvik rewrite"), std::string::npos);
  }
  const CommandRun help = Rewrite({"--help"});
  EXPECT_EQ(help.code, 0);
  EXPECT_EQ(help.out.rfind("usage: zarvik rewrite", 0), 0U);

  const CommandRun bad_connect =
      Rewrite({"--user", "ROSSI", "--connect", "Provider=Nothing", "SELECT 1"});
  EXPECT_EQ(bad_connect.code, 1);
  EXPECT_EQ(bad_connect.err.rfind("zarvik rewrite: ", 0), 0U) << bad_connect.err;
}

}  // namespace
}  // namespace zarvik
