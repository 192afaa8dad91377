#include "frame/sql_text.h"

#include <gtest/gtest.h>

#include <memory>

#include "frame/host_object.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

TEST(SqlText, QuotedKeepsQuotesAsTheyAre) {
  EXPECT_EQ(sql::Quoted("ROSSI"), "'ROSSI'");
  EXPECT_EQ(sql::Quoted("O'Hara"), "'O'Hara'");
  EXPECT_EQ(sql::Quoted(""), "''");
}

TEST(SqlText, QuotedEscapedDoublesEveryQuote) {
  EXPECT_EQ(sql::QuotedEscaped("O'Hara"), "'O''Hara'");
  EXPECT_EQ(sql::QuotedEscaped("''"), "''''''");
  EXPECT_EQ(sql::QuotedEscaped("plain"), "'plain'");
}

TEST(SqlText, UnquotedIsTheTextForm) {
  EXPECT_EQ(sql::Unquoted(Variant(int32_t{1})), "1");
  EXPECT_EQ(sql::Unquoted(Variant(int16_t{-3})), "-3");
  EXPECT_EQ(sql::Unquoted(Variant("0001")), "0001");
  EXPECT_EQ(sql::Unquoted(Variant(2.5)), "2.5");
  EXPECT_EQ(sql::Unquoted(Variant::Boolean(true)), "True");
  EXPECT_EQ(sql::Unquoted(Variant()), "");
  EXPECT_EQ(sql::Unquoted(Variant::Null()), "");
  EXPECT_THROW(sql::Unquoted(Variant(ObjectRef(std::make_shared<HostObject>()))), VbError);
}

TEST(SqlText, NumberAndColumn) {
  EXPECT_EQ(sql::Number(0), "0");
  EXPECT_EQ(sql::Number(-2147483647 - 1), "-2147483648");
  EXPECT_EQ(sql::Number(40000), "40000");
  EXPECT_EQ(sql::Column("A.CG44_CLIFOR "), "A.CG44_CLIFOR ");
}

}  // namespace
}  // namespace zarvik
