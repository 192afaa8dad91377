// A recording Env and a demo database on disk, shared by the frame tests.
#ifndef ZARVIK_TESTS_FRAME_FRAME_TEST_SUPPORT_H_
#define ZARVIK_TESTS_FRAME_FRAME_TEST_SUPPORT_H_

#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>

#include "db/connection.h"
#include "demo/demo_db.h"
#include "platform/env.h"
#include "platform/message_sink.h"

namespace zarvik::testing {

struct RecordingEnv {
  std::shared_ptr<RecordingMessageSink> sink = std::make_shared<RecordingMessageSink>();
  Env env{sink, std::make_shared<SystemClock>()};
};

// The recorded boxes, each as "text|title|style\n".
inline std::string BoxLines(const RecordingMessageSink& sink) {
  std::string lines;
  for (const Message& m : sink.messages) {
    lines += m.text + "|" + m.title + "|" + std::to_string(m.style) + "\n";
  }
  return lines;
}

// A reported box's tag: what follows "in ZARVIK: <class_name> - " (the whole text without it).
inline std::string BoxTag(const Message& box, const std::string& class_name) {
  const std::string marker = "in ZARVIK: " + class_name + " - ";
  const size_t at = box.text.rfind(marker);
  return at == std::string::npos ? box.text : box.text.substr(at + marker.size());
}

// A demo database file that lives as long as the object.
class DemoDatabaseFile {
 public:
  explicit DemoDatabaseFile(const std::string& name) {
    path_ = (std::filesystem::temp_directory_path() /
             ("zarvik_" + name + "_" + std::to_string(::getpid()) + ".db"))
                .string();
    std::filesystem::remove(path_);
    demo::InitDemoDatabase(path_);
  }
  ~DemoDatabaseFile() { std::filesystem::remove(path_); }
  DemoDatabaseFile(const DemoDatabaseFile&) = delete;
  DemoDatabaseFile& operator=(const DemoDatabaseFile&) = delete;

  const std::string& Path() const { return path_; }
  std::string ConnectionString() const { return demo::DemoConnectionString(path_); }

 private:
  std::string path_;
};

}  // namespace zarvik::testing

#endif  // ZARVIK_TESTS_FRAME_FRAME_TEST_SUPPORT_H_
