// The rights rule as a table, and the production document and operation
// codes of the activity check.
#include "parser/checks/rights_rule.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parser/checks/production_activity.h"
#include "parser/checks/rights_records.h"
#include "platform/vb_error.h"

namespace zarvik::checks {
namespace {

struct RuleCase {
  const char* what;
  RightsRow row;
  // Abilitato, CanDelete, CanUpdate, CanInsert.
  int16_t enabled, can_delete, can_update, can_insert;
};

const Variant kNull = Variant::Null();

TEST(RightsRuleTest, RowFlagsGiveTheRights) {
  const std::vector<RuleCase> cases = {
      {"all allowed", {1, 1, 1, 1}, kVbTrue, kVbTrue, kVbTrue, kVbTrue},
      {"revoked row denies everything", {0, 1, 1, 1}, kVbFalse, kVbFalse, kVbFalse, kVbFalse},
      {"modify 0 with insert 1: no update, no insert",
       {1, 0, 1, 1},
       kVbTrue,
       kVbTrue,
       kVbFalse,
       kVbFalse},
      {"modify 0 does not read the insert flag",
       {1, 0, 1, kNull},
       kVbTrue,
       kVbTrue,
       kVbFalse,
       kVbFalse},
      {"insert 0 only", {1, 1, 1, 0}, kVbTrue, kVbTrue, kVbTrue, kVbFalse},
      {"delete 0 only", {1, 1, 0, 1}, kVbTrue, kVbFalse, kVbTrue, kVbTrue},
      {"delete 0 with modify 0", {1, 0, 0, 1}, kVbTrue, kVbFalse, kVbFalse, kVbFalse},
      {"any non-zero flag allows", {2, -1, 7, 3}, kVbTrue, kVbTrue, kVbTrue, kVbTrue},
      {"flags as text", {"1", "0", "1", "1"}, kVbTrue, kVbTrue, kVbFalse, kVbFalse},
      {"Null enabled flag counts as enabled", {kNull, 1, 1, 1}, kVbTrue, kVbTrue, kVbTrue, kVbTrue},
      {"Null modify flag does not stop update",
       {1, kNull, 1, 1},
       kVbTrue,
       kVbTrue,
       kVbTrue,
       kVbTrue},
  };
  for (const RuleCase& c : cases) {
    SCOPED_TRACE(c.what);
    tsRvkConfig config;
    ApplyRightsRule(c.row, config);
    EXPECT_EQ(config.Abilitato, c.enabled);
    EXPECT_EQ(config.CanDelete, c.can_delete);
    EXPECT_EQ(config.CanUpdate, c.can_update);
    EXPECT_EQ(config.CanInsert, c.can_insert);

    // The document record gets the same rights; its first field says that a
    // row exists, revoked or not.
    tsRvkDocumenti documents;
    ApplyRightsRule(c.row, documents);
    EXPECT_EQ(documents.rvkExists, kVbTrue);
    EXPECT_EQ(documents.CanDelete, c.can_delete);
    EXPECT_EQ(documents.CanUpdate, c.can_update);
    EXPECT_EQ(documents.CanInsert, c.can_insert);
  }
}

TEST(RightsRuleTest, FlagThatCannotBeAssignedLeavesTheRecordHalfWay) {
  // Null insert flag under update allowed: VB cannot assign Null to a
  // Boolean; update is already set, delete is not touched yet.
  tsRvkConfig record;
  record.CanDelete = kVbFalse;
  try {
    ApplyRightsRule({1, 1, 1, kNull}, record);
    FAIL() << "no error raised";
  } catch (const VbError& error) {
    EXPECT_EQ(error.Number(), vberr::kInvalidUseOfNull);
  }
  EXPECT_EQ(record.Abilitato, kVbTrue);
  EXPECT_EQ(record.CanUpdate, kVbTrue);
  EXPECT_EQ(record.CanDelete, kVbFalse);

  tsRvkDocumenti documents;
  EXPECT_THROW(ApplyRightsRule({"abc", 1, 1, 1}, documents), VbError);
}

TEST(RightsRuleTest, DefaultsOfTheRecordsPermitEverything) {
  const tsRvkTipiMov movements;
  EXPECT_EQ(movements.Cons | movements.DaCons | movements.Prev | movements.PrevSim, kVbFalse);
  const tsRvkConsMov transfers;
  EXPECT_EQ(transfers.DaCons_Cons | transfers.Prev_Cons, kVbFalse);
  const tsRvkFamiglia family;
  EXPECT_EQ(family.rvkExists, kVbFalse);
  EXPECT_EQ(family.CanDelete & family.CanUpdate & family.CanInsert, kVbTrue);
  const tsRvkConfig config;
  EXPECT_EQ(config.Abilitato & config.CanDelete & config.CanUpdate & config.CanInsert, kVbTrue);
  // Sixteen bits per field, in declared order, nothing between them.
  static_assert(sizeof(tsRvkTipiMov) == 8 && sizeof(tsRvkConsMov) == 4);
  static_assert(sizeof(tsRvkDocumenti) == 8 && sizeof(tsRvkConfig) == 8);
}

TEST(ProductionActivityTest, DocumentIndexOfEachTypeAndSubtype) {
  struct Case {
    int16_t tipo, sottotipo;
    int index;  // -1: none
  };
  const std::vector<Case> cases = {
      {1, 1, 15},  {5, 1, 16},  {10, 3, 3},  {14, 2, 2},  {24, 1, 0},  {24, 3, 10},
      {24, 4, 9},  {24, 20, 0}, {24, 23, 4}, {25, 1, 1},  {25, 5, 7},  {25, 7, 6},
      {25, 13, 5}, {25, 14, 8}, {26, 2, 11}, {26, 5, 12}, {26, 6, 13}, {26, 7, 14},
      {1, 2, -1},  {24, 2, -1}, {25, 2, -1}, {26, 1, -1}, {0, 0, -1},  {2, 1, -1},
  };
  for (const Case& c : cases) {
    const auto index = ProductionDocumentIndex(c.tipo, c.sottotipo);
    EXPECT_EQ(index ? *index : -1, c.index) << c.tipo << "/" << c.sottotipo;
  }
}

TEST(ProductionActivityTest, OperationCodesWithTheFirstDependingOnTheDocument) {
  for (int16_t index : {0, 1, 5, 6, 7, 11, 12, 15, 16}) {
    EXPECT_EQ(ProductionOperationCode(1, index), "01") << index;
  }
  for (int16_t index : {3, 4, 9, 10, 13, 14}) {
    EXPECT_EQ(ProductionOperationCode(1, index), "02") << index;
  }
  for (int16_t index : {2, 8, -1}) EXPECT_EQ(ProductionOperationCode(1, index), "") << index;

  const std::vector<std::pair<int16_t, const char*>> codes = {
      {2, "03"},  {3, "04"},  {4, "05"},  {5, "07"},  {6, "06"},  {7, "08"},
      {8, "09"},  {9, "10"},  {10, "11"}, {11, "12"}, {12, "13"}, {13, "14"},
      {14, "15"}, {15, "16"}, {0, ""},    {16, ""},   {-1, ""},
  };
  for (const auto& [operation, code] : codes) {
    // The document does not matter for these.
    EXPECT_EQ(ProductionOperationCode(operation, 2), code) << operation;
    EXPECT_EQ(ProductionOperationCode(operation, 3), code) << operation;
  }
}

}  // namespace
}  // namespace zarvik::checks
