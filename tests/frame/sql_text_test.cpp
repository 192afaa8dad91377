#include "frame/sql_text.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "frame/host_object.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

TEST(SqlText, QuotedEscapedAndUnquotedForms) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {sql::Quoted("O'Hara"), "'O'Hara'"},         {sql::Quoted(""), "''"},
      {sql::QuotedEscaped("O'Hara"), "'O''Hara'"}, {sql::QuotedEscaped("''"), "''''''"},
      {sql::Unquoted(Variant(int32_t{1})), "1"},   {sql::Unquoted(Variant("0001")), "0001"},
      {sql::Unquoted(Variant(2.5)), "2.5"},        {sql::Unquoted(Variant::Boolean(true)), "True"},
      {sql::Unquoted(Variant::Null()), ""},
  };
  for (size_t i = 0; i < cases.size(); ++i) EXPECT_EQ(cases[i].first, cases[i].second) << i;
  EXPECT_THROW(sql::Unquoted(Variant(ObjectRef(std::make_shared<HostObject>()))), VbError);
}

}  // namespace
}  // namespace zarvik
