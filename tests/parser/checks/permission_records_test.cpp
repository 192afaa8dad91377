// Rights records and the article-state list on the demo database: the
// answers for ROSSI, the defaults for users without rows and for the
// privileged user, and the statement texts.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "check_test_support.h"
#include "db/recordset.h"
#include "parser/checks/rights_records.h"

namespace zarvik {
namespace {

constexpr int16_t T = kVbTrue;
constexpr int16_t F = kVbFalse;

struct Four {
  int16_t first, can_delete, can_update, can_insert;
};

template <class Record>
Four Fields(const Record& r);
template <>
Four Fields(const tsRvkDocumenti& r) {
  return {r.rvkExists, r.CanDelete, r.CanUpdate, r.CanInsert};
}
template <>
Four Fields(const tsRvkConfig& r) {
  return {r.Abilitato, r.CanDelete, r.CanUpdate, r.CanInsert};
}
template <>
Four Fields(const tsRvkFamiglia& r) {
  return {r.rvkExists, r.CanDelete, r.CanUpdate, r.CanInsert};
}

void ExpectFour(const Four& actual, const Four& expected) {
  EXPECT_EQ(actual.first, expected.first);
  EXPECT_EQ(actual.can_delete, expected.can_delete);
  EXPECT_EQ(actual.can_update, expected.can_update);
  EXPECT_EQ(actual.can_insert, expected.can_insert);
}

class PermissionRecordTest : public testing::CheckTest {
 protected:
  tsRvkDocumenti Documents(const std::string& code, int16_t personalised) {
    std::string document = code;
    int16_t flag = personalised;
    tsRvkDocumenti record = parser.PermessiDocTipologie(document, flag);
    EXPECT_EQ(document, code);
    EXPECT_EQ(flag, personalised);
    return record;
  }
  // (MG6W_INDSTATO, ENABLED) of every row.
  static std::vector<std::pair<int32_t, int32_t>> States(db::Recordset& rows) {
    std::vector<std::pair<int32_t, int32_t>> states;
    for (; !rows.EOF(); rows.MoveNext()) {
      states.emplace_back(rows.Fields("MG6W_INDSTATO").ToLong(), rows.Fields("ENABLED").ToLong());
    }
    return states;
  }
};

TEST_F(PermissionRecordTest, MovementClassesRevokedForTheUser) {
  AsRossi();
  const tsRvkTipiMov movements = parser.InitRevokeTipiMov();
  EXPECT_EQ(movements.Cons, T);
  EXPECT_EQ(movements.DaCons, F);
  EXPECT_EQ(movements.Prev, F);
  EXPECT_EQ(movements.PrevSim, T);
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO, FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO "
            "= 1  AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0");

  // A code outside 0..3 changes nothing; an enabled row revokes nothing.
  Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, "
      "FW31_CODTIPO, FW31_FLGABILITATO) VALUES (9001, 5, 1, -1, '7', 0), (9002, 5, 1, -1, '2', "
      "1)");
  const tsRvkTipiMov again = parser.InitRevokeTipiMov();
  EXPECT_EQ(again.DaCons, F);
  EXPECT_EQ(again.Prev, F);
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(PermissionRecordTest, JournalTransfersRevokedForTheUser) {
  AsRossi();
  const tsRvkConsMov transfers = parser.InitRevokeTipoTrasPNota();
  EXPECT_EQ(transfers.DaCons_Cons, F);
  EXPECT_EQ(transfers.Prev_Cons, T);
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_CODTIPO, FW31_FLGABILITATO FROM VFW31_RVKPARAMETRI  WHERE FW31_INDTIPO "
            "= 11  AND FW31_ID_FW07 = 5  AND FW31_FLGABILITATO = 0");
}

TEST_F(PermissionRecordTest, ArticleFamiliesAllowOnlyOnFlagOne) {
  AsRossi();
  ExpectFour(Fields(parser.InitRevokeFamiglia("ELE")), {T, F, T, F});
  EXPECT_EQ(LastStatement(),
            "SELECT FW3H_FLGELIMINA, FW3H_FLGINSERIMENTO, FW3H_FLGMODIFICA FROM FW3H_RVKARTICOLI  "
            "WHERE FW3H_DITTA = 1 AND FW3H_CODMACRO = 'ELE' AND FW3H_TIPORAGG = 'FAM'  AND "
            "FW3H_ID_FW07 = 5 ");
  // MEC's update flag is 2.
  ExpectFour(Fields(parser.InitRevokeFamiglia("MEC")), {T, T, F, T});
  // No row: the defaults.
  ExpectFour(Fields(parser.InitRevokeFamiglia("IDR")), {F, T, T, T});
  // The rows are per company.
  parser.SetDittaCorrente(Variant(int32_t{2}));
  ExpectFour(Fields(parser.InitRevokeFamiglia("ELE")), {F, T, T, T});
}

TEST_F(PermissionRecordTest, DocumentTypesFollowTheRightsRule) {
  AsRossi();
  struct Case {
    const char* code;
    int16_t personalised;
    Four expected;
  };
  const std::vector<Case> cases = {
      {"NCV", 0, {T, F, F, F}},   // revoked
      {"OCL", 0, {T, T, F, F}},   // no update, so no insert despite its flag
      {"DDT", 0, {T, F, T, F}},   // no delete, no insert
      {"FTVP", 1, {T, F, F, F}},  // personalised type revoked under scope 1
      {"FTVP", 0, {F, T, T, T}},  // ... and nothing under scope 0
      {"FTV", 0, {F, T, T, T}},   // no row
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.code) + "/" + std::to_string(c.personalised));
    ExpectFour(Fields(Documents(c.code, c.personalised)), c.expected);
  }
  Documents("OCL", 0);
  EXPECT_EQ(LastStatement(),
            "SELECT FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI FROM "
            "VFW31_RVKPARAMETRI \r\n WHERE FW31_ID_FW07 = 5 \r\n AND FW31_INDTIPO = 7\r\n AND "
            "FW31_CODTIPO = 'OCL'\r\n AND FW31_DITTARAGG = 0");
}

TEST_F(PermissionRecordTest, GroupBasedUserGetsTheMostPermissiveFlagsOfHisGroups) {
  // NCV: AMM (1, 0, 1, 1) and MAG (1, 1, 0, 1) give (1, 1, 1, 1).
  AsUser("VERDI", "AMM");
  ExpectFour(Fields(Documents("NCV", 0)), {T, T, T, T});
}

TEST_F(PermissionRecordTest, BillOfMaterialsTypesWithTheNinetyNineRow) {
  AsRossi();
  struct Case {
    int16_t type;
    Four expected;
  };
  // ROSSI: '35' enabled, '99' revoked, '5' enabled without update.
  const std::vector<Case> cases = {
      {35, {F, F, F, F}},  // '99' wins over the type's own row
      {31, {F, F, F, F}},  // only '99': it stands for all of 30..39
      {30, {F, F, F, F}}, {39, {F, F, F, F}}, {5, {T, T, F, F}},  // own row only
      {7, {T, T, T, T}},                                          // no row and no '99' fallback
      {29, {T, T, T, T}}, {40, {T, T, T, T}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.type);
    ExpectFour(Fields(parser.PermessiTipologieDistintaBase(c.type)), c.expected);
  }
  parser.PermessiTipologieDistintaBase(35);
  EXPECT_EQ(
      LastStatement(),
      "SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI "
      "FROM VFW31_RVKPARAMETRI \r\n WHERE FW31_ID_FW07 = 5 \r\n AND FW31_INDTIPO = 19\r\n AND "
      "FW31_DITTARAGG = -1\r\n AND FW31_CODTIPO IN ('35', '99') ORDER BY FW31_CODTIPO DESC");
  parser.PermessiTipologieDistintaBase(5);
  EXPECT_EQ(
      LastStatement(),
      "SELECT TOP 1 FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI "
      "FROM VFW31_RVKPARAMETRI \r\n WHERE FW31_ID_FW07 = 5 \r\n AND FW31_INDTIPO = 19\r\n AND "
      "FW31_DITTARAGG = -1\r\n AND FW31_CODTIPO = '5'\r\n ORDER BY FW31_CODTIPO DESC");
}

TEST_F(PermissionRecordTest, WorkCycleTypesWithTheNinetyNineRow) {
  AsRossi();
  // ROSSI: '31' revoked, '35' enabled without update.
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(31)), {F, F, F, F});
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(35)), {T, T, F, F});
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(32)), {T, T, T, T});
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1  FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
            "FW31_FLGINSERISCI FROM  VFW31_RVKPARAMETRI WHERE  FW31_ID_FW07   = 5 AND  "
            "FW31_INDTIPO   = 33 AND  FW31_DITTARAGG = -1 AND FW31_CODTIPO IN ('32', '99') ORDER "
            "BY FW31_CODTIPO DESC");
  // A '99' row of kind 33 (enabled, delete refused) wins for 30..39 only.
  Run("INSERT INTO FW31_RVKPARAMETRI (FW31_CODICE, FW31_ID_FW07, FW31_INDTIPO, FW31_DITTARAGG, "
      "FW31_CODTIPO, FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, FW31_FLGINSERISCI) "
      "VALUES (9001, 5, 33, -1, '99', 1, 1, 0, 1), (9002, 5, 33, -1, '4', 1, 1, 1, 0)");
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(35)), {T, F, T, T});
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(32)), {T, F, T, T});
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(4)), {T, T, T, F});
  EXPECT_EQ(LastStatement(),
            "SELECT TOP 1  FW31_FLGABILITATO, FW31_FLGMODIFICA, FW31_FLGELIMINA, "
            "FW31_FLGINSERISCI FROM  VFW31_RVKPARAMETRI WHERE  FW31_ID_FW07   = 5 AND  "
            "FW31_INDTIPO   = 33 AND  FW31_DITTARAGG = -1 AND FW31_CODTIPO = '4'\r\n ORDER BY "
            "FW31_CODTIPO DESC");
}

TEST_F(PermissionRecordTest, UserWithoutRowsGetsTheDefaults) {
  AsUser("GIALLI", "VEN");
  const tsRvkTipiMov movements = parser.InitRevokeTipiMov();
  EXPECT_EQ(movements.Cons | movements.DaCons | movements.Prev | movements.PrevSim, F);
  const tsRvkConsMov transfers = parser.InitRevokeTipoTrasPNota();
  EXPECT_EQ(transfers.DaCons_Cons | transfers.Prev_Cons, F);
  ExpectFour(Fields(parser.InitRevokeFamiglia("ELE")), {F, T, T, T});
  ExpectFour(Fields(Documents("NCV", 0)), {F, T, T, T});
  ExpectFour(Fields(parser.PermessiTipologieDistintaBase(35)), {T, T, T, T});
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(31)), {T, T, T, T});
  EXPECT_TRUE(Boxes().empty());
}

TEST_F(PermissionRecordTest, PrivilegedUserGetsTheDefaultsWithoutAStatement) {
  AsZentAd();
  const tsRvkTipiMov movements = parser.InitRevokeTipiMov();
  EXPECT_EQ(movements.Cons | movements.DaCons | movements.Prev | movements.PrevSim, F);
  const tsRvkConsMov transfers = parser.InitRevokeTipoTrasPNota();
  EXPECT_EQ(transfers.DaCons_Cons | transfers.Prev_Cons, F);
  ExpectFour(Fields(parser.InitRevokeFamiglia("ELE")), {F, T, T, T});
  // Reported as having a row, on purpose.
  ExpectFour(Fields(Documents("NCV", 0)), {T, T, T, T});
  ExpectFour(Fields(parser.PermessiTipologieDistintaBase(35)), {T, T, T, T});
  ExpectFour(Fields(parser.PermessiTipologieCicliLavorazione(31)), {T, T, T, T});
  EXPECT_TRUE(Statements().empty());
}

TEST_F(PermissionRecordTest, PrivilegedFieldDiffersBetweenTheRecords) {
  // The document and type records compare CodiceUtenteCLIFOR; the movement
  // and family records CodiceUtente.
  parser.SetCodiceGruppo("VEN");
  parser.SetCodiceUtente("ROSSI");
  parser.SetCodiceUtenteCLIFOR("ZentAd");
  ExpectFour(Fields(Documents("NCV", 0)), {T, T, T, T});
  ExpectFour(Fields(parser.PermessiTipologieDistintaBase(35)), {T, T, T, T});
  EXPECT_TRUE(Statements().empty());
  EXPECT_EQ(parser.InitRevokeTipiMov().Cons, T);
  ExpectFour(Fields(parser.InitRevokeFamiglia("ELE")), {T, F, T, F});
}

TEST_F(PermissionRecordTest, RevokeDisabilitataIsNotConsulted) {
  AsRossi();
  parser.SetRevokeDisabilitata(true);
  EXPECT_EQ(parser.InitRevokeTipiMov().Cons, T);
  ExpectFour(Fields(Documents("NCV", 0)), {T, F, F, F});
}

TEST_F(PermissionRecordTest, QuoteInACodeIsReportedAndTheDefaultsStand) {
  AsRossi();
  ExpectFour(Fields(parser.InitRevokeFamiglia("E'L")), {F, T, T, T});
  ExpectFour(Fields(Documents("N'CV", 0)), {F, T, T, T});
  ASSERT_EQ(Boxes().size(), 2u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("InitRevokeFamiglia"))) << Boxes()[0].text;
  EXPECT_TRUE(EndsWith(Boxes()[1].text, TagLine("PermessiDocTipologie"))) << Boxes()[1].text;
}

TEST_F(PermissionRecordTest, ArticleStatesWithTheirEnabledFlag) {
  AsRossi();
  const auto states = parser.StatiArticoloMaga();
  ASSERT_NE(states, nullptr);
  EXPECT_EQ(States(*states),
            (std::vector<std::pair<int32_t, int32_t>>{{0, 1}, {1, 1}, {2, 1}, {3, 0}, {4, 1}}));
  EXPECT_EQ(LastStatement(),
            std::string(" SELECT MG6W_INDSTATO, MG6W_DESCR,  ") +
                " (CASE WHEN FW31_FLGABILITATO IS NULL THEN 1 ELSE FW31_FLGABILITATO END) AS "
                "ENABLED " +
                " FROM MG6W_STATIART " +
                " LEFT OUTER JOIN VFW31_RVKPARAMETRI ON FW31_CODTIPO = MG6W_INDSTATO " +
                "                         AND FW31_ID_FW07 = " + "5" + " " +
                "                     AND FW31_INDTIPO = 14 " + " ORDER BY MG6W_INDSTATO ");
  // The caller owns the recordset: it stays readable after the object goes.
  EXPECT_EQ(states->State(), 1);
}

TEST_F(PermissionRecordTest, ArticleStatesForThePrivilegedUserAreAllEnabled) {
  AsZentAd();
  const auto states = parser.StatiArticoloMaga();
  ASSERT_NE(states, nullptr);
  EXPECT_EQ(States(*states),
            (std::vector<std::pair<int32_t, int32_t>>{{0, 1}, {1, 1}, {2, 1}, {3, 1}, {4, 1}}));
  EXPECT_EQ(Statements(),
            std::vector<std::string>{" SELECT MG6W_INDSTATO, MG6W_DESCR,   1 AS ENABLED  FROM "
                                     "MG6W_STATIART  ORDER BY MG6W_INDSTATO "});
}

TEST_F(PermissionRecordTest, ArticleStatesWithoutAConnectionAreNothing) {
  AsRossi();
  parser.SetConnectionADO(nullptr);
  EXPECT_EQ(parser.StatiArticoloMaga(), nullptr);
  ASSERT_EQ(Boxes().size(), 1u);
  EXPECT_TRUE(EndsWith(Boxes()[0].text, TagLine("StatiArticoloMaga")));
}

}  // namespace
}  // namespace zarvik
