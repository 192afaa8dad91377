// What a careless or hostile host cannot do to `zarvik host`: kill it with
// one deeply nested line, leak objects that refer to each other, or stall
// it with an object of many members.
#include <gtest/gtest.h>
#include <pthread.h>
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
  ObjectTable table;
  std::vector<std::weak_ptr<Object>> watched;
  std::vector<int64_t> ids;
  {
    auto self = std::make_shared<HostObject>();  // its own member
    self->Set("Self", Variant(ObjectRef(self)));
    // A parser bound to a host object that holds the parser.
    ObjectRef parser = CreateObject(BuildTypeLibrary(), "CLSFW_PARSER", CreationContext{});
    auto app = MakeHostObject({{"Back", Variant(parser)}});
    parser->PutProperty("ActiveInterface", Variant(ObjectRef(app)));
    // A pair held by a third object; only one of the pair has an id.
    auto b = std::make_shared<HostObject>();
    auto c = MakeHostObject({{"Peer", Variant(ObjectRef(b))}});
    b->Set("Peer", Variant(ObjectRef(c)));
    auto holder = MakeHostObject({{"B", Variant(ObjectRef(b))}});
    watched = {self, parser, app, b, c, holder};
    for (const ObjectRef& o : std::vector<ObjectRef>{self, parser, app, c, holder}) {
      ids.push_back(table.Register(o));
    }
  }
  auto alive = [&] {
    std::string flags;
    for (const auto& w : watched) flags += w.expired() ? '-' : '+';
    return flags;
  };
  const char* const after_drop[] = {"-+++++", "-+++++", "---+++", "---+++", "------"};
  for (size_t i = 0; i < ids.size(); ++i) {
    table.Drop(ids[i]);
    EXPECT_EQ(alive(), after_drop[i]) << i;
    // Reached through the holder, the pair is kept whole.
    if (i == 3) {
      EXPECT_EQ(watched[4].lock()->GetProperty("Peer").ToObject(), watched[3].lock());
    }
  }
}

TEST(HostLimits, AChainOfObjectsIsFreedWithoutRecursion) {
  ObjectTable table;
  std::weak_ptr<Object> first;
  std::vector<int64_t> ids;
  ObjectRef previous;
  for (int i = 0; i < 20000; ++i) {
    auto next = std::make_shared<HostObject>();
    if (previous) next->Set("Previous", Variant(previous));
    if (i == 0) first = next;
    ids.push_back(table.Register(next));
    previous = next;
  }
  previous.reset();
  // On a 256 KiB stack, which a recursion 20,000 levels deep overflows.
  auto drop_all = [&] {
    for (int64_t id : ids) table.Drop(id);
  };
  pthread_attr_t small_stack;
  pthread_attr_init(&small_stack);
  pthread_attr_setstacksize(&small_stack, 256 * 1024);
  pthread_t thread;
  auto run = [](void* f) -> void* {
    (*static_cast<decltype(drop_all)*>(f))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &small_stack, run, &drop_all), 0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&small_stack);
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
