// The built `zarvik host` binary answers each line in turn and survives bad ones.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

extern char** environ;

namespace zarvik {
namespace {

// One line from `fd`, waiting at most five seconds for it; "" on a timeout.
std::string ReadLine(int fd) {
  std::string line;
  char c = 0;
  pollfd ready{fd, POLLIN, 0};
  while (::poll(&ready, 1, 5000) == 1 && ::read(fd, &c, 1) == 1 && c != '\n') line += c;
  return line;
}

TEST(HostBinary, AnswersEachLineInTurnAndSurvivesBadLines) {
  int to_host[2];
  int from_host[2];
  ASSERT_EQ(::pipe(to_host), 0);
  ASSERT_EQ(::pipe(from_host), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, to_host[0], 0);
  posix_spawn_file_actions_adddup2(&actions, from_host[1], 1);
  posix_spawn_file_actions_addclose(&actions, to_host[1]);
  posix_spawn_file_actions_addclose(&actions, from_host[0]);
  char binary[] = ZARVIK_BINARY;
  char host[] = "host";
  char* argv[] = {binary, host, nullptr};
  pid_t pid = 0;
  ASSERT_EQ(posix_spawn(&pid, binary, &actions, nullptr, argv, environ), 0);
  posix_spawn_file_actions_destroy(&actions);
  ::close(to_host[0]);
  ::close(from_host[1]);
  auto send = [&](const std::string& lines) {
    ASSERT_EQ(::write(to_host[1], lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
  };

  send("{\"op\":\"new\",\"class\":\"CLSFW_PARSER\"}\r\n");  // answered before the next is sent
  EXPECT_EQ(ReadLine(from_host[0]), R"({"ok":true,"id":1,"boxes":[],"sql":[]})");
  send(
      "this is not json\n"
      R"({"op":"put","id":1,"name":"CodiceUtente","value":"GIALLI"})"
      "\n"
      R"({"op":"get","id":1,"name":"CodiceUtente"})"
      "\n");
  EXPECT_EQ(ReadLine(from_host[0]).rfind(R"({"ok":false,"error":)", 0), 0u);
  EXPECT_EQ(ReadLine(from_host[0]), R"({"ok":true,"boxes":[],"sql":[]})");
  EXPECT_EQ(ReadLine(from_host[0]), R"({"ok":true,"value":"GIALLI","boxes":[],"sql":[]})");
  ::close(to_host[1]);
  int status = 0;
  ASSERT_EQ(::waitpid(pid, &status, 0), pid);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  ::close(from_host[0]);
}

}  // namespace
}  // namespace zarvik
