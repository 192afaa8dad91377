// The literal writers of the login log and FormatSqlValue on top of them.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "frame/host_object.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "platform/platform_test_support.h"
#include "platform/vb_error.h"
#include "rvkusers/clsfw_rvkusers.h"
#include "rvkusers/sql_date_formatter.h"
#include "rvkusers/sql_number_formatter.h"

namespace zarvik {
namespace {

using rvkusers::SqlDateFormatter;
using rvkusers::SqlNumberFormatter;

TEST(SqlDateFormatter, WritesTheDayAsEightDigits) {
  const std::vector<std::pair<Variant, std::optional<std::string>>> cases = {
      {Variant::Date(OleDateFromYmd(2024, 12, 31) + 23.0 / 24 + 59.0 / 1440), "20241231"},
      {Variant::Date(0), "18991230"},
      {Variant::Date(-1.25), "18991229"},  // before day 0, with a time
      {Variant::Date(OleDateFromYmd(100, 1, 1)), "01000101"},
      {Variant::Date(OleDateFromYmd(9999, 12, 31)), "99991231"},
      {Variant::Date(OleDateFromYmd(10000, 1, 1)), std::nullopt},
      {Variant("2024-03-05 17:45:00"), "20240305"},
      {Variant("05/03/2024x"), std::nullopt},
      {Variant(int32_t{45356}), std::nullopt},  // a number is no date
      {Variant::Null(), std::nullopt},
  };
  for (const auto& [value, literal] : cases) {
    EXPECT_EQ(SqlDateFormatter().Format(value), literal) << value.ConcatText();
  }
}

TEST(SqlNumberFormatter, InvariantPointNoGroupingNoExponent) {
  const std::vector<std::pair<Variant, std::string>> cases = {
      {Variant(int16_t{-12}), "-12"},
      {Variant(1234567.25), "1234567.25"},
      {Variant(-0.0), "0"},
      {Variant(1e20), "100000000000000000000"},
      {Variant(1.5e-7), "0.00000015"},
      {Variant(123456789012345678.0), "123456789012346000"},
      {Variant::Boolean(true), "-1"},
      {Variant("  3.50 "), "3.5"},
      {Variant(), "0"},
  };
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(SqlNumberFormatter().Format(value), text) << value.ConcatText();
  }
  const std::vector<std::pair<Variant, int32_t>> refused = {
      {Variant("1.234,5"), vberr::kTypeMismatch},
      {Variant::Date(45356), vberr::kTypeMismatch},
      {Variant(ObjectRef(std::make_shared<HostObject>())), vberr::kTypeMismatch},
      {Variant::Null(), vberr::kInvalidUseOfNull},
  };
  for (const auto& [value, error] : refused) {
    EXPECT_EQ(test::ErrorOf([&] { SqlNumberFormatter().Format(value); }), error)
        << static_cast<int>(value.Type());
  }
}

TEST(FormatSqlValue, ValuesThatAreNotEmpty) {
  const struct {
    Variant value;
    int16_t tipo;
    const char* literal;
  } cases[] = {
      {Variant("O'Hara"), 0, "'O'Hara'"},  // quotes are not doubled
      {Variant(" "), 0, "' '"},            // blank is not empty
      {Variant("2.5"), 1, "2.5"},
      {Variant("abc"), 1, ""},  // not a number: the error gives ""
      {Variant(1234567.5), 2, "1234567.5"},
      {Variant::Date(OleDateFromYmd(2024, 3, 5) + 0.75), 3, "'20240305'"},
      {Variant(int32_t{5}), 3, ""},  // the formatter does not take it
      {Variant("abc"), 4, ""},       // no such kind
      {Variant(ObjectRef(std::make_shared<HostObject>())), 0, ""},
  };
  auto sink = std::make_shared<RecordingMessageSink>();
  CLSFW_RVKUSERS rvk{Env{sink, std::make_shared<SystemClock>()}};
  for (const auto& c : cases) {
    for (bool ammetti_null : {false, true}) {
      EXPECT_EQ(rvk.FormatSqlValue(c.value, c.tipo, ammetti_null), c.literal) << "tipo " << c.tipo;
    }
  }
  EXPECT_TRUE(sink->messages.empty());
}

TEST(FormatSqlValue, EmptyValues) {
  const std::string numeric =
      "Si sta tentando di assegnare il valore (numerico) null a un campo che non ammette null.";
  const std::string date =
      "Si sta tentando di assegnare il valore (data) null a un campo che non ammette null.";
  const struct {
    int16_t tipo;
    bool ammetti_null;
    const char* literal;
    std::string message;  // "": no message
  } cases[] = {
      {0, true, "null", ""},   {3, true, "null", ""}, {0, false, "''", ""}, {1, false, "", numeric},
      {2, false, "", numeric}, {3, false, "", date},  {9, false, "", ""},
  };
  for (const Variant& empty : {Variant(), Variant::Null(), Variant("")}) {
    for (const auto& c : cases) {
      SCOPED_TRACE(std::to_string(c.tipo) + (c.ammetti_null ? " null allowed" : ""));
      auto sink = std::make_shared<RecordingMessageSink>();
      CLSFW_RVKUSERS rvk{Env{sink, std::make_shared<SystemClock>()}};
      EXPECT_EQ(rvk.FormatSqlValue(empty, c.tipo, c.ammetti_null), c.literal);
      ASSERT_EQ(sink->messages.size(), c.message.empty() ? 0u : 1u);
      if (!c.message.empty()) {
        EXPECT_EQ(sink->messages[0].text, c.message);
        EXPECT_EQ(sink->messages[0].title, "");
        EXPECT_EQ(sink->messages[0].style, msgstyle::kOkOnly);
      }
    }
  }
}

}  // namespace
}  // namespace zarvik
