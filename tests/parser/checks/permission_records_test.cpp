// Rights records and the article-state lists on the demo database.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../parser_test_support.h"
#include "db/recordset.h"
#include "parser/checks/rights_records.h"

namespace zarvik {
namespace {

using testing::Flags;

// PermessiDocTipologie, which must leave its by-reference arguments alone.
std::string Documents(CLSFW_PARSER& p, const std::string& code, int16_t personalised) {
  std::string document = code;
  int16_t flag = personalised;
  const std::string flags = Flags(p.PermessiDocTipologie(document, flag));
  EXPECT_EQ(document + std::to_string(flag), code + std::to_string(personalised));
  return flags;
}

using Record = std::function<std::string(CLSFW_PARSER&)>;
const std::vector<std::pair<const char*, Record>> kRecords = {
    {"InitRevokeTipiMov", [](CLSFW_PARSER& p) { return Flags(p.InitRevokeTipiMov()); }},
    {"InitRevokeTipoTrasPNota", [](CLSFW_PARSER& p) { return Flags(p.InitRevokeTipoTrasPNota()); }},
    {"InitRevokeFamiglia ELE", [](CLSFW_PARSER& p) { return Flags(p.InitRevokeFamiglia("ELE")); }},
    {"PermessiDocTipologie NCV", [](CLSFW_PARSER& p) { return Documents(p, "NCV", 0); }},
    {"PermessiTipologieDistintaBase 35",
     [](CLSFW_PARSER& p) { return Flags(p.PermessiTipologieDistintaBase(35)); }},
    {"PermessiTipologieCicliLavorazione 31",
     [](CLSFW_PARSER& p) { return Flags(p.PermessiTipologieCicliLavorazione(31)); }},
};

class PermissionRecordTest : public testing::ParserTest {};

TEST_F(PermissionRecordTest, EachRecordForRossiForAUserWithoutRowsAndForThePrivilegedUser) {
  const struct {
    const char *user, *clifor;          // CodiceUtente, CodiceUtenteCLIFOR
    bool disabled;                      // RevokeDisabilitata is not consulted
    std::vector<std::string> expected;  // in the order of kRecords
  } cases[] = {
      {"ROSSI", "ROSSI", true, {"TFFT", "FT", "TFTF", "TFFF", "FFFF", "FFFF"}},
      {"GIALLI", "GIALLI", false, {"FFFF", "FF", "FTTT", "FTTT", "TTTT", "TTTT"}},
      // The privileged user's document record reports a row, on purpose.
      {"ZentAd", "ZentAd", false, {"FFFF", "FF", "FTTT", "TTTT", "TTTT", "TTTT"}},
      // Documents and types compare CodiceUtenteCLIFOR, the others CodiceUtente.
      {"ROSSI", "ZentAd", false, {"TFFT", "FT", "TFTF", "TTTT", "TTTT", "TTTT"}},
  };
  for (const auto& c : cases) {
    auto other = Other(c.user);
    other->SetCodiceUtenteCLIFOR(c.clifor);
    other->SetRevokeDisabilitata(c.disabled);
    for (size_t i = 0; i < kRecords.size(); ++i) {
      log->statements.clear();
      EXPECT_EQ(kRecords[i].second(*other), c.expected[i])
          << c.user << "/" << c.clifor << " " << kRecords[i].first;
      // The privileged short cut sends nothing.
      if (std::string(i < 3 ? c.user : c.clifor) == "ZentAd") {
        EXPECT_TRUE(Statements().empty()) << kRecords[i].first;
      }
    }
  }
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(PermissionRecordTest, MovementClassesJournalTransfersAndFamilies) {
  AsUser("ROSSI");
  parser.InitRevokeTipiMov();
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO, FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO "
            "= 1  AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0");
  parser.InitRevokeTipoTrasPNota();
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO, FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO "
            "= 11  AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0");
  // A code outside 0..3 changes nothing; an enabled row revokes nothing.
  AddParameterRows(", FW31_FLGABILITATO", "(9001, 5, 1, -1, '7', 0), (9002, 5, 1, -1, '2', 1)");
  EXPECT_EQ(Flags(parser.InitRevokeTipiMov()), "TFFT");
  // Article families allow only on flag 1.
  EXPECT_EQ(Flags(parser.InitRevokeFamiglia("ELE")), "TFTF");
  EXPECT_EQ(LastStatement(),
            "SELECT FW3H_FLGELIMINA, FW3H_FLGINSERIMENTO, FW3H_FLGMODIFICA FROM FW3H_RVKARTICOLI  "
            "WHERE FW3H_DITTA = 1 AND FW3H_CODMACRO = 'ELE' AND FW3H_TIPORAGG = 'FAM'  AND "
            "FW3H_ID_FW07 = 5 ");
  EXPECT_EQ(Flags(parser.InitRevokeFamiglia("MEC")), "TTFT");  // update flag 2
  EXPECT_EQ(Flags(parser.InitRevokeFamiglia("IDR")), "FTTT");  // no row
  // The rows are per company.
  parser.SetDittaCorrente(Variant(int32_t{2}));
  EXPECT_EQ(Flags(parser.InitRevokeFamiglia("ELE")), "FTTT");
}

TEST_F(PermissionRecordTest, DocumentTypesFollowTheRightsRule) {
  AsUser("ROSSI");
  const struct {
    const char* code;
    int16_t personalised;
    const char* expected;
  } cases[] = {
      {"NCV", 0, "TFFF"},   // revoked
      {"OCL", 0, "TTFF"},   // no update, so no insert despite its flag
      {"DDT", 0, "TFTF"},   // no delete, no insert
      {"FTVP", 1, "TFFF"},  // personalised type revoked under scope 1
      {"FTVP", 0, "FTTT"},  // ... and nothing under scope 0
      {"FTV", 0, "FTTT"},   // no row
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Documents(parser, c.code, c.personalised), c.expected) << c.code << c.personalised;
  }
  Documents(parser, "OCL", 0);
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI FROM "
            "VFW31_RVKPARAMETRI \r\n WHERE FW31_ID_FW07 = 5 \r\n AND FW31_INDTIPO = 7\r\n AND "
            "FW31_CODTIPO = 'OCL'\r\n AND FW31_DITTARAGG = 0");
  // VERDI's groups AMM (1, 0, 1, 1) and MAG (1, 1, 0, 1): the most permissive.
  EXPECT_EQ(Documents(*Other("VERDI"), "NCV", 0), "TTTT");
}

TEST_F(PermissionRecordTest, BillOfMaterialsAndWorkCycleTypesWithTheNinetyNineRow) {
  AsUser("ROSSI");
  // ROSSI: '35' on, '99' revoked, '5' without update; '99' wins for 30..39 only.
  std::string flags;
  for (int16_t type : {35, 31, 30, 39, 5, 7, 29, 40}) {
    flags += Flags(parser.PermessiTipologieDistintaBase(type)) + " ";
  }
  EXPECT_EQ(flags, "FFFF FFFF FFFF FFFF TTFF TTTT TTTT TTTT ");
  const std::string head =
      "SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI FROM "
      "VFW31_RVKPARAMETRI \r\n WHERE FW31_ID_FW07 = 5 \r\n AND FW31_INDTIPO = 19\r\n AND "
      "FW31_DITTARAGG = -1\r\n AND FW31_CODTIPO ";
  parser.PermessiTipologieDistintaBase(35);
  EXPECT_EQ(LastStatement(), head + "IN ('35', '99') ORDER BY FW31_CODTIPO DESC");
  parser.PermessiTipologieDistintaBase(5);
  EXPECT_EQ(LastStatement(), head + "= '5'\r\n ORDER BY FW31_CODTIPO DESC");
  // Work-cycle types: ROSSI's '31' revoked, '35' enabled without update.
  const std::string cycle =
      "SELECT TOP 1  FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI FROM "
      " VFW31_RVKPARAMETRI WHERE  FW31_ID_FW07   = 5 AND  FW31_INDTIPO   = 33 AND  FW31_DITTARAGG "
      "= -1 AND FW31_CODTIPO ";
  EXPECT_EQ(Flags(parser.PermessiTipologieCicliLavorazione(31)), "FFFF");
  EXPECT_EQ(Flags(parser.PermessiTipologieCicliLavorazione(35)), "TTFF");
  EXPECT_EQ(Flags(parser.PermessiTipologieCicliLavorazione(32)), "TTTT");
  EXPECT_EQ(LastStatement(), cycle + "IN ('32', '99') ORDER BY FW31_CODTIPO DESC");
  // A '99' row of kind 33 (enabled, delete refused) wins for 30..39 only.
  AddParameterRows(", FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI",
                   "(9001, 5, 33, -1, '99', 1, 1, 0, 1), (9002, 5, 33, -1, '4', 1, 1, 1, 0)");
  EXPECT_EQ(Flags(parser.PermessiTipologieCicliLavorazione(35)), "TFTT");
  EXPECT_EQ(Flags(parser.PermessiTipologieCicliLavorazione(32)), "TFTT");
  EXPECT_EQ(Flags(parser.PermessiTipologieCicliLavorazione(4)), "TTTF");
  EXPECT_EQ(LastStatement(), cycle + "= '4'\r\n ORDER BY FW31_CODTIPO DESC");
  // A quote in a code is reported and the defaults stand.
  EXPECT_EQ(Flags(parser.InitRevokeFamiglia("E'L")), "FTTT");
  EXPECT_EQ(Documents(parser, "N'CV", 0), "FTTT");
  EXPECT_EQ(BoxTags(), (std::vector<std::string>{"InitRevokeFamiglia", "PermessiDocTipologie"}));
}

// (MG6W_INDSTATO, ENABLED) of every row.
std::string States(db::Recordset& rows) {
  std::string states;
  for (; !rows.EOF(); rows.MoveNext()) {
    states += rows.Fields("MG6W_INDSTATO").ConcatText() + rows.Fields("ENABLED").ConcatText() + " ";
  }
  return states;
}

TEST_F(PermissionRecordTest, ArticleStatesWithTheirEnabledFlag) {
  AsUser("ROSSI");
  const auto states = parser.StatiArticoloMaga();
  ASSERT_NE(states, nullptr);
  EXPECT_EQ(States(*states), "01 11 21 30 41 ");
  EXPECT_EQ(LastStatement(),
            " SELECT MG6W_INDSTATO, MG6W_DESCR,   (CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 ELSE "
            "FW31_FLGABILITATO END) AS ENABLED  FROM MG6W_STATIART  LEFT OUTER JOIN "
            "VFW31_RVKPARAMETRI ON FW31_CODTIPO = MG6W_INDSTATO                          AND "
            "FW31_ID_FW07 = 5                      AND FW31_INDTIPO = 14  ORDER BY MG6W_INDSTATO ");
  // The caller owns the recordset: it stays open after the object goes.
  EXPECT_EQ(states->State(), 1);
  // The enabled ones as a two-row array of code and description.
  const Variant result = parser.StatiArticoloMagaArray();
  ASSERT_EQ(result.Type(), VarType::kArray);
  const auto array = result.ToArray();
  ASSERT_EQ(std::to_string(array->LBound(1)) + ".." + std::to_string(array->UBound(1)) + " " +
                std::to_string(array->LBound(2)) + ".." + std::to_string(array->UBound(2)),
            "0..1 0..3");
  std::string enabled;
  for (int32_t i = 0; i < 4; ++i) {
    enabled += array->At(0, i).ConcatText() + "=" + array->At(1, i).ToString() + ";";
  }
  EXPECT_EQ(enabled, "0=Attivo;1=In esaurimento;2=Bloccato acquisti;4=Nuovo;");
  // No enabled state, or a server-side cursor (RecordCount -1): Empty.
  db->SetCursorLocation(db::kUseServer);
  EXPECT_TRUE(Other("GIALLI")->StatiArticoloMagaArray().IsEmpty());
  db->SetCursorLocation(db::kUseClient);
  AddParameterRows(", FW31_FLGABILITATO",
                   "(9001, 5, 14, -1, '0', 0), (9002, 5, 14, -1, '1', 0), "
                   "(9003, 5, 14, -1, '2', 0), (9004, 5, 14, -1, '4', 0)");
  EXPECT_TRUE(parser.StatiArticoloMagaArray().IsEmpty());
  // The privileged user has them all enabled.
  AsUser("ZentAd");
  log->statements.clear();
  EXPECT_EQ(States(*parser.StatiArticoloMaga()), "01 11 21 31 41 ");
  EXPECT_EQ(Statements(), std::vector<std::string>{" SELECT MG6W_INDSTATO, MG6W_DESCR,   1 AS "
                                                   "ENABLED  FROM MG6W_STATIART  ORDER BY "
                                                   "MG6W_INDSTATO "});
  EXPECT_TRUE(Boxes().empty());
  // Without a connection there is nothing.
  parser.SetConnectionADO(nullptr);
  EXPECT_EQ(parser.StatiArticoloMaga(), nullptr);
  EXPECT_TRUE(parser.StatiArticoloMagaArray().IsEmpty());
  EXPECT_EQ(BoxTags(), (std::vector<std::string>{"StatiArticoloMaga", "StatiArticoloMaga",
                                                 "StatiArticoloMagaArray"}));
}

}  // namespace
}  // namespace zarvik
