// Block checks on the demo database: each answers both ways for ROSSI, the
// short cuts send nothing, every statement text is pinned, and the
// behaviours the host relies on (whole-table checks, the company check of
// the privileged user, revision states out of range, RecordCount on a
// server-side cursor, the obsolete box) stay as they are.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "check_test_support.h"
#include "db/recordset.h"
#include "demo/demo_db.h"
#include "platform/message_sink.h"

namespace zarvik {
namespace {

using Check = std::function<bool(CLSFW_PARSER&)>;

class BlockCheckTest : public testing::CheckTest {};

struct BothWays {
  const char* what;
  Check blocked;
  Check not_blocked;
};

TEST_F(BlockCheckTest, EveryCheckAnswersBothWaysForAnOrdinaryUser) {
  const std::vector<BothWays> cases = {
      {"DittaBloccata", [](CLSFW_PARSER& p) { return p.DittaBloccata(int32_t{2}); },
       [](CLSFW_PARSER& p) { return p.DittaBloccata(int32_t{1}); }},
      {"CliForBloccato_New", [](CLSFW_PARSER& p) { return p.CliForBloccato_New("7", 0); },
       [](CLSFW_PARSER& p) { return p.CliForBloccato_New("1", 0); }},
      {"CliForBloccato_New supplier",
       [](CLSFW_PARSER& p) { return p.CliForBloccato_New("103", 1); },
       [](CLSFW_PARSER& p) { return p.CliForBloccato_New("101", 1); }},
      {"DocumentoTestataBloccato revoked type",
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1005"); },
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1008"); }},
      {"DocumentoTestataBloccato revoked warehouse",
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1003"); },
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1015"); }},
      {"ProgettoBloccato", [](CLSFW_PARSER& p) { return p.ProgettoBloccato("P1"); },
       [](CLSFW_PARSER& p) { return p.ProgettoBloccato("P3"); }},
      {"NodoBloccato", [](CLSFW_PARSER& p) { return p.NodoBloccato("P3", "N2"); },
       [](CLSFW_PARSER& p) { return p.NodoBloccato("P3", "N1"); }},
      {"NodoBloccato enabled again", [](CLSFW_PARSER& p) { return p.NodoBloccato("P4", "N1"); },
       [](CLSFW_PARSER& p) { return p.NodoBloccato("P5", "N1"); }},
      {"ModelloBloccoMerceBloccato",
       [](CLSFW_PARSER& p) { return p.ModelloBloccoMerceBloccato("BLM2"); },
       [](CLSFW_PARSER& p) { return p.ModelloBloccoMerceBloccato("BLM1"); }},
      {"StatoRigaOrdineBloccato", [](CLSFW_PARSER& p) { return p.StatoRigaOrdineBloccato(3); },
       [](CLSFW_PARSER& p) { return p.StatoRigaOrdineBloccato(2); }},
      {"CodiceSimulazioneBloccato",
       [](CLSFW_PARSER& p) {
         std::string code = "SIM3";
         return p.CodiceSimulazioneBloccato(code);
       },
       [](CLSFW_PARSER& p) {
         std::string code = "SIM1";
         return p.CodiceSimulazioneBloccato(code);
       }},
      {"DepositoBloccato", [](CLSFW_PARSER& p) { return p.DepositoBloccato("A1"); },
       [](CLSFW_PARSER& p) { return p.DepositoBloccato("C3"); }},
      {"FunzioneApplicativaRevocata",
       [](CLSFW_PARSER& p) { return p.FunzioneApplicativaRevocata(104); },
       [](CLSFW_PARSER& p) { return p.FunzioneApplicativaRevocata(102); }},
      {"StatoRevisioneDistintaBloccato",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneDistintaBloccato(2); },
       [](CLSFW_PARSER& p) { return p.StatoRevisioneDistintaBloccato(3); }},
      {"StatoRevisioneCicloBloccato",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneCicloBloccato(3); },
       [](CLSFW_PARSER& p) { return p.StatoRevisioneCicloBloccato(2); }},
      {"SceltaDistintaRevisionataDocumentoBloccata",
       [](CLSFW_PARSER& p) { return p.SceltaDistintaRevisionataDocumentoBloccata("OCL  "); },
       [](CLSFW_PARSER& p) { return p.SceltaDistintaRevisionataDocumentoBloccata("DDT"); }},
      {"SceltaDistintaManualeDocumentoBloccata",
       [](CLSFW_PARSER& p) { return p.SceltaDistintaManualeDocumentoBloccata("DDT"); },
       [](CLSFW_PARSER& p) { return p.SceltaDistintaManualeDocumentoBloccata("OCL"); }},
      // Authorised is the True answer here.
      {"AutorizzaAttivitaSuDocumentoProduzione (not authorised)",
       [](CLSFW_PARSER& p) { return !p.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 1); },
       [](CLSFW_PARSER& p) { return !p.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 2); }},
  };
  AsRossi();
  for (const BothWays& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_TRUE(c.blocked(parser));
    EXPECT_FALSE(c.not_blocked(parser));
  }
  EXPECT_TRUE(Boxes().empty()) << Boxes().front().text;
}

TEST_F(BlockCheckTest, WholeTableChecksAnswerTrueWhileOneRowOfTheTableIsNotRevoked) {
  AsRossi();
  // STP02, DS_VENDITE and MATR_ORD are revoked: the answer is the same
  // whichever code is given, revoked or not, and even for a code that does
  // not exist.
  for (const char* code : {"STP02", "STP01", "NOPE"}) {
    EXPECT_TRUE(parser.StampaGestionaleBloccata(code)) << code;
  }
  for (const char* code : {"DS_VENDITE", "DS_ACQUISTI"}) {
    EXPECT_TRUE(parser.DSExportDatiGestBloccata(code)) << code;
  }
  for (const char* code : {"MATR_ORD", "MATR_FATT"}) {
    EXPECT_TRUE(parser.ConfigOfficeBloccata(code)) << code;
  }
  // With every row of each table revoked the answer turns False.
  Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, "
      "FW31_CODTIPO, FW31_FLGABILITATO) VALUES (9001, 5, 12, 0, 'STP01', 0), "
      "(9002, 5, 12, 0, 'STP03', 0), (9003, 5, 12, 0, 'STP04', 0), "
      "(9004, 5, 13, 0, 'DS_ACQUISTI', 0), (9005, 5, 13, 0, 'DS_MAGAZZINO', 0), "
      "(9006, 5, 13, 1, 'MATR_FATT', 0), (9007, 5, 13, 1, 'MATR_LETT', 0)");
  EXPECT_FALSE(parser.StampaGestionaleBloccata("STP02"));
  EXPECT_FALSE(parser.DSExportDatiGestBloccata("DS_VENDITE"));
  EXPECT_FALSE(parser.ConfigOfficeBloccata("MATR_ORD"));
}

TEST_F(BlockCheckTest, ExportSourceAndOfficeConfigurationKeepTheirScopesApart) {
  AsRossi();
  // Revoking every data source under scope 1 (the office configurations')
  // leaves the data sources visible.
  Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, "
      "FW31_CODTIPO, FW31_FLGABILITATO) VALUES (9001, 5, 13, 1, 'DS_ACQUISTI', 0), "
      "(9002, 5, 13, 1, 'DS_MAGAZZINO', 0), (9003, 5, 13, 1, 'DS_VENDITE', 0)");
  EXPECT_TRUE(parser.DSExportDatiGestBloccata("DS_VENDITE"));
}

struct ShortCut {
  const char* what;
  Check call;
  bool expected;
};

TEST_F(BlockCheckTest, PrivilegedUserGetsTheNeutralAnswerWithoutAStatement) {
  const std::vector<ShortCut> cases = {
      {"CliForBloccato_New", [](CLSFW_PARSER& p) { return p.CliForBloccato_New("7", 0); }, false},
      {"DocumentoTestataBloccato",
       [](CLSFW_PARSER& p) { return p.DocumentoTestataBloccato("1005"); }, false},
      {"ProgettoBloccato", [](CLSFW_PARSER& p) { return p.ProgettoBloccato("P1"); }, false},
      {"NodoBloccato", [](CLSFW_PARSER& p) { return p.NodoBloccato("P3", "N2"); }, false},
      {"ModelloBloccoMerceBloccato",
       [](CLSFW_PARSER& p) { return p.ModelloBloccoMerceBloccato("BLM2"); }, false},
      {"StampaGestionaleBloccata",
       [](CLSFW_PARSER& p) { return p.StampaGestionaleBloccata("STP02"); }, false},
      {"DSExportDatiGestBloccata",
       [](CLSFW_PARSER& p) { return p.DSExportDatiGestBloccata("DS_VENDITE"); }, false},
      {"ConfigOfficeBloccata", [](CLSFW_PARSER& p) { return p.ConfigOfficeBloccata("MATR_ORD"); },
       false},
      {"StatoRigaOrdineBloccato", [](CLSFW_PARSER& p) { return p.StatoRigaOrdineBloccato(3); },
       false},
      {"CodiceSimulazioneBloccato",
       [](CLSFW_PARSER& p) {
         std::string code = "SIM3";
         return p.CodiceSimulazioneBloccato(code);
       },
       false},
      {"DepositoBloccato", [](CLSFW_PARSER& p) { return p.DepositoBloccato("A1"); }, false},
      {"FunzioneApplicativaRevocata",
       [](CLSFW_PARSER& p) { return p.FunzioneApplicativaRevocata(104); }, false},
      {"StatoRevisioneDistintaBloccato",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneDistintaBloccato(2); }, false},
      {"StatoRevisioneCicloBloccato",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneCicloBloccato(3); }, false},
      {"SceltaDistintaRevisionataDocumentoBloccata",
       [](CLSFW_PARSER& p) { return p.SceltaDistintaRevisionataDocumentoBloccata("OCL"); }, false},
      {"SceltaDistintaManualeDocumentoBloccata",
       [](CLSFW_PARSER& p) { return p.SceltaDistintaManualeDocumentoBloccata("DDT"); }, false},
      // The privileged user is authorised.
      {"AutorizzaAttivitaSuDocumentoProduzione",
       [](CLSFW_PARSER& p) { return p.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 1); }, true},
      // Revision states outside 1..3 are blocked for him too, still without
      // a statement.
      {"StatoRevisioneDistintaBloccato(0)",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneDistintaBloccato(0); }, true},
      {"StatoRevisioneCicloBloccato(4)",
       [](CLSFW_PARSER& p) { return p.StatoRevisioneCicloBloccato(4); }, true},
  };
  AsZentAd();
  for (const ShortCut& c : cases) {
    SCOPED_TRACE(c.what);
    log->statements.clear();
    EXPECT_EQ(c.call(parser), c.expected);
    EXPECT_TRUE(Statements().empty()) << Statements().front();
  }
  EXPECT_FALSE(parser.Frame().UserResolved());
}

TEST_F(BlockCheckTest, PrivilegedCodeIsComparedOnTheFieldEachCheckNames) {
  // CodiceUtente privileged, CodiceUtenteCLIFOR not: the checks on
  // CodiceUtenteCLIFOR query, the others do not.
  parser.SetCodiceGruppo("VEN");
  parser.SetCodiceUtente("ZentAd");
  parser.SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_FALSE(parser.ProgettoBloccato("P1"));
  EXPECT_TRUE(Statements().empty());
  parser.DepositoBloccato("A1");
  EXPECT_FALSE(Statements().empty());

  // The other way round.
  log->statements.clear();
  CLSFW_PARSER other(Env{sink, std::make_shared<SystemClock>()});
  other.SetConnectionADO(db);
  other.SetDittaCorrente(Variant(int32_t{1}));
  other.SetCodiceGruppo("VEN");
  other.SetCodiceUtente("ROSSI");
  other.SetCodiceUtenteCLIFOR("ZentAd");
  EXPECT_FALSE(other.DepositoBloccato("A1"));
  EXPECT_FALSE(other.CliForBloccato_New("7", 0));
  EXPECT_FALSE(other.DocumentoTestataBloccato("1005"));
  EXPECT_TRUE(Statements().empty());
  EXPECT_TRUE(other.ProgettoBloccato("P1"));
}

TEST_F(BlockCheckTest, PrivilegedUserStillGetsTheCompanyExclusionFromTheDatabase) {
  AsZentAd();
  // ZentAd carries an old exclusion of company 2.
  EXPECT_TRUE(parser.DittaBloccata(int32_t{2}));
  EXPECT_FALSE(parser.DittaBloccata(int32_t{1}));
  EXPECT_EQ(LastStatement(),
            "SELECT COUNT(*) AS FLGRVK FROM VFW05_DITTAESCLUSI  WHERE FW05_DITTA_CG18 = 1 AND "
            "FW05_ID_FW07 = 1 AND FW05_FLGVISIBLE = 0");
}

TEST_F(BlockCheckTest, BlankCodesAnswerFalseWithoutAStatementOrAConnection) {
  const std::vector<Variant> blanks = {Variant(), Variant::Null(), Variant(""), Variant("   ")};
  AsRossi();
  // No connection at all: a blank code must not even try to open one.
  parser.SetConnectionADO(nullptr);
  parser.SetConnectionStringADO("Provider=SQLite;Data Source=/nonexistent/dir/x.db");
  for (const Variant& blank : blanks) {
    EXPECT_FALSE(parser.DittaBloccata(blank));
    EXPECT_FALSE(parser.CliForBloccato(blank));
    EXPECT_FALSE(parser.ProgettoBloccato(blank));
    EXPECT_FALSE(parser.NodoBloccato(blank, "N2"));
    EXPECT_FALSE(parser.NodoBloccato("P3", blank));
    EXPECT_FALSE(parser.ModelloBloccoMerceBloccato(blank));
    EXPECT_FALSE(parser.StampaGestionaleBloccata(blank));
    EXPECT_FALSE(parser.DSExportDatiGestBloccata(blank));
    EXPECT_FALSE(parser.ConfigOfficeBloccata(blank));
  }
  for (const char* blank : {"", "  "}) {
    EXPECT_FALSE(parser.CliForBloccato_New(blank, 0));
    EXPECT_FALSE(parser.DocumentoTestataBloccato(blank));
    EXPECT_FALSE(parser.DepositoBloccato(blank));
    EXPECT_FALSE(parser.SceltaDistintaRevisionataDocumentoBloccata(blank));
    EXPECT_FALSE(parser.SceltaDistintaManualeDocumentoBloccata(blank));
  }
  EXPECT_EQ(parser.ConnectionADO(), nullptr);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(BlockCheckTest, RevokeDisabilitataDoesNotSwitchTheChecksOff) {
  AsRossi();
  parser.SetRevokeDisabilitata(true);
  EXPECT_TRUE(parser.ProgettoBloccato("P1"));
  EXPECT_TRUE(parser.DepositoBloccato("A1"));
  EXPECT_TRUE(parser.StatoRevisioneDistintaBloccato(2));
}

TEST_F(BlockCheckTest, StatementTextsOfTheCompanyCustomerAndDocumentChecks) {
  AsRossi();
  parser.DittaBloccata(int32_t{2});
  EXPECT_EQ(LastStatement(),
            "SELECT COUNT(*) AS FLGRVK FROM VFW05_DITTAESCLUSI  WHERE FW05_DITTA_CG18 = 2 AND "
            "FW05_ID_FW07 = 5 AND FW05_FLGVISIBLE = 0");
  parser.CliForBloccato_New("7", 0);
  EXPECT_EQ(LastStatement(),
            "SELECT COUNT(*) AS FLGRVK FROM VFW32_LISTACFREVOCATI  WHERE RVKDITTA = 1 AND "
            "RVKCLIFOR = 7 AND RVKTIPOCF = 0 AND RVKUTENTE = 5");

  parser.DocumentoTestataBloccato("1005");
  const std::string statement = LastStatement();
  const std::string head =
      "SELECT COUNT(*) AS FLGRVK FROM DO11_DOCTESTATA  WHERE DO11_DITTA_CG18 = 1 AND "
      "DO11_NUMREG_CO99 = '1005'   AND  NOT EXISTS (SELECT MG3G_CODDOCUM_MG36 ";
  EXPECT_EQ(statement.substr(0, head.size()), head);
  // The tail is the document-header condition with its " AND ".
  EXPECT_EQ(statement,
            "SELECT COUNT(*) AS FLGRVK FROM DO11_DOCTESTATA  WHERE DO11_DITTA_CG18 = 1 AND "
            "DO11_NUMREG_CO99 = '1005' " +
                std::string(" ") + parser.SQLConditionDO11(true));
}

TEST_F(BlockCheckTest, StatementTextsOfTheProjectNodeAndModelChecks) {
  AsRossi();
  parser.ProgettoBloccato("P1");
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 1 FROM PD68_PROGETTI  WHERE PD68_DITTA_CG18 = 1 AND PD68_CODPROG = 'P1'"
            "  AND  EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_INDTIPO = 8  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = PD68_DITTA_CG18  "
            "AND FW31_CODTIPO = PD68_CODPROG) ");
  parser.NodoBloccato("P3", "N2");
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 1 FROM PD0C_NODO  WHERE PD0C_DITTA_CG18 = 1 AND PD0C_CODPROG_PD68 = "
            "'P3'  AND PD0C_CODNODO = 'N2'  AND  EXISTS(SELECT *  FROM VFW3N_RVKNODI  WHERE "
            "FW3N_ID_FW07 = 5  AND FW3N_DITTA_CG18 = PD0C_DITTA_CG18  AND FW3N_CODNODO = "
            "PD0C_CODNODO  AND FW3N_CODPROG_PD68 = PD0C_CODPROG_PD68) ");
  parser.ModelloBloccoMerceBloccato("BLM2");
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 1 FROM MG0F_BLMPARAM  WHERE MG0F_DITTA_CG18 = 1 AND MG0F_CODPARAM = "
            "'BLM2'  AND  EXISTS(SELECT *  FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND "
            "FW31_INDTIPO = 30  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = MG0F_DITTA_CG18  "
            "AND FW31_CODTIPO = MG0F_CODPARAM) ");
}

TEST_F(BlockCheckTest, StatementTextsOfTheWholeTableChecks) {
  AsRossi();
  parser.StampaGestionaleBloccata("STP02");
  EXPECT_EQ(LastStatement(),
            "SELECT FW57_CODICE  FROM FW57_STPLIBERE  WHERE  NOT EXISTS (SELECT FW31_CODICE      "
            "     FROM VFW31_RVKPARAMETRI          WHERE FW31_ID_FW07 = 5              AND "
            "FW31_CODTIPO = FW57_CODICE              AND FW31_INDTIPO = 12 )");
  parser.DSExportDatiGestBloccata("DS_VENDITE");
  EXPECT_EQ(LastStatement(),
            "SELECT FW34_CODICEDS  FROM FW34_VISSOURCE  WHERE  NOT EXISTS (SELECT FW31_CODICE    "
            "       FROM VFW31_RVKPARAMETRI          WHERE FW31_ID_FW07 = 5              AND "
            "FW31_CODTIPO = FW34_CODICEDS             AND FW31_DITTARAGG = 0              AND "
            "FW31_INDTIPO = 13 )");
  parser.ConfigOfficeBloccata("MATR_ORD");
  EXPECT_EQ(LastStatement(),
            "select  FW36_CODICEMATR   from FW36_VISMATRICI  WHERE  NOT EXISTS (SELECT "
            "FW31_CODICE           FROM VFW31_RVKPARAMETRI          WHERE FW31_ID_FW07 = 5      "
            "        AND FW31_CODTIPO = FW36_CODICEMATR              AND FW31_DITTARAGG = 1     "
            "         AND FW31_INDTIPO = 13 )");
}

TEST_F(BlockCheckTest, StatementTextsOfTheParameterChecks) {
  AsRossi();
  parser.StatoRigaOrdineBloccato(3);
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO = 10  AND "
            "FW31_CODTIPO = '3'  AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0");
  std::string sim = "SIM3";
  parser.CodiceSimulazioneBloccato(sim);
  EXPECT_EQ(sim, "SIM3");
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO = 15  AND "
            "FW31_CODTIPO = 'SIM3'  AND FW31_DITTARAGG = 1 AND FW31_ID_FW07 = 5  AND "
            "FW31_FLGABILITATO = 0");
  parser.DepositoBloccato("A1");
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 * FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = "
            "6  AND FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND FW31_CODTIPO = 'A1'");
  parser.FunzioneApplicativaRevocata(104);
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1 1 FROM FW3G_RVKFUNZIONI  WHERE FW3G_CODICE_FW3F = 104 AND FW3G_ID_FW07 "
            "= 5  AND FW3G_FLGABILITATO = 0");
}

TEST_F(BlockCheckTest, StatementTextsOfTheProductionChecks) {
  AsRossi();
  parser.StatoRevisioneDistintaBloccato(2);
  EXPECT_EQ(LastStatement(),
            "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE   "
            "FW31_INDTIPO      = 34 AND   FW31_CODTIPO      = '2' AND   FW31_ID_FW07      = 5 "
            "AND   FW31_FLGABILITATO = 0");
  parser.StatoRevisioneCicloBloccato(1);
  EXPECT_EQ(LastStatement(),
            "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE   "
            "FW31_INDTIPO      = 35 AND   FW31_CODTIPO      = '1' AND   FW31_ID_FW07      = 5 "
            "AND   FW31_FLGABILITATO = 0");
  parser.SceltaDistintaRevisionataDocumentoBloccata("OCL  ");
  const std::string bill_choice_head =
      "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) INNER JOIN   "
      "MG36_DOCUMENTI WITH (NOLOCK) ON   MG36_DOCUMENTI.MG36_CODDOCUM  = "
      "VFW31_RVKPARAMETRI.FW31_CODTIPO AND   MG36_DOCUMENTI.MG36_INDSTAPER = "
      "VFW31_RVKPARAMETRI.FW31_DITTARAGG INNER JOIN   MG3G_DOCDITTA WITH (NOLOCK) ON   "
      "MG3G_DOCDITTA.MG3G_CODDOCUM_MG36  = MG36_DOCUMENTI.MG36_CODDOCUM AND   "
      "MG3G_DOCDITTA.MG3G_INDSTAPER_MG36 = MG36_DOCUMENTI.MG36_INDSTAPER WHERE       "
      "VFW31_RVKPARAMETRI.FW31_INDTIPO      = ";
  const std::string bill_choice_tail =
      "   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      = 5   AND "
      "VFW31_RVKPARAMETRI.FW31_FLGABILITATO = 0   AND MG3G_DOCDITTA.MG3G_DITTA_CG18        = 1 "
      "  AND MG36_DOCUMENTI.MG36_CODDOCUM         = ";
  EXPECT_EQ(LastStatement(),
            "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) INNER JOIN   "
            "MG36_DOCUMENTI WITH (NOLOCK) ON   MG36_DOCUMENTI.MG36_CODDOCUM  = "
            "VFW31_RVKPARAMETRI.FW31_CODTIPO AND   MG36_DOCUMENTI.MG36_INDSTAPER = "
            "VFW31_RVKPARAMETRI.FW31_DITTARAGG INNER JOIN   MG3G_DOCDITTA WITH (NOLOCK) ON   "
            "MG3G_DOCDITTA.MG3G_CODDOCUM_MG36  = MG36_DOCUMENTI.MG36_CODDOCUM AND   "
            "MG3G_DOCDITTA.MG3G_INDSTAPER_MG36 = MG36_DOCUMENTI.MG36_INDSTAPER WHERE       "
            "VFW31_RVKPARAMETRI.FW31_INDTIPO      = 36   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      "
            "= 5   AND VFW31_RVKPARAMETRI.FW31_FLGABILITATO = 0   AND "
            "MG3G_DOCDITTA.MG3G_DITTA_CG18        = 1   AND MG36_DOCUMENTI.MG36_CODDOCUM         "
            "= 'OCL'");
  // The manual choice differs in the kind; quotes in the code are doubled
  // (the one check that does so) after the trailing blanks are cut.
  EXPECT_FALSE(parser.SceltaDistintaManualeDocumentoBloccata("O'K  "));
  EXPECT_EQ(LastStatement(), bill_choice_head + "37" + bill_choice_tail + "'O''K'");
  EXPECT_TRUE(Boxes().empty());

  parser.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 1);
  EXPECT_EQ(LastStatement(),
            "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE       "
            "VFW31_RVKPARAMETRI.FW31_INDTIPO      = 38   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      "
            "=   5   AND VFW31_RVKPARAMETRI.FW31_FLGABILITATO =  0   AND "
            "VFW31_RVKPARAMETRI.FW31_DITTARAGG    =   1   AND VFW31_RVKPARAMETRI.FW31_CODTIPO      "
            "=  '01' ");
}

TEST_F(BlockCheckTest, OtherChecksLeaveQuotesInCodesAsTheyAreAndReportTheFailure) {
  AsRossi();
  EXPECT_FALSE(parser.DepositoBloccato("A'1"));
  EXPECT_NE(LastStatement().find("FW31_CODTIPO = 'A'1'"), std::string::npos);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("DepositoBloccato"))) << Boxes()[0].text;
}

TEST_F(BlockCheckTest, GroupBasedUserHasAFunctionRevokedOnlyWhenEveryGroupRevokesIt) {
  // VERDI (groups AMM and MAG): 101 revoked by both, 102 by AMM only, 103
  // by MAG only (AMM's row enables it), 104 by none.
  AsUser("VERDI", "AMM");
  EXPECT_TRUE(parser.FunzioneApplicativaRevocata(101));
  EXPECT_FALSE(parser.FunzioneApplicativaRevocata(102));
  EXPECT_FALSE(parser.FunzioneApplicativaRevocata(103));
  EXPECT_FALSE(parser.FunzioneApplicativaRevocata(104));
  parser.FunzioneApplicativaRevocata(101);
  EXPECT_EQ(LastStatement(),
            std::string("          SELECT  *    ") + " FROM    (           " +
                "         SELECT  FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, " + "101" +
                ") AS FW3G_CODICE_FW3F, MAX(ISNULL(FW3G_FLGABILITATO, 1)) AS FW3G_FLGABILITATO  "
                "       " +
                "         FROM    FW00_GRPUSRASSOC             " +
                "                 LEFT JOIN FW3G_RVKFUNZIONI " +
                "                     ON FW00_ID_FW06 = FW3G_ID_FW06 AND FW3G_CODICE_FW3F = " +
                "101" + "         WHERE   FW00_ID_FW07 = " + "7" +
                "         GROUP BY FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, " + "101" + ")         " +
                "         ) TT   " + " WHERE   TT.FW3G_FLGABILITATO = 0  ");
}

TEST_F(BlockCheckTest, UserNotFoundIsTreatedAsGroupBased) {
  AsUser("NESSUNO", "VEN");
  parser.SetIdUser(5);
  EXPECT_FALSE(parser.FunzioneApplicativaRevocata(104));
  EXPECT_EQ(parser.Frame().FlgGrpRevoke(), 1);
  EXPECT_EQ(LastStatement().rfind("          SELECT  *    ", 0), 0u) << LastStatement();
}

TEST_F(BlockCheckTest, DocumentThatDoesNotExistIsBlocked) {
  AsRossi();
  EXPECT_TRUE(parser.DocumentoTestataBloccato("9999"));
  // Another company's document is not found under the current company.
  EXPECT_TRUE(parser.DocumentoTestataBloccato("2001"));
}

TEST_F(BlockCheckTest, DocumentCheckLeavesTheUserLookupToTheDocumentCondition) {
  AsRossi();
  parser.DocumentoTestataBloccato("1008");
  ASSERT_GE(Statements().size(), 2u);
  EXPECT_EQ(Statements()[0].rfind("SELECT FW07_ID, FW07_FLGGRP FROM FW07_APPUSER", 0), 0u);
  EXPECT_EQ(Statements().back().rfind("SELECT COUNT(*) AS FLGRVK FROM DO11_DOCTESTATA", 0), 0u);
}

TEST_F(BlockCheckTest, CustomerCheckFillsABlankUserCodeFromTheCustomerSupplierCode) {
  parser.SetCodiceGruppo("VEN");
  parser.SetCodiceUtente("");
  parser.SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_TRUE(parser.CliForBloccato_New("7", 0));
  EXPECT_EQ(parser.CodiceUtente(), "ROSSI");
  EXPECT_EQ(parser.Frame().UserId(), demo::user_id::kRossi);
  // A code that is set is left alone (no harmonising).
  CLSFW_PARSER other(Env{sink, std::make_shared<SystemClock>()});
  other.SetConnectionADO(db);
  other.SetDittaCorrente(Variant(int32_t{1}));
  other.SetCodiceGruppo("VEN");
  other.SetCodiceUtente("BIANCHI");
  other.SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_FALSE(other.CliForBloccato_New("7", 0));
  EXPECT_EQ(other.CodiceUtente(), "BIANCHI");
}

TEST_F(BlockCheckTest, WarehouseCheckAnswersFalseOnAServerSideCursor) {
  AsRossi();
  db->SetCursorLocation(db::kUseServer);
  EXPECT_FALSE(parser.DepositoBloccato("A1"));
  // The row-found checks do not depend on the cursor.
  EXPECT_TRUE(parser.ProgettoBloccato("P1"));
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(BlockCheckTest, ObsoleteCustomerCheckShowsItsNoticeAndNeverQueries) {
  AsRossi();
  EXPECT_FALSE(parser.CliForBloccato(Variant("7")));
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_EQ(Boxes()[0].text, "Metodo 'CliForBloccato' obsoleto, utilizzare 'CliForBloccato_New'");
  EXPECT_EQ(Boxes()[0].title, "Sviluppo");
  EXPECT_EQ(Boxes()[0].style, msgstyle::kExclamation);
  EXPECT_TRUE(Statements().empty());
}

TEST_F(BlockCheckTest, ActivityWithoutDocumentIndexOrOperationCodeIsNotAuthorisedWithoutAQuery) {
  AsRossi();
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(24, 2, 2));   // no index
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(14, 2, 1));   // index 2: no "0x"
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 16));  // no code
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(-1, 1, 1));
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(25, -1, 1));
  EXPECT_TRUE(Statements().empty());
  // A negative type is refused even for the privileged user.
  AsZentAd();
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(-1, 1, 1));
  EXPECT_TRUE(parser.AutorizzaAttivitaSuDocumentoProduzione(24, 2, 2));
}

TEST_F(BlockCheckTest, MissingConnectionIsReportedUnderTheCheckName) {
  AsRossi();
  parser.SetConnectionADO(nullptr);
  EXPECT_FALSE(parser.ProgettoBloccato("P1"));
  EXPECT_FALSE(parser.StatoRevisioneDistintaBloccato(2));
  EXPECT_FALSE(parser.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 1));
  ASSERT_EQ(Boxes().size(), 3u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("ProgettoBloccato")));
  EXPECT_EQ(Boxes()[0].text.rfind("91 - ", 0), 0u) << Boxes()[0].text;
  EXPECT_TRUE(EndsWith(Boxes()[1].text, TagLine("StatoRevisioneDistintaBloccato")));
  EXPECT_TRUE(EndsWith(Boxes()[2].text, TagLine("AutorizzaAttivitaSuDocumentoProduzione")));
}

}  // namespace
}  // namespace zarvik
