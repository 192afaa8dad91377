// Quoting of values in statement texts: the plain form keeps quotes as they
// are, the escaped form doubles them.
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
  EXPECT_EQ(sql::Unquoted(Variant("0001")), "0001");
  EXPECT_EQ(sql::Unquoted(Variant(2.5)), "2.5");
  EXPECT_EQ(sql::Unquoted(Variant::Boolean(true)), "True");
  EXPECT_EQ(sql::Unquoted(Variant()), "");
  EXPECT_EQ(sql::Unquoted(Variant::Null()), "");
  EXPECT_THROW(sql::Unquoted(Variant(ObjectRef(std::make_shared<HostObject>()))), VbError);
}

}  // namespace
}  // namespace zarvik
