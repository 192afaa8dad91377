// The `zarvik host` protocol served in-process: its values, its requests and its limits.
#include "automation/host_session.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <chrono>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "automation/automation_object.h"
#include "automation/json_values.h"
#include "automation/record_object.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "frame/host_object.h"
#include "platform/vb_error.h"

namespace zarvik::automation {
namespace {

TEST(JsonValues, DatesRoundTrip) {
  for (const char* text : {"2024-02-29 13:05:09", "1899-12-29 06:00:00", "1753-01-01 23:59:59",
                           "9999-12-31 00:00:01"}) {
    EXPECT_EQ(DateText(DateFromText(text)), text);
  }
  EXPECT_EQ(DateText(DateFromText("2020-01-02")), "2020-01-02 00:00:00");
  EXPECT_DOUBLE_EQ(DateFromText("1899-12-31 12:00:00"), 1.5);
  EXPECT_DOUBLE_EQ(DateFromText("1899-12-29 06:00:00"), -1.25);
  for (const char* bad :
       {"2020-13-01 00:00:00", "yesterday", "2020-01-01 25:00:00", "2020-01-01T00:00:00"}) {
    EXPECT_THROW(DateFromText(bad), VbError) << bad;
  }
}

TEST(JsonValues, ObjectsAndMarkers) {
  ObjectTable objects;
  auto connection = std::make_shared<db::Connection>();
  const int64_t id = objects.Register(connection);
  EXPECT_EQ(objects.Register(connection), id);  // the same object keeps its id
  const Variant v = VariantFromJson(Json{{"$", "object"}, {"id", id}}, objects);
  EXPECT_EQ(v.ToObject(), connection);
  EXPECT_THROW(VariantFromJson(Json{{"$", "object"}, {"id", id + 100}}, objects), VbError);

  EXPECT_TRUE(ArgumentFromJson(Json{{"$", "missing"}}, objects).missing);
  EXPECT_THROW(VariantFromJson(Json{{"$", "missing"}}, objects), VbError);
  EXPECT_THROW(VariantFromJson(Json{{"$", "blob"}}, objects), VbError);
  EXPECT_THROW(VariantFromJson(Json::array({1, 2}), objects), VbError);

  // A plain JSON object is a host object; nested ones too.
  const Variant host = VariantFromJson(
      Json::parse(
          R"({"ClsGlobal":{"Gcls_UtenteCorrente":{"codice":"ROSSI"}},"Connection":{"$":"object","id":1}})"),
      objects);
  auto app = host.ToObject();
  auto user =
      app->GetProperty("ClsGlobal").ToObject()->GetProperty("Gcls_UtenteCorrente").ToObject();
  EXPECT_EQ(user->GetProperty("codice").ToString(), "ROSSI");
  EXPECT_EQ(app->GetProperty("Connection").ToObject(), connection);
}

// The type a JSON value arrives as and the JSON it goes back out as ("": the same).
TEST(JsonValues, ValuesInAndOut) {
  ObjectTable objects;
  const std::tuple<const char*, VarType, const char*> cases[] = {
      {R"("abc")", VarType::kString, ""},
      {"1", VarType::kLong, ""},
      {"-2147483648", VarType::kLong, ""},
      {"3000000000", VarType::kDouble, "3000000000.0"},
      {"2.5", VarType::kDouble, ""},
      {"true", VarType::kBoolean, ""},
      {"false", VarType::kBoolean, ""},
      {"null", VarType::kNull, ""},
      {R"({"$":"empty"})", VarType::kEmpty, ""},
      {R"({"$":"nothing"})", VarType::kObject, ""},
      {R"({"$":"date","value":"2024-02-29 13:05:09"})", VarType::kDate, ""},
  };
  for (const auto& [json, type, out] : cases) {
    const Variant v = VariantFromJson(Json::parse(json), objects);
    EXPECT_EQ(v.Type(), type) << json;
    EXPECT_EQ(JsonFromVariant(v, objects).dump(), *out ? out : json);
  }
  EXPECT_EQ(VariantFromJson(Json::parse("true"), objects).RawNumber(), -1);
  auto array = std::make_shared<VariantArray>(0, 1, 1, 2);
  array->At(0, 1) = Variant("a");
  array->At(0, 2) = Variant(int32_t{1});
  array->At(1, 1) = Variant("b");
  EXPECT_EQ(JsonFromVariant(Variant(array), objects).dump(),
            R"({"$":"array","lbounds":[0,1],"items":[["a",1],["b",{"$":"empty"}]]})");
  EXPECT_EQ(JsonFromVariant(MakeRecord("tsRvkTipiMov", {{"Cons", Variant::Boolean(false)},
                                                        {"Ins", Variant::Boolean(true)}}),
                            objects)
                .dump(),
            R"({"$":"record","type":"tsRvkTipiMov","fields":{"Cons":false,"Ins":true}})");
  EXPECT_EQ(JsonFromVariant(Variant(int16_t{-3}), objects).dump(), "-3");
  auto host = std::make_shared<HostObject>();
  const Json object_json = JsonFromVariant(Variant(ObjectRef(host)), objects);
  EXPECT_EQ(object_json["$"], "object");
  EXPECT_EQ(objects.Get(object_json["id"].get<int64_t>()), host);
}

TEST(JsonValues, RecordsetFromItsCurrentPosition) {
  ObjectTable objects;
  auto connection = demo::OpenDemoDatabase(":memory:");
  auto rows = connection->Execute(
      "SELECT FW07_ID, FW07_CODICE FROM FW07_APPUSER WHERE FW07_ID IN (5, 6, 7) ORDER BY FW07_ID");
  rows->MoveNext();
  EXPECT_EQ(
      JsonFromVariant(Variant(ObjectRef(rows)), objects).dump(),
      R"({"$":"recordset","columns":["FW07_ID","FW07_CODICE"],"rows":[[6,"BIANCHI"],[7,"VERDI"]]})");
  auto none = connection->Execute("UPDATE FW07_APPUSER SET FW07_DESCR = FW07_DESCR WHERE 1 = 0");
  EXPECT_EQ(JsonFromVariant(Variant(ObjectRef(none)), objects).dump(),
            R"({"$":"recordset","columns":[],"rows":[]})");
  EXPECT_EQ(objects.Size(), 0u);
}

// The answer writer's short cut for plain ASCII strings writes what the library writes.
TEST(JsonValues, AnswerTextIsTheLibrarysCompactText) {
  const Json answer = Json::parse(R"({"ok":true,"id":-7,"big":18446744073709551615,"d":-0.5,
      "e":1e300,"n":null,"s":"a \"q\" \\ \t\u0001 \u00e8 \u20ac end","empty":{},"list":[[],[1,[2]],
      {"k":"v"}],"plain":"SELECT 1 FROM T WHERE A = 'x'"})");
  Json raw = answer;
  raw["bad"] = std::string("\xC3\x28 \xFF tail");  // not UTF-8: replaced as the library does
  for (const Json& j : {answer, raw}) {
    EXPECT_EQ(AnswerText(j), j.dump(-1, ' ', false, Json::error_handler_t::replace));
  }
}

class HostSessionTest : public ::testing::Test {
 protected:
  Json Send(const std::string& line) {
    const std::string answer = session_.Handle(line);
    EXPECT_EQ(answer.find('\n'), std::string::npos);
    return Json::parse(answer);
  }
  Json Send(const Json& request) { return Send(request.dump()); }
  int64_t New(const std::string& cls) {
    const Json a = Send(Json{{"op", "new"}, {"class", cls}});
    EXPECT_TRUE(a["ok"].get<bool>()) << a.dump();
    return a["id"].get<int64_t>();
  }
  Json Get(int64_t id, const std::string& name) {
    return Send(Json{{"op", "get"}, {"id", id}, {"name", name}});
  }
  Json Put(int64_t id, const std::string& name, const Json& value) {
    return Send(Json{{"op", "put"}, {"id", id}, {"name", name}, {"value", value}});
  }
  static Json Ref(int64_t id) { return Json{{"$", "object"}, {"id", id}}; }

  HostSession session_;
};

TEST_F(HostSessionTest, NewThenPutAndGetConvertToTheDeclaredTypes) {
  EXPECT_EQ(session_.Handle(R"({"op":"new","class":"CLSFW_PARSER"})"),
            R"({"ok":true,"id":1,"boxes":[],"sql":[]})");
  const int64_t filter = New("CLSFW_FILTROQUERY");
  EXPECT_EQ(filter, 2);
  const struct {
    const char* name;
    Json put, got;
  } fields[] = {
      {"RevokeDisabilitata", 0, false},
      {"IdAgente", nullptr, nullptr},
  };
  for (const auto& f : fields) {
    EXPECT_EQ(Put(filter, f.name, f.put), Json::parse(R"({"ok":true,"boxes":[],"sql":[]})"));
    EXPECT_EQ(Get(filter, f.name)["value"], f.got) << f.name;
  }
  // Object properties: Set and read back the same object, or Nothing.
  const int64_t connection = New("Connection");
  EXPECT_EQ(Get(filter, "ConnectionADO")["value"], Json({{"$", "nothing"}}));
  Put(filter, "ConnectionADO", Ref(connection));
  EXPECT_EQ(Get(filter, "ConnectionADO")["value"], Ref(connection));
  EXPECT_EQ(Get(New("CLSFW_RVKUSERS"), "IsRevoked")["value"], 0);  // an enum is a number
}

TEST_F(HostSessionTest, StatementsAndRecordsetsOfAConnection) {
  const int64_t c = New("Connection");
  Put(c, "ConnectionString", "Provider=SQLite;Data Source=:memory:");
  const Json open =
      Send(Json{{"op", "call"}, {"id", c}, {"name", "Open"}, {"args", Json::array()}});
  EXPECT_EQ(open, Json::parse(R"({"ok":true,"value":null,"args":[],"boxes":[],"sql":[]})"));
  const std::string text = "SELECT 5 AS FW07_ID, 'ROSSI' AS FW07_CODICE";
  const Json rows = Send(Json{{"op", "call"}, {"id", c}, {"name", "Execute"}, {"args", {text}}});
  EXPECT_EQ(rows["value"]["rows"], Json::parse(R"([[5,"ROSSI"]])"));
  EXPECT_EQ(rows["args"], Json::array({text}));
  EXPECT_EQ(rows["sql"], Json::array({text}));
  // The next request starts with empty lists again.
  EXPECT_EQ(Get(c, "State")["sql"], Json::array());

  // Dropping a parser that holds the host's connection leaves it open; the
  // id is gone and not given again.
  const int64_t parser = New("CLSFW_PARSER");
  Put(parser, "ConnectionADO", Ref(c));
  EXPECT_EQ(Send(Json{{"op", "drop"}, {"id", parser}}),
            Json::parse(R"({"ok":true,"boxes":[],"sql":[]})"));
  EXPECT_EQ(Get(c, "State")["value"], 1);
  EXPECT_EQ(Get(parser, "MaxNumTry")["number"], 424);
  EXPECT_NE(New("CLSFW_RVKUSERS"), parser);
}

TEST_F(HostSessionTest, RequestsTheBoundaryCannotServe) {
  const int64_t parser = New("CLSFW_PARSER");
  const std::vector<std::pair<std::string, int>> cases = {
      // request, error number (0: none)
      {"{not json", 0},
      {"", 0},
      {"[1,2]", 0},
      {R"({"op":"fly"})", 0},
      {R"({"op":"get","id":1})", 0},
      {R"({"op":"get","id":"1","name":"CodiceUtente"})", 0},
      {R"({"op":"new","class":"CLSFW_NONE"})", 429},
      {R"({"op":"get","id":99,"name":"CodiceUtente"})", 424},
      {R"({"op":"drop","id":99})", 424},
      {R"({"op":"get","id":1,"name":"NoSuchMember"})", 438},
      {R"({"op":"put","id":1,"name":"CodiceUtente","value":{"$":"bogus"}})", 13},
      {R"({"op":"call","id":1,"name":"CodiceUtente","args":{}})", 0},
  };
  ASSERT_EQ(parser, 1);
  for (const auto& [line, number] : cases) {
    const Json a = Send(line);
    EXPECT_EQ(a["ok"], false) << line;
    EXPECT_TRUE(a["error"].is_string() && !a["error"].get<std::string>().empty()) << line;
    EXPECT_EQ(a.value("number", 0), number) << line;
  }
  EXPECT_EQ(Send(std::string(R"({"op":5})"))["error"], "\"op\" must be a string");
  EXPECT_EQ(Get(parser, "CodiceUtente")["value"], "");  // the session goes on
}

// A HostObject request whose line nests `depth` JSON levels in all.
std::string NestedMembers(size_t depth) {
  std::string line = R"({"op":"new","class":"HostObject","members":)";
  for (size_t i = 2; i < depth; ++i) line += R"({"a":)";
  line += "{}";
  line.append(depth > 2 ? depth - 2 : 0, '}');
  return line + "}";
}

TEST(HostLimits, NestingDeeperThanTheLimitIsRefusedAndTheSessionGoesOn) {
  const struct {
    std::string line;
    bool refused;
  } cases[] = {
      {NestedMembers(kMaxJsonNesting), false},
      {NestedMembers(kMaxJsonNesting + 1), true},
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
    // ... and to a second parser through both company fields.
    ObjectRef twin = CreateObject(BuildTypeLibrary(), "CLSFW_PARSER", CreationContext{});
    parser->PutProperty("DittaCorrente", Variant(twin));
    twin->PutProperty("DittaCorrente", Variant(parser));
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
