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
#include "platform/vb_error.h"
#include "rvkusers/clsfw_rvkusers.h"
#include "rvkusers/sql_date_formatter.h"
#include "rvkusers/sql_number_formatter.h"

namespace zarvik {
namespace {

using rvkusers::SqlDateFormatter;
using rvkusers::SqlNumberFormatter;

TEST(SqlDateFormatter, WritesTheDayAsEightDigits) {
  struct Case {
    const char* what;
    Variant value;
    std::optional<std::string> literal;
  };
  const Case cases[] = {
      {"a date", Variant::Date(OleDateFromYmd(2024, 3, 5)), "20240305"},
      {"the time of day is dropped",
       Variant::Date(OleDateFromYmd(2024, 12, 31) + 23.0 / 24 + 59.0 / 1440), "20241231"},
      {"leap day", Variant::Date(OleDateFromYmd(2024, 2, 29)), "20240229"},
      {"day 0 of OLE dates", Variant::Date(0), "18991230"},
      {"before day 0, with a time", Variant::Date(-1.25), "18991229"},
      {"first and last years", Variant::Date(OleDateFromYmd(100, 1, 1)), "01000101"},
      {"", Variant::Date(OleDateFromYmd(9999, 12, 31)), "99991231"},
      {"outside VB's range", Variant::Date(OleDateFromYmd(10000, 1, 1)), std::nullopt},
      {"date text", Variant("2024-03-05"), "20240305"},
      {"date and time text", Variant("2024-03-05 17:45:00"), "20240305"},
      {"text that is no date", Variant("05/03/2024x"), std::nullopt},
      {"a number is no date", Variant(int32_t{45356}), std::nullopt},
      {"a Double is no date", Variant(45356.5), std::nullopt},
      {"Empty", Variant(), std::nullopt},
      {"Null", Variant::Null(), std::nullopt},
  };
  const SqlDateFormatter formatter;
  for (const Case& c : cases) {
    EXPECT_EQ(formatter.Format(c.value), c.literal) << c.what;
  }
}

TEST(SqlNumberFormatter, InvariantPointNoGroupingNoExponent) {
  struct Case {
    Variant value;
    const char* text;
  };
  const Case cases[] = {
      {Variant(int16_t{-12}), "-12"},
      {Variant(int32_t{2147483647}), "2147483647"},
      {Variant(1234567.25), "1234567.25"},
      {Variant(0.1 + 0.2), "0.3"},
      {Variant(-0.0), "0"},
      {Variant(1e20), "100000000000000000000"},
      {Variant(1.5e-7), "0.00000015"},
      {Variant(123456789012345678.0), "123456789012346000"},
      {Variant(2.0 / 3.0), "0.666666666666667"},
      {Variant::Boolean(true), "-1"},
      {Variant("  3.50 "), "3.5"},
      {Variant("1E3"), "1000"},
      {Variant(), "0"},
  };
  const SqlNumberFormatter formatter;
  for (const Case& c : cases) {
    EXPECT_EQ(formatter.Format(c.value), c.text) << c.value.ConcatText();
  }
}

TEST(SqlNumberFormatter, RefusesWhatIsNotANumber) {
  struct Case {
    Variant value;
    int32_t error;
  };
  const Case cases[] = {
      {Variant("1.234,5"), vberr::kTypeMismatch},
      {Variant("abc"), vberr::kTypeMismatch},
      {Variant::Date(45356), vberr::kTypeMismatch},
      {Variant(ObjectRef(std::make_shared<HostObject>())), vberr::kTypeMismatch},
      {Variant::Null(), vberr::kInvalidUseOfNull},
  };
  const SqlNumberFormatter formatter;
  for (const Case& c : cases) {
    try {
      formatter.Format(c.value);
      ADD_FAILURE() << "no error for " << static_cast<int>(c.value.Type());
    } catch (const VbError& e) {
      EXPECT_EQ(e.Number(), c.error);
    }
  }
}

struct FormatterEnv {
  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  CLSFW_RVKUSERS rvk{Env{sink, std::make_shared<SystemClock>()}};
};

TEST(FormatSqlValue, ValuesThatAreNotEmpty) {
  struct Case {
    Variant value;
    int16_t tipo;
    const char* literal;
  };
  const Case cases[] = {
      {Variant("abc"), 0, "'abc'"},
      {Variant("O'Hara"), 0, "'O'Hara'"},  // quotes are not doubled
      {Variant(int32_t{42}), 0, "'42'"},
      {Variant(" "), 0, "' '"},  // blank is not empty
      {Variant(int32_t{12}), 1, "12"},
      {Variant("2.5"), 1, "2.5"},
      {Variant(-0.125), 1, "-0.125"},
      {Variant(1e16), 1, "10000000000000000"},
      {Variant("abc"), 1, ""},  // not a number: the error gives ""
      {Variant(1234567.5), 2, "1234567.5"},
      {Variant("7"), 2, "7"},
      {Variant("x"), 2, ""},
      {Variant::Date(OleDateFromYmd(2024, 3, 5) + 0.75), 3, "'20240305'"},
      {Variant("2024-03-05"), 3, "'20240305'"},
      {Variant("yesterday"), 3, ""},  // the formatter does not take it
      {Variant(int32_t{5}), 3, ""},
      {Variant("abc"), 4, ""},  // no such kind
      {Variant(ObjectRef(std::make_shared<HostObject>())), 0, ""},
  };
  FormatterEnv env;
  for (const Case& c : cases) {
    for (bool ammetti_null : {false, true}) {
      EXPECT_EQ(env.rvk.FormatSqlValue(c.value, c.tipo, ammetti_null), c.literal)
          << "tipo " << c.tipo;
    }
  }
  EXPECT_TRUE(env.sink->messages.empty());
}

TEST(FormatSqlValue, EmptyValues) {
  struct Case {
    int16_t tipo;
    bool ammetti_null;
    const char* literal;
    const char* message;  // nullptr: no message
  };
  const Case cases[] = {
      {0, true, "null", nullptr},
      {1, true, "null", nullptr},
      {2, true, "null", nullptr},
      {3, true, "null", nullptr},
      {0, false, "''", nullptr},
      {1, false, "",
       "Si sta tentando di assegnare il valore (numerico) null a un campo che non ammette null."},
      {2, false, "",
       "Si sta tentando di assegnare il valore (numerico) null a un campo che non ammette null."},
      {3, false, "",
       "Si sta tentando di assegnare il valore (data) null a un campo che non ammette null."},
      {9, false, "", nullptr},
  };
  for (const Variant& empty : {Variant(), Variant::Null(), Variant("")}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::to_string(c.tipo) + (c.ammetti_null ? " null allowed" : ""));
      FormatterEnv env;
      EXPECT_EQ(env.rvk.FormatSqlValue(empty, c.tipo, c.ammetti_null), c.literal);
      if (c.message == nullptr) {
        EXPECT_TRUE(env.sink->messages.empty());
      } else {
        ASSERT_EQ(env.sink->messages.size(), 1u);
        EXPECT_EQ(env.sink->messages[0].text, c.message);
        EXPECT_EQ(env.sink->messages[0].title, "");
        EXPECT_EQ(env.sink->messages[0].style, msgstyle::kOkOnly);
      }
    }
  }
}

}  // namespace
}  // namespace zarvik
