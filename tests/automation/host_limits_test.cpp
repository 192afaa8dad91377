// What a careless or hostile host cannot do to `zarvik host`: kill it with
// one deeply nested line, leak objects that refer to each other, or stall
// it with an object of many members.
#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/host_session.h"
#include "automation/json_values.h"
#include "frame/host_object.h"

namespace zarvik::automation {
namespace {

// A HostObject request whose line nests `depth` JSON levels in all (the
// request object is the first).
std::string NestedMembers(size_t depth) {
  std::string line = R"({"op":"new","class":"HostObject","members":)";
  for (size_t i = 2; i < depth; ++i) line += R"({"a":)";
  line += "{}";
  line.append(depth > 2 ? depth - 2 : 0, '}');
  return line + "}";
}

std::string NestedArgs(size_t depth) {
  return R"({"op":"call","id":1,"name":"x","args":)" + std::string(depth - 1, '[') +
         std::string(depth - 1, ']') + "}";
}

TEST(HostLimits, NestingDeeperThanTheLimitIsRefusedAndTheSessionGoesOn) {
  const struct {
    std::string line;
    bool refused;
  } cases[] = {
      {NestedMembers(kMaxJsonNesting), false},
      {NestedMembers(kMaxJsonNesting + 1), true},
      {NestedMembers(100000), true},
      {NestedArgs(100000), true},
      {std::string(100000, '['), true},
      // Brackets inside strings do not nest.
      {R"({"op":"new","class":"[{\"[)" + std::string(100000, '[') + "\"}", false},
  };
  HostSession session;
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line.substr(0, 80));
    const Json answer = Json::parse(session.Handle(c.line));
    const std::string error = answer.value("error", "");
    EXPECT_EQ(error.find("nested deeper than 64"), c.refused ? 0u : std::string::npos) << error;
    EXPECT_EQ(session.Handle(R"({"op":"new","class":"Connection"})").rfind(R"({"ok":true,)", 0),
              0u);
  }
}

TEST(HostLimits, TheBinarySurvivesADeepLineAndAnswersTheNext) {
  const std::string in =
      (std::filesystem::temp_directory_path() / ("zarvik_deep_" + std::to_string(::getpid())))
          .string();
  std::ofstream(in) << NestedMembers(100000) << "\n"
                    << NestedArgs(100000) << "\n"
                    << R"({"op":"new","class":"CLSFW_PARSER"})"
                    << "\n";
  FILE* pipe = ::popen((std::string(ZARVIK_BINARY) + " host < " + in).c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string output;
  char buffer[4096];
  size_t n = 0;
  while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) output.append(buffer, n);
  EXPECT_EQ(::pclose(pipe), 0);
  std::filesystem::remove(in);
  EXPECT_EQ(output.substr(output.find('\n', output.find('\n') + 1) + 1),
            "{\"ok\":true,\"id\":1,\"boxes\":[],\"sql\":[]}\n")
      << output.substr(0, 300);
}

// Objects that refer to each other are freed once no id reaches them, and
// not before.
TEST(HostLimits, CyclesAreFreedOnceNoIdReachesThem) {
  const TypeLibrary library = BuildTypeLibrary();
  ObjectTable table;
  auto host = [](const char* name, const ObjectRef& to) {
    auto object = std::make_shared<HostObject>();
    if (to) object->Set(name, Variant(to));
    return object;
  };
  // A host object that is its own member.
  auto self = host("x", nullptr);
  self->Set("Self", Variant(ObjectRef(self)));
  // A parser bound to a host object whose member is the parser.
  std::shared_ptr<Object> parser = CreateObject(library, "CLSFW_PARSER", CreationContext{});
  auto app = host("Back", parser);
  parser->PutProperty("ActiveInterface", Variant(ObjectRef(app)));
  // Two host objects held by a third, one of them registered.
  auto b = host("x", nullptr);
  auto c = host("Peer", b);
  b->Set("Peer", Variant(ObjectRef(c)));
  auto holder = host("B", b);
  const std::vector<std::weak_ptr<Object>> watched = {self, parser, app, b, c, holder};
  const int64_t self_id = table.Register(self);
  const int64_t parser_id = table.Register(parser);
  const int64_t app_id = table.Register(app);
  const int64_t c_id = table.Register(c);
  const int64_t holder_id = table.Register(holder);
  self.reset(), parser.reset(), app.reset(), b.reset(), c.reset(), holder.reset();
  auto alive = [&] {
    std::string flags;
    for (const auto& w : watched) flags += w.expired() ? '-' : '+';
    return flags;
  };
  table.Drop(self_id);
  EXPECT_EQ(alive(), "-+++++");
  table.Drop(parser_id);  // the host object still reaches it
  EXPECT_EQ(alive(), "-+++++");
  table.Drop(app_id);
  EXPECT_EQ(alive(), "---+++");
  table.Drop(c_id);  // reached through holder: kept whole
  EXPECT_EQ(alive(), "---+++");
  EXPECT_EQ(watched[5]
                .lock()
                ->GetProperty("B")
                .ToObject()
                ->GetProperty("Peer")
                .ToObject()
                ->GetProperty("Peer")
                .ToObject(),
            watched[3].lock());
  table.Drop(holder_id);
  EXPECT_EQ(alive(), "------");
}

TEST(HostLimits, AChainOfObjectsIsFreedWithoutRecursion) {
  ObjectTable table;
  std::weak_ptr<Object> first;
  std::vector<int64_t> ids;
  ObjectRef previous;
  for (int i = 0; i < 200000; ++i) {
    auto next = std::make_shared<HostObject>();
    if (previous) next->Set("Previous", Variant(previous));
    if (i == 0) first = next;
    ids.push_back(table.Register(next));
    previous = next;
  }
  previous.reset();
  for (int64_t id : ids) table.Drop(id);
  EXPECT_TRUE(first.expired());
}

TEST(HostLimits, ManyMembersAreServedInLinearTime) {
  std::string line = R"({"op":"new","class":"HostObject","members":{)";
  for (int i = 0; i < 60000; ++i) {
    line += (i ? "," : "") + ("\"m" + std::to_string(i) + "\":") + std::to_string(i);
  }
  line += "}}";
  HostSession session;
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(Json::parse(session.Handle(line))["id"], 1);
  EXPECT_EQ(Json::parse(session.Handle(R"({"op":"get","id":1,"name":"M59999"})"))["value"], 59999);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace zarvik::automation
