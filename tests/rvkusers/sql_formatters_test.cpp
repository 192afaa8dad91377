// FormatSqlValue and the date and number literal writers behind it.
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "frame/host_object.h"
#include "platform/env.h"
#include "platform/message_sink.h"
#include "rvkusers/clsfw_rvkusers.h"

namespace zarvik {
namespace {

TEST(FormatSqlValue, ValuesThatAreNotEmpty) {
  const Variant object(ObjectRef(std::make_shared<HostObject>()));
  const struct {
    Variant value;
    int16_t tipo;
    const char* literal;  // "": the value is refused
  } cases[] = {
      {Variant("O'Hara"), 0, "'O'Hara'"},  // quotes are not doubled
      {Variant(" "), 0, "' '"},            // blank is not empty
      {object, 0, ""},
      {Variant("abc"), 4, ""},  // no such kind
      // Numbers: invariant point, no grouping, no exponent, 15 digits.
      {Variant("2.5"), 1, "2.5"},
      {Variant("abc"), 1, ""},
      {Variant(1234567.25), 2, "1234567.25"},
      {Variant(int16_t{-12}), 2, "-12"},
      {Variant(-0.0), 2, "0"},
      {Variant(1e20), 2, "100000000000000000000"},
      {Variant(1.5e-7), 2, "0.00000015"},
      {Variant(123456789012345678.0), 2, "123456789012346000"},
      {Variant::Boolean(true), 2, "-1"},
      {Variant("  3.50 "), 2, "3.5"},
      {Variant("1.234,5"), 2, ""},
      {Variant::Date(45356), 2, ""},
      {Variant::Date(45356), 1, "45356"},
      {object, 2, ""},
      // Dates: the day as eight digits.
      {Variant::Date(OleDateFromYmd(2024, 12, 31) + 23.0 / 24 + 59.0 / 1440), 3, "'20241231'"},
      {Variant::Date(0), 3, "'18991230'"},
      {Variant::Date(-1.25), 3, "'18991229'"},  // before day 0, with a time
      {Variant::Date(OleDateFromYmd(100, 1, 1)), 3, "'01000101'"},
      {Variant::Date(OleDateFromYmd(9999, 12, 31)), 3, "'99991231'"},
      {Variant::Date(OleDateFromYmd(10000, 1, 1)), 3, ""},
      {Variant("2024-03-05 17:45:00"), 3, "'20240305'"},
      {Variant("05/03/2024x"), 3, ""},
      {Variant(int32_t{45356}), 3, ""},  // a number is no date
  };
  auto sink = std::make_shared<RecordingMessageSink>();
  CLSFW_RVKUSERS rvk{Env{sink, std::make_shared<SystemClock>()}};
  for (const auto& c : cases) {
    for (bool ammetti_null : {false, true}) {
      EXPECT_EQ(rvk.FormatSqlValue(c.value, c.tipo, ammetti_null), c.literal)
          << "tipo " << c.tipo << " " << c.value.ConcatText();
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
