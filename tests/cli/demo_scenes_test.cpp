// The class scenes of `zarvik demo`, from one run of the whole tour: the
// answers each scene prints come from the real objects on the demo
// database. (Layout rules are checked on the whole tour in tests/demo.)
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "cli/cli.h"

namespace zarvik::cli {
namespace {

// The section of the tour under `title`, each line with its runs of blanks
// collapsed to one and no leading blank, so that table rows compare as
// "cell cell cell".
std::string Section(const std::string& tour, const std::string& title) {
  const std::string head = "\n" + title + "\n" + std::string(title.size(), '=') + "\n";
  const size_t start = tour.find(head);
  if (start == std::string::npos) return "";
  std::string collapsed;
  std::istringstream lines(tour.substr(start + head.size()));
  for (std::string line; std::getline(lines, line);) {
    if (line.rfind("====", 0) == 0) break;  // the next section's underline
    std::istringstream words(line);
    std::string row;
    for (std::string w; words >> w;) row += (row.empty() ? "" : " ") + w;
    collapsed += row + "\n";
  }
  return collapsed;
}

TEST(DemoScenes, EachSceneShowsWhatTheObjectsAnswer) {
  std::istringstream in;
  std::ostringstream out;
  std::ostringstream err;
  ASSERT_EQ(RunDemo({}, Streams{in, out, err}), 0) << err.str();
  const std::string tour = out.str();
  const struct {
    const char* section;
    std::vector<const char*> lines;  // each found in the section, "\n" joining adjacent lines
  } cases[] = {
      // class, user, group, guard, id, FLGGRP, statements sent (the guard ran 3 times).
      {"User context and guard",
       {"CLSFW_PARSER ROSSI VEN goes on 5 0 1 ", "CLSFW_PARSER VERDI AMM goes on 7 1 1 ",
        "CLSFW_PARSER NERI MAG goes on 8 0 1 ", "CLSFW_FILTROQUERY NERI MAG user lookup 0 1 1 ",
        "CLSFW_PARSER ZentAd SYS neutral 0 0 0 ", "CLSFW_PARSER ROSSI VEN neutral 0 0 0 ",
        "SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER\nWHERE FW07_CODICE_FW06 = 'VEN' AND "
        "FW07_CODICE = 'ROSSI'\n"}},
      // TIME, RISULTATO, AFTER, ISREVOKED, COUNTED, FW07_FLGREVOKE, in this order.
      {"Login lock-out",
       {"09:00 1 1 NoRevoke 1 0 wrong password\n09:01 1 1 NoRevoke 2 0 wrong password\n"
        "09:02 1 1 RevokeVantor 3 1 third failure today: locked\n"
        "09:05 0 2 RevokeVantor - 1 right password: refused\n10:00 0 re-enabled",
        "\n10:05 1 1 NoRevoke 1 0 wrong password: counted from 1\n10:06 0 0 NoRevoke - 0 "}},
      // Each call with the rows its predicate keeps, which are ROSSI's.
      {"Condition predicates",
       {"SQLConditionCliFor(\"CG44\", True)\n8 of 19: 1, 3, 4, 12, 13, 40, 101, 105\n",
        "SQLConditionDepositi(\"MG58_CODDEP\", True)\n2 of 4: C3, D4\n",
        "SQLConditionDO11(True)\n7 of 27: 1004, 1008, 1010, 1011, 1015, 2002, 2004\n",
        "SQLConditionSediMov(\"DO11_CODSEDE_CG31\", False, False)\n"
        "\"DO11_CODSEDE_CG31 NOT IN (3 , 12 )\"\n"}},
      // SQL and report form of a field side by side, and the two boxes of
      // the agent of another company.
      {"Query filter dialog",
       {"ROSSI: MG09_ZONA (omitted) \"MG09_ZONA NOT IN (TO')\" \" (NOT (MG09_ZONA IN [TO]))\"\n",
        "\"CG44_CLIFOR NOT IN (104)\"",
        "ROSSI: PD0C_CODNODO \" NOT EXISTS (SELECT TOP 1 1 FROM "
        "\"(1=1)\"\n",
        "in ZARVIK: CLSFW_FILTROQUERY - CliForRevocati\n",
        "in ZARVIK: CLSFW_FILTROQUERY - FiltroCondizione\n"}},
      // ROSSI: P1 and P2 revoked; VERDI: P5 (his own row wins over his
      // group's); warehouses A1, B2 / B2; company 2 excluded for both.
      {"Statement rewriter",
       {"rows kept: ROSSI 9 of 11, VERDI 10 of 11\n", "\n1 P5 Nuovo stabilimento yes -\n",
        "rows kept: ROSSI 4 of 6, VERDI 5 of 6\n", "rows kept: ROSSI 6 of 17, VERDI 14 of 17\n"}},
      // Answers for ROSSI and ZentAd; rights of ROSSI (yes = allowed).
      {"Block checks and rights records",
       {"\nProgettoBloccato(\"P1\") True False ", "\nProgettoBloccato(\"P3\") False False ",
        "\nDocumentoTestataBloccato(\"1008\") False False ",
        "\nStatoRevisioneDistintaBloccato(4) True True ",
        "\nPermessiDocTipologie(\"OCL\", 0) yes yes no no\n",
        "\nPermessiTipologieDistintaBase(35) no no no no\n",
        "\nInitRevokeFamiglia(\"MEC\") yes yes no yes\n"}},
  };
  for (const auto& c : cases) {
    const std::string section = Section(tour, c.section);
    ASSERT_NE(section, "") << c.section << "\n" << tour;
    for (const char* line : c.lines) {
      EXPECT_NE(section.find(line), std::string::npos) << c.section << ": " << line << "\n"
                                                       << section;
    }
  }
}

}  // namespace
}  // namespace zarvik::cli
