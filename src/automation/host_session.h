// `zarvik host`: the component as a scriptable automation host.
//
// One JSON request per input line, one JSON answer per line, flushed:
//   {"op":"new","class":C[,"members":{...}]}   -> {"ok":true,"id":N,...}
//   {"op":"put","id":N,"name":P,"value":V}
//   {"op":"get","id":N,"name":P}                -> ... "value":V
//   {"op":"call","id":N,"name":M,"args":[...]}  -> ... "value":V,"args":[...]
//   {"op":"drop","id":N}
// C is CLSFW_PARSER, CLSFW_FILTROQUERY, CLSFW_RVKUSERS, Connection or
// HostObject. Every successful answer carries "ok":true, "boxes" (the message
// boxes shown while serving the request, {"text","title","style"}) and "sql"
// (the statements sent on any connection while serving it, as sent). A
// request the boundary cannot serve is answered
// {"ok":false,"error":DESCRIPTION,"number":N} and the session goes on.
#ifndef ZARVIK_AUTOMATION_HOST_SESSION_H_
#define ZARVIK_AUTOMATION_HOST_SESSION_H_

#include <iosfwd>
#include <memory>
#include <string>

#include "automation/json_values.h"
#include "automation/type_library.h"
#include "db/tracing.h"
#include "platform/env.h"
#include "platform/message_sink.h"

namespace zarvik::automation {

// The deepest nesting of JSON arrays and objects a request line may have
// (the request object itself is the first level). A deeper line is answered
// {"ok":false,"error":...} before it is parsed, so no conversion ever
// recurses deeper than this.
inline constexpr int kMaxJsonNesting = 64;

class HostSession {
 public:
  // `clock` is the clock the created objects see (the system clock by
  // default).
  explicit HostSession(std::shared_ptr<Clock> clock = nullptr);
  ~HostSession();
  HostSession(const HostSession&) = delete;
  HostSession& operator=(const HostSession&) = delete;

  // Serves one request line and returns the answer line (without newline).
  std::string Handle(const std::string& line);

 private:
  Json Serve(const RequestJson& request);

  TypeLibrary library_;
  std::shared_ptr<RecordingMessageSink> boxes_;
  std::shared_ptr<db::StatementLog> statements_;
  CreationContext context_;
  ObjectTable objects_;
};

// Reads requests from `in` until end of input, answering each on `out`.
int RunHostSession(std::istream& in, std::ostream& out);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_HOST_SESSION_H_
