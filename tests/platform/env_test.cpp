#include "platform/env.h"

#include <gtest/gtest.h>

#include <ctime>
#include <sstream>
#include <vector>

#include "platform/message_sink.h"
#include "platform/vb_error.h"

namespace zarvik {
namespace {

TEST(OleDateTest, CalendarTable) {
  const std::vector<std::pair<std::vector<int>, double>> cases = {
      {{1899, 12, 30}, 0},    {{1899, 12, 29}, -1},  {{1900, 3, 1}, 61},
      {{2000, 2, 29}, 36585}, {{2000, 3, 1}, 36586}, {{9999, 12, 31}, 2958465},
      {{100, 1, 1}, -657434}};
  for (const auto& [ymd, oa] : cases) {
    EXPECT_EQ(OleDateFromYmd(ymd[0], ymd[1], ymd[2]), oa);
    // The time of day does not move the date, on either side of day 0.
    for (const double time : {0.0, 0.99}) {
      int y = 0, m = 0, d = 0;
      YmdFromOleDate(oa < 0 ? oa - time : oa + time, &y, &m, &d);
      EXPECT_EQ(std::vector<int>({y, m, d}), ymd) << oa + time;
    }
  }
  // Months and days out of range roll over as in DateSerial.
  EXPECT_EQ(OleDateFromYmd(2023, 13, 1), OleDateFromYmd(2024, 1, 1));
  EXPECT_EQ(OleDateFromYmd(2024, -11, 1), OleDateFromYmd(2023, 1, 1));
  EXPECT_EQ(OleDateFromYmd(2024, 3, 0), OleDateFromYmd(2024, 2, 29));
}

TEST(SystemClockTest, NowIsTodayInLocalTime) {
  const std::time_t t = std::time(nullptr);
  std::tm local{};
  localtime_r(&t, &local);
  const double expected = OleDateFromYmd(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
                          (local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec) / 86400.0;
  EXPECT_NEAR(DefaultEnv().clock->Now(), expected, 5.0 / 86400.0);  // the clock ticks meanwhile
}

TEST(MessageSinkTest, AnUntitledBoxCarriesTheComponentName) {
  std::ostringstream out;
  StreamMessageSink(out).Show(
      {"6 - Overflow\r\nin ZARVIK: CLSFW_PARSER - X", "", msgstyle::kOkOnly});
  EXPECT_EQ(out.str(), "[ZARVIK] 6 - Overflow\r\nin ZARVIK: CLSFW_PARSER - X\n");
}

TEST(VbErrorTest, NumbersCarryVbTexts) {
  std::string texts;  // "number text|" of each
  for (int32_t n : {5, 6, 9, 13, 91, 94, 438, 450, 3265, 3021, 3704, 3705, 3709, 3001, 12345}) {
    texts += std::to_string(n) + " " + VbError(n).what() + "|";
  }
  EXPECT_EQ(texts,
            "5 Invalid procedure call or argument|6 Overflow|9 Subscript out of range|"
            "13 Type mismatch|91 Object variable or With block variable not set|"
            "94 Invalid use of Null|438 Object doesn't support this property or method|"
            "450 Wrong number of arguments or invalid property assignment|"
            "3265 Item cannot be found in the collection corresponding to the requested name or "
            "ordinal.|3021 Either BOF or EOF is True, or the current record has been deleted. "
            "Requested operation requires a current record.|"
            "3704 Operation is not allowed when the object is closed.|"
            "3705 Operation is not allowed when the object is open.|"
            "3709 The connection cannot be used to perform this operation. It is either closed or "
            "invalid in this context.|3001 Arguments are of the wrong type, are out of acceptable "
            "range, or are in conflict with one another.|12345 |");
  const VbError own(vberr::kProviderError, "Incorrect syntax near 'FROM'.");
  EXPECT_EQ(std::to_string(own.Number()) + " " + own.Description() + "|" + own.what(),
            "-2147217900 Incorrect syntax near 'FROM'.|Incorrect syntax near 'FROM'.");
}

}  // namespace
}  // namespace zarvik
