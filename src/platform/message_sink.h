// The channel that stands for the modal message box.
//
// The component shows a message box in a few places (the error reporter,
// the parser error, the obsolete-method notice, the login formatter
// messages). Outside a windowed host every such box goes to a MessageSink;
// the default writes to stderr, tests and hosts install their own.
#ifndef ZARVIK_PLATFORM_MESSAGE_SINK_H_
#define ZARVIK_PLATFORM_MESSAGE_SINK_H_

#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace zarvik {

// Message box styles the component uses (VB's vbMsgBoxStyle values).
namespace msgstyle {
constexpr int kOkOnly = 0;
constexpr int kCritical = 16;
constexpr int kExclamation = 48;
}  // namespace msgstyle

struct Message {
  std::string text;
  std::string title;  // "" = the default title
  int style = msgstyle::kOkOnly;
};

class MessageSink {
 public:
  virtual ~MessageSink() = default;
  virtual void Show(const Message& message) = 0;
};

// Writes each box to a stream (stderr by default) as one block:
// "[" + title + "] " + text + "\n", the title "ZARVIK" when none is given.
class StreamMessageSink : public MessageSink {
 public:
  StreamMessageSink();  // std::cerr
  explicit StreamMessageSink(std::ostream& out);
  void Show(const Message& message) override;

 private:
  std::ostream* out_;
};

// Keeps every box, for tests and for hosts that collect them.
class RecordingMessageSink : public MessageSink {
 public:
  void Show(const Message& message) override { messages.push_back(message); }
  std::vector<Message> messages;
};

// The default sink for objects that were given none.
std::shared_ptr<MessageSink> DefaultMessageSink();

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_MESSAGE_SINK_H_
