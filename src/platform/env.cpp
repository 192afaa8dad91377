#include "platform/env.h"

#include <cmath>
#include <cstdint>
#include <ctime>

namespace zarvik {
namespace {

// Days from 1970-01-01 to the given proleptic Gregorian date.
int64_t DaysFromCivil(int64_t y, int64_t m, int64_t d) {
  y -= m <= 2 ? 1 : 0;
  const int64_t era = (y >= 0 ? y : y - 399) / 400;
  const int64_t yoe = y - era * 400;
  const int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
  const int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

void CivilFromDays(int64_t z, int* year, int* month, int* day) {
  z += 719468;
  const int64_t era = (z >= 0 ? z : z - 146096) / 146097;
  const int64_t doe = z - era * 146097;
  const int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
  const int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
  const int64_t mp = (5 * doy + 2) / 153;
  const int64_t d = doy - (153 * mp + 2) / 5 + 1;
  const int64_t m = mp < 10 ? mp + 3 : mp - 9;
  const int64_t y = yoe + era * 400 + (m <= 2 ? 1 : 0);
  if (year) *year = static_cast<int>(y);
  if (month) *month = static_cast<int>(m);
  if (day) *day = static_cast<int>(d);
}

// 1899-12-30, day 0 of OLE automation dates, counted from 1970-01-01.
constexpr int64_t kOleEpochFromUnix = -25569;

}  // namespace

double SystemClock::Now() const {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
#ifdef _WIN32
  localtime_s(&local, &now);
#else
  localtime_r(&now, &local);
#endif
  const double date = OleDateFromYmd(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday);
  const int seconds = local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec;
  return date + seconds / 86400.0;
}

Env DefaultEnv() {
  Env env;
  env.sink = DefaultMessageSink();
  env.clock = std::make_shared<SystemClock>();
  return env;
}

// Months outside 1..12 roll into neighbouring years, as VB's DateSerial does.
double OleDateFromYmd(int year, int month, int day) {
  int64_t y = year;
  int64_t m = static_cast<int64_t>(month) - 1;
  y += m >= 0 ? m / 12 : (m - 11) / 12;
  m = ((m % 12) + 12) % 12 + 1;
  // The day is applied as an offset from the first of the month, so day 0 is
  // the last day of the previous month.
  const int64_t days = DaysFromCivil(y, m, 1) + (static_cast<int64_t>(day) - 1);
  return static_cast<double>(days - kOleEpochFromUnix);
}

// OLE dates count days towards zero: -1.5 is 1899-12-29 12:00, so the day is
// the integer part and the fraction (of either sign) is the time of day.
void YmdFromOleDate(double oa_date, int* year, int* month, int* day) {
  const auto days = static_cast<int64_t>(std::trunc(oa_date));
  CivilFromDays(days + kOleEpochFromUnix, year, month, day);
}

}  // namespace zarvik
