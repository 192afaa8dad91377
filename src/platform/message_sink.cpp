#include "platform/message_sink.h"

#include <iostream>

namespace zarvik {
namespace {

// The title a message box shows when the caller gives none: the component's
// own name.
constexpr const char* kDefaultTitle = "ZARVIK";

}  // namespace

StreamMessageSink::StreamMessageSink() : out_(&std::cerr) {}

StreamMessageSink::StreamMessageSink(std::ostream& out) : out_(&out) {}

void StreamMessageSink::Show(const Message& message) {
  // One write per box so that boxes from consecutive calls never interleave.
  std::string block;
  block.reserve(message.text.size() + message.title.size() + 4);
  block += '[';
  block += message.title.empty() ? kDefaultTitle : message.title;
  block += "] ";
  block += message.text;
  block += '\n';
  *out_ << block;
  out_->flush();
}

std::shared_ptr<MessageSink> DefaultMessageSink() { return std::make_shared<StreamMessageSink>(); }

}  // namespace zarvik
