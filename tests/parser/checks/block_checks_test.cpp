// Block checks on the demo database: answers, statements sent, short cuts and quirks.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "db/recordset.h"

namespace zarvik {
namespace {

using testing::ParserTest;
using testing::TF;

// The user code a check compares with "ZentAd" before it sends anything.
enum class Privileged { kNone, kUser, kClifor };

struct BlockCase {
  std::function<bool(CLSFW_PARSER&, const std::string&)> blocked;  // True: blocked
  const char* blocked_code;
  const char* free_code;  // "" when every code answers alike
  std::string statement;  // sent for blocked_code ("" when pinned elsewhere)
  Privileged privileged = Privileged::kUser;
};

using P = CLSFW_PARSER;
using S = std::string;

const S kBillChoice =
    "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) INNER JOIN   "
    "MG36_DOCUMENTI WITH (NOLOCK) ON   MG36_DOCUMENTI.MG36_CODDOCUM  = "
    "VFW31_RVKPARAMETRI.FW31_CODTIPO AND   MG36_DOCUMENTI.MG36_INDSTAPER = "
    "VFW31_RVKPARAMETRI.FW31_DITTARAGG INNER JOIN   MG3G_DOCDITTA WITH (NOLOCK) ON   "
    "MG3G_DOCDITTA.MG3G_CODDOCUM_MG36  = MG36_DOCUMENTI.MG36_CODDOCUM AND   "
    "MG3G_DOCDITTA.MG3G_INDSTAPER_MG36 = MG36_DOCUMENTI.MG36_INDSTAPER WHERE       "
    "VFW31_RVKPARAMETRI.FW31_INDTIPO      = ";
S BillChoice(const S& kind, const S& code) {
  return kBillChoice + kind +
         "   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      = 5   AND "
         "VFW31_RVKPARAMETRI.FW31_FLGABILITATO = 0   AND MG3G_DOCDITTA.MG3G_DITTA_CG18        = "
         "1   AND MG36_DOCUMENTI.MG36_CODDOCUM         = " +
         code;
}

// ROSSI's table condition without its NOT (the rewrite digest pins it).
S Positive(const S& prefix) { return testing::RossiTableText(prefix).substr(5); }

std::vector<BlockCase> BlockCases(P& rossi) {
  return {
      {[](P& p, const S& c) { return p.DittaBloccata(c); }, "2", "1",
       "SELECT COUNT(*) AS FLGRVK FROM VFW05_DITTAESCLUSI  WHERE FW05_DITTA_CG18 = 2 AND "
       "FW05_ID_FW07 = 5 AND FW05_FLGVISIBLE = 0",
       Privileged::kNone},
      {[](P& p, const S& c) { return p.CliForBloccato_New(c, 0); }, "7", "1",
       "SELECT COUNT(*) AS FLGRVK FROM VFW32_LISTACFREVOCATI  WHERE RVKDITTA = 1 AND RVKCLIFOR = "
       "7 AND RVKTIPOCF = 0 AND RVKUTENTE = 5",
       Privileged::kClifor},
      {[](P& p, const S& c) { return p.CliForBloccato_New(c, 1); }, "103", "101", "",  // suppliers
       Privileged::kClifor},
      // 1005 has a revoked type, 1003 a revoked warehouse; the tail is the document-header
      // condition with its " AND ".
      {[](P& p, const S& c) { return p.DocumentoTestataBloccato(c); }, "1005", "1008",
       "SELECT COUNT(*) AS FLGRVK FROM DO11_DOCTESTATA  WHERE DO11_DITTA_CG18 = 1 AND "
       "DO11_NUMREG_CO99 = '1005'  " +
           rossi.SQLConditionDO11(true),
       Privileged::kClifor},
      {[](P& p, const S& c) { return p.DocumentoTestataBloccato(c); }, "1003", "1015", "",
       Privileged::kClifor},
      {[](P& p, const S& c) { return p.ProgettoBloccato(c); }, "P1", "P3",
       "SELECT TOP 1 1 FROM PD68_PROGETTI  WHERE PD68_DITTA_CG18 = 1 AND PD68_CODPROG = 'P1'  "
       "AND " +
           Positive("PD68")},
      // The code is "project/node".
      {[](P& p, const S& c) { return p.NodoBloccato(c.substr(0, 2), c.substr(3)); }, "P3/N2",
       "P3/N1",
       "SELECT TOP 1 1 FROM PD0C_NODO  WHERE PD0C_DITTA_CG18 = 1 AND PD0C_CODPROG_PD68 = 'P3'  AND "
       "PD0C_CODNODO = 'N2'  AND " +
           Positive("PD0C")},
      {[](P& p, const S& c) { return p.NodoBloccato(c.substr(0, 2), c.substr(3)); }, "P4/N1",
       "P5/N1", ""},
      {[](P& p, const S& c) { return p.ModelloBloccoMerceBloccato(c); }, "BLM2", "BLM1",
       "SELECT TOP 1 1 FROM MG0F_BLMPARAM  WHERE MG0F_DITTA_CG18 = 1 AND MG0F_CODPARAM = 'BLM2'  "
       "AND " +
           Positive("MG0F")},
      // STP02, DS_VENDITE, MATR_ORD are revoked: any code answers alike.
      {[](P& p, const S& c) { return p.StampaGestionaleBloccata(c); }, "NOPE", "",
       "SELECT FW57_CODICE  FROM FW57_STPLIBERE  WHERE " + testing::RossiTableText("FW57")},
      {[](P& p, const S& c) { return p.DSExportDatiGestBloccata(c); }, "DS_ACQUISTI", "",
       "SELECT FW34_CODICEDS  FROM FW34_VISSOURCE  WHERE " + testing::RossiTableText("FW34")},
      {[](P& p, const S& c) { return p.ConfigOfficeBloccata(c); }, "MATR_FATT", "",
       "select  FW36_CODICEMATR   from FW36_VISMATRICI  WHERE " + testing::RossiTableText("FW36")},
      {[](P& p, const S& c) { return p.StatoRigaOrdineBloccato(std::stoi(c)); }, "3", "2",
       "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO = 10  AND "
       "FW31_CODTIPO = '3'  AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0"},
      {[](P& p, const S& c) {
         S code = c;
         const bool blocked = p.CodiceSimulazioneBloccato(code);
         EXPECT_EQ(code, c);
         return blocked;
       },
       "SIM3", "SIM1",
       "SELECT FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO = 15  AND "
       "FW31_CODTIPO = 'SIM3'  AND FW31_DITTARAGG = 1 AND FW31_ID_FW07 = 5  AND "
       "FW31_FLGABILITATO = 0"},
      {[](P& p, const S& c) { return p.DepositoBloccato(c); }, "A1", "C3",
       "SELECT TOP 1 * FROM VFW31_RVKPARAMETRI  WHERE FW31_ID_FW07 = 5  AND FW31_INDTIPO = 6  AND "
       "FW31_FLGABILITATO = 0  AND FW31_DITTARAGG = 1 AND FW31_CODTIPO = 'A1'",
       Privileged::kClifor},
      {[](P& p, const S& c) { return p.FunzioneApplicativaRevocata(std::stoi(c)); }, "104", "102",
       "SELECT TOP 1 1 FROM FW3G_RVKFUNZIONI  WHERE FW3G_CODICE_FW3F = 104 AND FW3G_ID_FW07 = 5  "
       "AND FW3G_FLGABILITATO = 0"},
      {[](P& p, const S& c) { return p.StatoRevisioneDistintaBloccato(std::stoi(c)); }, "2", "3",
       "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE   FW31_INDTIPO  "
       "    = 34 AND   FW31_CODTIPO      = '2' AND   FW31_ID_FW07      = 5 AND   "
       "FW31_FLGABILITATO = 0"},
      {[](P& p, const S& c) { return p.StatoRevisioneCicloBloccato(std::stoi(c)); }, "3", "2",
       "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE   FW31_INDTIPO  "
       "    = 35 AND   FW31_CODTIPO      = '3' AND   FW31_ID_FW07      = 5 AND   "
       "FW31_FLGABILITATO = 0"},
      // Trailing blanks of the code are cut.
      {[](P& p, const S& c) { return p.SceltaDistintaRevisionataDocumentoBloccata(c); }, "OCL  ",
       "DDT", BillChoice("36", "'OCL'")},
      {[](P& p, const S& c) { return p.SceltaDistintaManualeDocumentoBloccata(c); }, "DDT", "OCL",
       BillChoice("37", "'DDT'")},
      // Authorised is the True answer here; the code is the operation.
      {[](P& p, const S& c) {
         return !p.AutorizzaAttivitaSuDocumentoProduzione(25, 1, std::stoi(c));
       },
       "1", "2",
       "SELECT   FW31_FLGABILITATO FROM   VFW31_RVKPARAMETRI WITH (NOLOCK) WHERE       "
       "VFW31_RVKPARAMETRI.FW31_INDTIPO      = 38   AND VFW31_RVKPARAMETRI.FW31_ID_FW07      =   "
       "5   AND VFW31_RVKPARAMETRI.FW31_FLGABILITATO =  0   AND VFW31_RVKPARAMETRI.FW31_DITTARAGG "
       "   =   1   AND VFW31_RVKPARAMETRI.FW31_CODTIPO      =  '01' "},
  };
}

class BlockCheckTest : public ParserTest {};

TEST_F(BlockCheckTest, EveryCheckAnswersBothWaysSendsItsStatementAndShortCutsForZentAd) {
  AsUser("ROSSI");
  for (const BlockCase& c : BlockCases(parser)) {
    SCOPED_TRACE(c.blocked_code + (" " + c.statement));
    // RevokeDisabilitata does not switch the checks off.
    for (bool disabled : {false, true}) {
      parser.SetRevokeDisabilitata(disabled);
      EXPECT_TRUE(c.blocked(parser, c.blocked_code));
      EXPECT_EQ(LastStatement(), c.statement.empty() ? LastStatement() : c.statement);
      EXPECT_FALSE(*c.free_code != '\0' && c.blocked(parser, c.free_code));
    }
    // Both codes privileged, then each alone: only the compared one counts.
    for (const auto& [user, clifor] : std::vector<std::pair<S, S>>{
             {"ZentAd", "ZentAd"}, {"ZentAd", "ROSSI"}, {"ROSSI", "ZentAd"}}) {
      if (c.privileged == Privileged::kNone) break;
      const bool privileged = (c.privileged == Privileged::kUser ? user : clifor) == "ZentAd";
      auto other = Other("ROSSI");
      other->SetCodiceUtente(user);
      other->SetCodiceUtenteCLIFOR(clifor);
      log->statements.clear();
      const bool blocked = c.blocked(*other, c.blocked_code);
      EXPECT_EQ(Statements().empty(), privileged) << user << "/" << clifor;
      // Looked up as ROSSI when it queries, the code is blocked.
      EXPECT_TRUE(!(privileged || user == "ROSSI") || blocked == !privileged) << user << clifor;
      EXPECT_FALSE(privileged && other->Frame().UserResolved());
    }
  }
  EXPECT_TRUE(Boxes().empty()) << Boxes().front().text;
  // Revision states outside 1..3 are blocked for everyone, without a statement.
  auto zentad = Other("ZentAd");
  log->statements.clear();
  EXPECT_TRUE(zentad->StatoRevisioneDistintaBloccato(0));
  EXPECT_TRUE(zentad->StatoRevisioneCicloBloccato(4));
  EXPECT_TRUE(Statements().empty());
}

TEST_F(BlockCheckTest, OddAnswers) {
  AsUser("ROSSI");
  // A blank user code is filled from the customer/supplier code; a set one
  // is left alone (no harmonising).
  parser.SetCodiceUtente("");
  EXPECT_TRUE(parser.CliForBloccato_New("7", 0));
  EXPECT_EQ(parser.CodiceUtente() + std::to_string(parser.Frame().UserId()), "ROSSI5");
  auto bianchi = Other("BIANCHI");
  bianchi->SetCodiceUtenteCLIFOR("ROSSI");
  EXPECT_EQ(TF({bianchi->CliForBloccato_New("7", 0)}) + bianchi->CodiceUtente(), "FBIANCHI");
  // The whole-table checks answer False only when every row is revoked.
  AddParameterRows(", FW31_FLGABILITATO",
                   "(9001, 5, 12, 0, 'STP01', 0), (9002, 5, 12, 0, 'STP03', 0), "
                   "(9003, 5, 12, 0, 'STP04', 0), (9004, 5, 13, 0, 'DS_ACQUISTI', 0), "
                   "(9005, 5, 13, 0, 'DS_MAGAZZINO', 0), (9006, 5, 13, 1, 'MATR_FATT', 0), "
                   "(9007, 5, 13, 1, 'MATR_LETT', 0)");
  EXPECT_EQ(
      TF({parser.StampaGestionaleBloccata("STP02"), parser.DSExportDatiGestBloccata("DS_VENDITE"),
          parser.ConfigOfficeBloccata("MATR_ORD")}),
      "FFF");
  // Unknown and other companies' documents are blocked; on a server-side
  // cursor the warehouse check answers False, the row-found checks do not.
  EXPECT_EQ(TF({parser.DocumentoTestataBloccato("9999"), parser.DocumentoTestataBloccato("2001")}),
            "TT");
  db->SetCursorLocation(db::kUseServer);
  EXPECT_EQ(TF({parser.DepositoBloccato("A1"), parser.ProgettoBloccato("P1")}), "FT");
  EXPECT_TRUE(Boxes().empty());
  // Only the manual bill choice doubles quotes in codes.
  EXPECT_FALSE(parser.SceltaDistintaManualeDocumentoBloccata("O'K  "));
  EXPECT_EQ(LastStatement(), BillChoice("37", "'O''K'"));
  // Elsewhere the quote breaks the statement, which is reported.
  EXPECT_FALSE(parser.DepositoBloccato("A'1"));
  EXPECT_NE(LastStatement().find("FW31_CODTIPO = 'A'1'"), std::string::npos);
  EXPECT_EQ(BoxTags(), std::vector<std::string>{"DepositoBloccato"});
  // ZentAd carries an old exclusion of company 2.
  auto zentad = Other("ZentAd");
  EXPECT_EQ(TF({zentad->DittaBloccata(int32_t{2}), zentad->DittaBloccata(int32_t{1})}), "TF");
  EXPECT_EQ(LastStatement(),
            "SELECT COUNT(*) AS FLGRVK FROM VFW05_DITTAESCLUSI  WHERE FW05_DITTA_CG18 = 1 AND "
            "FW05_ID_FW07 = 1 AND FW05_FLGVISIBLE = 0");
}

TEST_F(BlockCheckTest, BlankCodesAnswerFalseWithoutAStatementOrAConnection) {
  AsUser("ROSSI");
  // No connection at all: a blank code must not even try to open one.
  parser.SetConnectionADO(nullptr);
  parser.SetConnectionStringADO("Provider=SQLite;Data Source=/nonexistent/dir/x.db");
  for (const Variant& b : {Variant(), Variant::Null(), Variant(""), Variant("   ")}) {
    EXPECT_EQ(TF({parser.DittaBloccata(b), parser.CliForBloccato(b), parser.ProgettoBloccato(b),
                  parser.NodoBloccato(b, "N2"), parser.NodoBloccato("P3", b),
                  parser.ModelloBloccoMerceBloccato(b), parser.StampaGestionaleBloccata(b),
                  parser.DSExportDatiGestBloccata(b), parser.ConfigOfficeBloccata(b)}),
              "FFFFFFFFF");
  }
  for (const char* b : {"", "  "}) {
    EXPECT_EQ(TF({parser.CliForBloccato_New(b, 0), parser.DocumentoTestataBloccato(b),
                  parser.DepositoBloccato(b), parser.SceltaDistintaRevisionataDocumentoBloccata(b),
                  parser.SceltaDistintaManualeDocumentoBloccata(b)}),
              "FFFFF");
  }
  EXPECT_EQ(parser.ConnectionADO(), nullptr);
  // The obsolete customer check only shows its notice.
  EXPECT_FALSE(parser.CliForBloccato(Variant("7")));
  ASSERT_EQ(Boxes().size(), 1U);
  EXPECT_EQ(Boxes()[0].title + "|" + Boxes()[0].text + "|" + std::to_string(Boxes()[0].style),
            "Sviluppo|Metodo 'CliForBloccato' obsoleto, utilizzare 'CliForBloccato_New'|" +
                std::to_string(msgstyle::kExclamation));
}

TEST_F(BlockCheckTest, GroupBasedUserHasAFunctionRevokedOnlyWhenEveryGroupRevokesIt) {
  // VERDI (groups AMM and MAG): 101 revoked by both, 102 by AMM only, 103
  // by MAG only (AMM's row enables it), 104 by none.
  AsUser("VERDI");
  EXPECT_EQ(TF({parser.FunzioneApplicativaRevocata(102), parser.FunzioneApplicativaRevocata(103),
                parser.FunzioneApplicativaRevocata(104), parser.FunzioneApplicativaRevocata(101)}),
            "FFFT");
  EXPECT_EQ(LastStatement(),
            "          SELECT  *     FROM    (                    SELECT  FW00_ID_FW07, "
            "ISNULL(FW3G_CODICE_FW3F, 101) AS FW3G_CODICE_FW3F, MAX(ISNULL(FW3G_FLGABILITATO, "
            "1)) AS FW3G_FLGABILITATO                  FROM    "
            "FW00_GRPUSRASSOC                              LEFT JOIN "
            "FW3G_RVKFUNZIONI                      ON FW00_ID_FW06 = FW3G_ID_FW06 AND "
            "FW3G_CODICE_FW3F = 101         WHERE   FW00_ID_FW07 = 7         GROUP BY "
            "FW00_ID_FW07, ISNULL(FW3G_CODICE_FW3F, 101)                  ) TT    WHERE   "
            "TT.FW3G_FLGABILITATO = 0  ");
  // A user that is not found is treated as group-based.
  AsUnknownUserWithId(5);
  EXPECT_FALSE(parser.FunzioneApplicativaRevocata(104));
  EXPECT_EQ(parser.Frame().FlgGrpRevoke(), 1);
  EXPECT_EQ(LastStatement().rfind("          SELECT  *    ", 0), 0U) << LastStatement();
}

TEST_F(BlockCheckTest, ActivityWithoutDocumentIndexOperationCodeOrConnectionIsNotAuthorised) {
  AsUser("ROSSI");
  // No index, index 2 (no "0x"), no code, a negative type or subtype.
  EXPECT_EQ(TF({parser.AutorizzaAttivitaSuDocumentoProduzione(24, 2, 2),
                parser.AutorizzaAttivitaSuDocumentoProduzione(14, 2, 1),
                parser.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 16),
                parser.AutorizzaAttivitaSuDocumentoProduzione(-1, 1, 1),
                parser.AutorizzaAttivitaSuDocumentoProduzione(25, -1, 1)}),
            "FFFFF");
  EXPECT_TRUE(Statements().empty());
  // A missing connection is reported under the check name.
  parser.SetConnectionADO(nullptr);
  EXPECT_EQ(TF({parser.ProgettoBloccato("P1"), parser.StatoRevisioneDistintaBloccato(2),
                parser.AutorizzaAttivitaSuDocumentoProduzione(25, 1, 1)}),
            "FFF");
  EXPECT_EQ(BoxTags(),
            (std::vector<std::string>{"ProgettoBloccato", "StatoRevisioneDistintaBloccato",
                                      "AutorizzaAttivitaSuDocumentoProduzione"}));
  EXPECT_EQ(Boxes()[0].text.rfind("91 - ", 0), 0U) << Boxes()[0].text;
  // A negative type is refused even for the privileged user.
  AsUser("ZentAd");
  EXPECT_EQ(TF({parser.AutorizzaAttivitaSuDocumentoProduzione(-1, 1, 1),
                parser.AutorizzaAttivitaSuDocumentoProduzione(24, 2, 2)}),
            "FT");
}

}  // namespace
}  // namespace zarvik
