// The rights rule, and the production document and operation codes.
#include "parser/checks/rights_rule.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parser/checks/production_activity.h"
#include "parser/checks/rights_records.h"
#include "parser/parser_test_support.h"
#include "platform/vb_error.h"

namespace zarvik::checks {
namespace {

using zarvik::testing::Flags;

TEST(RightsRuleTest, RowFlagsGiveTheRights) {
  const Variant null = Variant::Null();
  const struct {
    const char* what;
    RightsRow row;         // enabled, modify, delete, insert
    const char* expected;  // Abilitato, CanDelete, CanUpdate, CanInsert
  } cases[] = {
      {"all allowed", {1, 1, 1, 1}, "TTTT"},
      {"revoked row denies everything", {0, 1, 1, 1}, "FFFF"},
      {"modify 0 with insert 1: no update, no insert", {1, 0, 1, 1}, "TTFF"},
      {"modify 0 does not read the insert flag", {1, 0, 1, null}, "TTFF"},
      {"insert 0 only", {1, 1, 1, 0}, "TTTF"},
      {"delete 0 only", {1, 1, 0, 1}, "TFTT"},
      {"delete 0 with modify 0", {1, 0, 0, 1}, "TFFF"},
      {"any non-zero flag allows", {2, -1, 7, 3}, "TTTT"},
      {"flags as text", {"1", "0", "1", "1"}, "TTFF"},
      {"Null enabled flag counts as enabled", {null, 1, 1, 1}, "TTTT"},
      {"Null modify flag does not stop update", {1, null, 1, 1}, "TTTT"},
  };
  for (const auto& c : cases) {
    tsRvkConfig config;
    ApplyRightsRule(c.row, config);
    EXPECT_EQ(Flags(config), c.expected) << c.what;
    // The document record: the same rights, and a row exists, revoked or not.
    tsRvkDocumenti documents;
    ApplyRightsRule(c.row, documents);
    EXPECT_EQ(Flags(documents), "T" + std::string(c.expected).substr(1)) << c.what;
  }
  // A Null insert flag cannot be assigned: update is set, delete untouched.
  tsRvkConfig record;
  record.CanDelete = kVbFalse;
  int32_t error = 0;
  try {
    ApplyRightsRule({1, 1, 1, Variant::Null()}, record);
  } catch (const VbError& e) {
    error = e.Number();
  }
  EXPECT_EQ(std::to_string(error) + "|" + Flags(record),
            std::to_string(vberr::kInvalidUseOfNull) + "|TFTT");
  tsRvkDocumenti documents;
  EXPECT_THROW(ApplyRightsRule({"abc", 1, 1, 1}, documents), VbError);
  // Sixteen bits per field, in declared order, nothing between them.
  static_assert(sizeof(tsRvkTipiMov) == 8 && sizeof(tsRvkConsMov) == 4);
  static_assert(sizeof(tsRvkDocumenti) == 8 && sizeof(tsRvkConfig) == 8);
}

TEST(ProductionActivityTest, DocumentIndexOfEachTypeAndSubtype) {
  const struct {
    int16_t tipo, sottotipo;
    int index;  // -1: none
  } cases[] = {
      {1, 1, 15},  {5, 1, 16},  {10, 3, 3},  {14, 2, 2},  {24, 1, 0},  {24, 3, 10},
      {24, 4, 9},  {24, 20, 0}, {24, 23, 4}, {25, 1, 1},  {25, 5, 7},  {25, 7, 6},
      {25, 13, 5}, {25, 14, 8}, {26, 2, 11}, {26, 5, 12}, {26, 6, 13}, {26, 7, 14},
      {1, 2, -1},  {24, 2, -1}, {25, 2, -1}, {26, 1, -1}, {0, 0, -1},  {2, 1, -1},
  };
  for (const auto& c : cases) {
    const auto index = ProductionDocumentIndex(c.tipo, c.sottotipo);
    EXPECT_EQ(index ? *index : -1, c.index) << c.tipo << "/" << c.sottotipo;
  }
  // Operation 1 on document indexes -1..16 depends on the document.
  std::string first;
  for (int16_t index = -1; index <= 16; ++index) first += ProductionOperationCode(1, index) + " ";
  EXPECT_EQ(first, " 01 01  02 02 01 01 01  02 02 01 01 02 02 01 01 ");
  // Operations -1, 0, 2..16 on two documents: 5 and 6 swap their codes (deliberate).
  for (int16_t index : {2, 3}) {
    std::string codes;
    for (int16_t op = -1; op <= 16; ++op)
      codes += op == 1 ? "" : ProductionOperationCode(op, index) + " ";
    EXPECT_EQ(codes, "  03 04 05 07 06 08 09 10 11 12 13 14 15 16  ") << index;
  }
}

}  // namespace
}  // namespace zarvik::checks
