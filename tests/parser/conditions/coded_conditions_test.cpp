// Coded-entity sub-query conditions: contexts, sets, projects, import and
// export layouts, wizard models, project nodes and simulation codes, as
// exact texts and as the rows they keep on the demo database.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../parser_test_support.h"

namespace zarvik {
namespace {

class CodedConditionTest : public testing::ParserTest {};

TEST_F(CodedConditionTest, ExactTextsPrivilegedCodeAndTheDisabledFlagNotHonoured) {
  // Each builder for user 12, and its text without " AND ".
  const struct {
    std::function<std::string(CLSFW_PARSER&, bool)> call;
    std::string expected;
  } cases[] = {
      {[](CLSFW_PARSER& p, bool a) { return p.SQLConditionContesto("CTX.CODICE", a); },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  "
       "AND FW31_INDTIPO = 20  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND "
       "FW31_CODTIPO = CTX.CODICE) "},
      {[](CLSFW_PARSER& p, bool a) { return p.SQLConditionInsiemi("INS.CODICE", a); },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  "
       "AND FW31_INDTIPO = 29  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND "
       "FW31_CODTIPO = INS.CODICE) "},
      {[](CLSFW_PARSER& p, bool a) { return p.SQLConditionProgetto("PD68_CODPROG", a); },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  "
       "AND FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND "
       "FW31_CODTIPO = PD68_CODPROG) "},
      {[](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionTracciatiImport("TR.STRUTTURA", Variant("TR.CODICE"), a);
       },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  "
       "AND FW31_INDTIPO = 27  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = "
       "TR.STRUTTURA AND FW31_CODTIPO = TR.CODICE) "},
      {[](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionTracciatiExport("TR.STRUTTURA", "TR.CODICE", a);
       },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  "
       "AND FW31_INDTIPO = 28  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = "
       "TR.STRUTTURA AND FW31_CODTIPO = TR.CODICE) "},
      {[](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionWizAnag(3, "WZ.MODELLO", "WZ.INDSTAPER", a);
       },
       " NOT EXISTS (SELECT TOP 1 1      FROM VFW31_RVKPARAMETRI      WHERE "
       "FW31_ID_FW07 = 12          AND FW31_INDTIPO = 16         AND FW31_FLGABILITATO "
       "= 0          AND FW31_DITTARAGG = WZ.INDSTAPER         AND FW31_CODTIPO = "
       "WZ.MODELLO) "},
      {[](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionNodo("PD0C_CODNODO", "PD0C_CODPROG_PD68", a);
       },
       " NOT EXISTS (SELECT TOP 1 1  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 12  AND "
       "FW3N_DITTA_CG18 = 1 AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68 AND FW3N_CODNODO "
       "= PD0C_CODNODO) "},
      {[](CLSFW_PARSER& p, bool a) { return p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", a); },
       " NOT EXISTS (SELECT FW31_CODTIPO \r\n  FROM VFW31_RVKPARAMETRI  WHERE \r\n   "
       "FW31_ID_FW07 = 12 AND    FW31_INDTIPO = 15  AND \r\n   FW31_FLGABILITATO = 0 "
       "AND  \r\n   FW31_CODTIPO = rtrim(PD90_SIMULAZIONE) AND \r\n   FW31_DITTARAGG = "
       "1)"},
  };
  // The privileged customer/supplier code gives nothing without a query.
  AsUser(testing::kUnknownUser);
  parser.SetCodiceUtenteCLIFOR("ZentAd");
  for (const auto& c : cases) EXPECT_EQ(c.call(parser, true), "") << c.expected;
  EXPECT_TRUE(Statements().empty());
  AsUnknownUserWithId(12);
  parser.SetRevokeDisabilitata(true);
  for (const auto& c : cases) {
    EXPECT_EQ(c.call(parser, false), c.expected);
    EXPECT_EQ(c.call(parser, true), " AND " + c.expected);
  }
  // Only the user lookup ran: the sub-queries are evaluated by the host's
  // statement.
  EXPECT_EQ(Statements().size(), 1U);
  EXPECT_TRUE(Boxes().empty());
  // Only the simulation codes also short-cut on the user code.
  parser.SetCodiceUtente("ZentAd");
  EXPECT_EQ(parser.SQLConditionCodSimPD90("PD90_SIMULAZIONE", true), "");
  EXPECT_NE(parser.SQLConditionProgetto("PD68_CODPROG", true), "");
}

TEST_F(CodedConditionTest, WizardKindsAndTheImportLayoutColumnAsText) {
  AsUnknownUserWithId(12);
  for (const auto& [tipo_wizard, kind] :
       std::vector<std::pair<int16_t, std::string>>{{4, "17"}, {5, "18"}, {7, "0"}, {0, "0"}}) {
    EXPECT_NE(parser.SQLConditionWizAnag(tipo_wizard, "M", "I", false)
                  .find("         AND FW31_INDTIPO = " + kind + "         AND FW31_FLGABILITATO"),
              std::string::npos)
        << tipo_wizard;
  }
  EXPECT_NE(parser.SQLConditionTracciatiImport("S", Variant(int32_t{7}), false)
                .find(" AND FW31_DITTARAGG = S AND FW31_CODTIPO = 7) "),
            std::string::npos);
  EXPECT_NE(parser.SQLConditionTracciatiImport("S", Variant::Null(), false)
                .find(" AND FW31_CODTIPO = ) "),
            std::string::npos);
}

TEST_F(CodedConditionTest, ProjectsKeptPerUserAndCompany) {
  const std::string projects = "SELECT PD68_CODPROG FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = ";
  AsUser("ROSSI");
  EXPECT_EQ(
      Rows(projects + "1" + parser.SQLConditionProgetto("PD68_CODPROG", true) + " ORDER BY 1"),
      "P3 P4 P5 P6 P7 P8");
  // VERDI's own row for P5 wins over his group's enabled one.
  EXPECT_EQ(Rows(projects + "1" + Other("VERDI")->SQLConditionProgetto("PD68_CODPROG", true) +
                 " ORDER BY 1"),
            "P1 P2 P3 P4 P6 P7 P8");
  EXPECT_EQ(Rows(projects + "2" +
                 Other("BIANCHI", Variant("2"))->SQLConditionProgetto("PD68_CODPROG", true) +
                 " ORDER BY 1"),
            "Q2 Q3");
}

TEST_F(CodedConditionTest, NodesKeptForRossi) {
  AsUser("ROSSI");
  // P5/N1 has an enabled row: it revokes nothing.
  EXPECT_EQ(
      Rows("SELECT PD0C_CODPROG_PD68 || '/' || PD0C_CODNODO FROM PD0C_NODO "
           "WHERE PD0C_DITTA_CG18 = 1" +
           parser.SQLConditionNodo("PD0C_CODNODO", "PD0C_CODPROG_PD68", true) + " ORDER BY 1"),
      "P3/N1 P3/N3 P4/N2 P5/N1");
}

}  // namespace
}  // namespace zarvik
