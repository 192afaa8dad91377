// What the component takes from its surroundings: where message boxes go
// and what the current date is. Every class gets one Env at construction;
// tests replace the parts they need to control.
#ifndef ZARVIK_PLATFORM_ENV_H_
#define ZARVIK_PLATFORM_ENV_H_

#include <memory>

#include "platform/message_sink.h"
#include "platform/object.h"

namespace zarvik {

class Clock {
 public:
  virtual ~Clock() = default;
  // Current local date and time as an OLE automation date (VB's Now).
  virtual double Now() const = 0;
};

// The machine's local time.
class SystemClock : public Clock {
 public:
  double Now() const override;
};

struct Env {
  std::shared_ptr<MessageSink> sink;
  std::shared_ptr<Clock> clock;
  // When set, the host's data-access library serves every connection: the
  // component creates "ADODB.Connection" and "ADODB.Command" through it and
  // takes any object the host hands in as an ADO connection (db::AsConnection).
  // When null, the component's own engines (src/db) serve it.
  std::shared_ptr<ObjectFactory> data_access = nullptr;
};

// Message boxes to stderr, the system clock, the component's own engines.
Env DefaultEnv();

// Calendar helpers on OLE automation dates (day 0 = 1899-12-30). Months
// and days out of range roll over as in DateSerial. The date of an OLE
// value is its integer part; the fraction is the time of day either side
// of day 0. Null output pointers are skipped.
double OleDateFromYmd(int year, int month, int day);
void YmdFromOleDate(double oa_date, int* year, int* month, int* day);

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_ENV_H_
