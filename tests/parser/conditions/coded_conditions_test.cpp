// Coded-entity sub-query conditions: contexts, sets, projects, import and
// export layouts, wizard models, project nodes and simulation codes, as
// exact texts and as the rows they keep on the demo database.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "condition_test_support.h"

namespace zarvik {
namespace {

using testing::ConditionTest;

const char* const kContestoUser12 =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  AND "
    "FW31_INDTIPO = 20  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND FW31_CODTIPO = "
    "CTX.CODICE) ";
const char* const kInsiemiUser12 =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  AND "
    "FW31_INDTIPO = 29  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = -1  AND FW31_CODTIPO = "
    "INS.CODICE) ";
const char* const kProgettoUser12 =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  AND "
    "FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND FW31_CODTIPO = "
    "PD68_CODPROG) ";
const char* const kTracciatiImportUser12 =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  AND "
    "FW31_INDTIPO = 27  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = TR.STRUTTURA AND "
    "FW31_CODTIPO = TR.CODICE) ";
const char* const kTracciatiExportUser12 =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 12  AND "
    "FW31_INDTIPO = 28  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = TR.STRUTTURA AND "
    "FW31_CODTIPO = TR.CODICE) ";
const char* const kWizAnagUser12 =
    " NOT EXISTS (SELECT TOP 1 1      FROM VFW31_RVKPARAMETRI      WHERE FW31_ID_FW07 = 12      "
    "    "
    "AND FW31_INDTIPO = 16         AND FW31_FLGABILITATO = 0          AND FW31_DITTARAGG = "
    "WZ.INDSTAPER         AND FW31_CODTIPO = WZ.MODELLO) ";
const char* const kNodoUser12 =
    " NOT EXISTS (SELECT TOP 1 1  FROM VFW3N_RVKNODI  WHERE FW3N_ID_FW07 = 12  AND "
    "FW3N_DITTA_CG18 = 1 AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68 AND FW3N_CODNODO = "
    "PD0C_CODNODO) ";
const char* const kCodSimUser12 =
    " NOT EXISTS (SELECT FW31_CODTIPO \r\n  FROM VFW31_RVKPARAMETRI  WHERE \r\n   FW31_ID_FW07 = "
    "12 "
    "AND    FW31_INDTIPO = 15  AND \r\n   FW31_FLGABILITATO = 0 AND  \r\n   FW31_CODTIPO = "
    "rtrim(PD90_SIMULAZIONE) AND \r\n   FW31_DITTARAGG = 1)";

struct CodedCase {
  const char* method;
  std::function<std::string(CLSFW_PARSER&, bool)> call;
  const char* expected;
};

std::vector<CodedCase> CodedCases() {
  return {
      {"SQLConditionContesto",
       [](CLSFW_PARSER& p, bool a) { return p.SQLConditionContesto("CTX.CODICE", a); },
       kContestoUser12},
      {"SQLConditionInsiemi",
       [](CLSFW_PARSER& p, bool a) { return p.SQLConditionInsiemi("INS.CODICE", a); },
       kInsiemiUser12},
      {"SQLConditionProgetto",
       [](CLSFW_PARSER& p, bool a) { return p.SQLConditionProgetto("PD68_CODPROG", a); },
       kProgettoUser12},
      {"SQLConditionTracciatiImport",
       [](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionTracciatiImport("TR.STRUTTURA", Variant("TR.CODICE"), a);
       },
       kTracciatiImportUser12},
      {"SQLConditionTracciatiExport",
       [](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionTracciatiExport("TR.STRUTTURA", "TR.CODICE", a);
       },
       kTracciatiExportUser12},
      {"SQLConditionWizAnag",
       [](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionWizAnag(3, "WZ.MODELLO", "WZ.INDSTAPER", a);
       },
       kWizAnagUser12},
      {"SQLConditionNodo",
       [](CLSFW_PARSER& p, bool a) {
         return p.SQLConditionNodo("PD0C_CODNODO", "PD0C_CODPROG_PD68", a);
       },
       kNodoUser12},
      {"SQLConditionCodSimPD90",
       [](CLSFW_PARSER& p, bool a) { return p.SQLConditionCodSimPD90("PD90_SIMULAZIONE", a); },
       kCodSimUser12},
  };
}

class CodedConditionTest : public ConditionTest {};

TEST_F(CodedConditionTest, ExactTextsForAnOrdinaryUser) {
  AsUnknownUserWithId(12);
  for (const CodedCase& c : CodedCases()) {
    SCOPED_TRACE(c.method);
    EXPECT_EQ(c.call(parser, false), c.expected);
    EXPECT_EQ(c.call(parser, true), std::string(" AND ") + c.expected);
  }
  // Only the user lookup ran: the sub-queries are evaluated by the host's
  // statement.
  EXPECT_EQ(log->statements.size(), 1u);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(CodedConditionTest, PrivilegedCodeGivesNothingTheDisabledFlagIsNotHonoured) {
  AsUser("ZentAd", "SYS");
  for (const CodedCase& c : CodedCases()) {
    SCOPED_TRACE(c.method);
    EXPECT_EQ(c.call(parser, true), "");
  }
  EXPECT_TRUE(log->statements.empty());

  AsUnknownUserWithId(12);
  parser.SetRevokeDisabilitata(true);
  for (const CodedCase& c : CodedCases()) {
    SCOPED_TRACE(c.method);
    EXPECT_EQ(c.call(parser, false), c.expected);
  }
}

TEST_F(CodedConditionTest, SimulationCodesShortCutOnEitherUserCode) {
  AsUnknownUserWithId(12);
  parser.SetCodiceUtente("ZentAd");
  EXPECT_EQ(parser.SQLConditionCodSimPD90("PD90_SIMULAZIONE", true), "");
  EXPECT_NE(parser.SQLConditionProgetto("PD68_CODPROG", true), "");
  parser.SetCodiceUtente(testing::kUnknownUser);
  parser.SetCodiceUtenteCLIFOR("ZentAd");
  EXPECT_EQ(parser.SQLConditionCodSimPD90("PD90_SIMULAZIONE", true), "");
}

TEST_F(CodedConditionTest, WizardKinds) {
  AsUnknownUserWithId(12);
  const struct {
    int16_t tipo_wizard;
    const char* kind;
  } cases[] = {{3, "16"}, {4, "17"}, {5, "18"}, {7, "0"}, {0, "0"}, {-3, "0"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.tipo_wizard);
    const std::string text = parser.SQLConditionWizAnag(c.tipo_wizard, "M", "I", false);
    EXPECT_NE(text.find(std::string("         AND FW31_INDTIPO = ") + c.kind +
                        "         AND FW31_FLGABILITATO = 0 "),
              std::string::npos)
        << text;
  }
}

TEST_F(CodedConditionTest, ImportLayoutColumnIsAVariantInItsTextForm) {
  AsUnknownUserWithId(12);
  EXPECT_NE(parser.SQLConditionTracciatiImport("S", Variant(int32_t{7}), false)
                .find(" AND FW31_DITTARAGG = S AND FW31_CODTIPO = 7) "),
            std::string::npos);
  EXPECT_NE(parser.SQLConditionTracciatiImport("S", Variant::Null(), false)
                .find(" AND FW31_CODTIPO = ) "),
            std::string::npos);
}

// ---------------------------------------------------------------------------
// On the demo database

TEST_F(CodedConditionTest, ProjectsKeptPerUserAndCompany) {
  const std::string projects = "SELECT PD68_CODPROG FROM PD68_PROGETTI WHERE PD68_DITTA_CG18 = ";
  AsRossi();
  EXPECT_EQ(
      Rows(projects + "1" + parser.SQLConditionProgetto("PD68_CODPROG", true) + " ORDER BY 1"),
      (std::vector<std::string>{"P3", "P4", "P5", "P6", "P7", "P8"}));
  // VERDI's own row for P5 wins over his group's enabled one.
  CLSFW_PARSER verdi(Env{sink, std::make_shared<SystemClock>()});
  verdi.SetConnectionADO(db);
  verdi.SetDittaCorrente(Variant(int32_t{1}));
  verdi.SetCodiceGruppo("AMM");
  verdi.SetCodiceUtente("VERDI");
  verdi.SetCodiceUtenteCLIFOR("VERDI");
  EXPECT_EQ(Rows(projects + "1" + verdi.SQLConditionProgetto("PD68_CODPROG", true) + " ORDER BY 1"),
            (std::vector<std::string>{"P1", "P2", "P3", "P4", "P6", "P7", "P8"}));
  // BIANCHI in company 2.
  CLSFW_PARSER bianchi(Env{sink, std::make_shared<SystemClock>()});
  bianchi.SetConnectionADO(db);
  bianchi.SetDittaCorrente(Variant("2"));
  bianchi.SetCodiceGruppo("VEN");
  bianchi.SetCodiceUtenteCLIFOR("BIANCHI");
  bianchi.SetCodiceUtente("BIANCHI");
  EXPECT_EQ(
      Rows(projects + "2" + bianchi.SQLConditionProgetto("PD68_CODPROG", true) + " ORDER BY 1"),
      (std::vector<std::string>{"Q2", "Q3"}));
}

TEST_F(CodedConditionTest, NodesKeptForRossi) {
  AsRossi();
  // P5/N1 has an enabled row: it revokes nothing.
  EXPECT_EQ(
      Rows("SELECT PD0C_CODPROG_PD68 || '/' || PD0C_CODNODO FROM PD0C_NODO "
           "WHERE PD0C_DITTA_CG18 = 1" +
           parser.SQLConditionNodo("PD0C_CODNODO", "PD0C_CODPROG_PD68", true) + " ORDER BY 1"),
      (std::vector<std::string>{"P3/N1", "P3/N3", "P4/N2", "P5/N1"}));
}

TEST_F(CodedConditionTest, SimulationCodesComparedTrimmed) {
  AsRossi();
  // SIM3 is stored blank-padded and still revoked.
  EXPECT_EQ(Rows("SELECT PD90_SIMULAZIONE FROM PD90_SIMULAZIONI WHERE PD90_DITTA_CG18 = 1" +
                 parser.SQLConditionCodSimPD90("PD90_SIMULAZIONE", true) + " ORDER BY 1"),
            (std::vector<std::string>{"SIM1", "SIM2"}));
}

TEST_F(CodedConditionTest, CodesWithoutHostTableKeptForRossi) {
  AsRossi();
  EXPECT_EQ(Rows("SELECT T.C FROM (SELECT 'CTX_CONT' AS C UNION ALL SELECT 'CTX_ALTRO') T "
                 "WHERE" +
                 parser.SQLConditionContesto("T.C", false)),
            (std::vector<std::string>{"CTX_ALTRO"}));
  EXPECT_EQ(Rows("SELECT T.C FROM (SELECT 'INS01' AS C UNION ALL SELECT 'INS02') T WHERE" +
                 parser.SQLConditionInsiemi("T.C", false)),
            (std::vector<std::string>{"INS02"}));

  const std::string layouts =
      "SELECT T.S || '/' || T.C FROM (SELECT 1 AS S, '%1' AS C "
      "UNION ALL SELECT 1, '%2' UNION ALL SELECT 2, '%1') T WHERE 1=1";
  auto with = [&](const std::string& first, const std::string& second) {
    std::string text = layouts;
    text.replace(text.find("%1"), 2, first);
    text.replace(text.find("%2"), 2, second);
    text.replace(text.find("%1"), 2, first);
    return text;
  };
  EXPECT_EQ(Rows(with("IMP01", "IMP02") +
                 parser.SQLConditionTracciatiImport("T.S", Variant("T.C"), true) + " ORDER BY 1"),
            (std::vector<std::string>{"1/IMP02", "2/IMP01"}));
  EXPECT_EQ(Rows(with("EXP01", "EXP02") + parser.SQLConditionTracciatiExport("T.S", "T.C", true) +
                 " ORDER BY 1"),
            (std::vector<std::string>{"1/EXP02", "2/EXP01"}));

  const std::string models =
      "SELECT T.M || '/' || T.I FROM (SELECT 'WZCLI' AS M, 0 AS I UNION ALL SELECT 'WZFOR', 0 "
      "UNION ALL SELECT 'WZCLI', 1) T WHERE 1=1";
  EXPECT_EQ(Rows(models + parser.SQLConditionWizAnag(3, "T.M", "T.I", true) + " ORDER BY 1"),
            (std::vector<std::string>{"WZCLI/1", "WZFOR/0"}));
  EXPECT_EQ(Rows(models + parser.SQLConditionWizAnag(4, "T.M", "T.I", true) + " ORDER BY 1"),
            (std::vector<std::string>{"WZCLI/0", "WZCLI/1", "WZFOR/0"}));
}

}  // namespace
}  // namespace zarvik
