// Values of the host protocol in both directions.
#include "automation/json_values.h"

#include <gtest/gtest.h>

#include <memory>

#include "automation/record_object.h"
#include "db/connection.h"
#include "demo/demo_db.h"
#include "frame/host_object.h"
#include "platform/env.h"
#include "platform/vb_error.h"

namespace zarvik::automation {
namespace {

TEST(JsonValues, ScalarsIn) {
  ObjectTable objects;
  struct Case {
    const char* json;
    VarType type;
    const char* text;  // ConcatText of the Variant
  };
  const Case cases[] = {
      {R"("abc")", VarType::kString, "abc"},
      {"1", VarType::kLong, "1"},
      {"-2147483648", VarType::kLong, "-2147483648"},
      {"3000000000", VarType::kDouble, "3000000000"},
      {"2.5", VarType::kDouble, "2.5"},
      {"true", VarType::kBoolean, "True"},
      {"false", VarType::kBoolean, "False"},
      {"null", VarType::kNull, ""},
      {R"({"$":"empty"})", VarType::kEmpty, ""},
      {R"({"$":"date","value":"2024-02-29 13:05:09"})", VarType::kDate, ""},
  };
  for (const Case& c : cases) {
    const Variant v = VariantFromJson(Json::parse(c.json), objects);
    EXPECT_EQ(v.Type(), c.type) << c.json;
    if (c.type != VarType::kDate) {
      EXPECT_EQ(v.ConcatText(), c.text) << c.json;
    }
  }
  EXPECT_TRUE(VariantFromJson(Json::parse(R"({"$":"nothing"})"), objects).IsNothing());
  EXPECT_EQ(VariantFromJson(Json::parse("true"), objects).RawNumber(), -1);
}

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

TEST(JsonValues, ResultsOut) {
  ObjectTable objects;
  EXPECT_EQ(JsonFromVariant(Variant(), objects).dump(), R"({"$":"empty"})");
  EXPECT_EQ(JsonFromVariant(Variant::Null(), objects).dump(), "null");
  EXPECT_EQ(JsonFromVariant(Variant::Boolean(true), objects).dump(), "true");
  EXPECT_EQ(JsonFromVariant(Variant(int16_t{-3}), objects).dump(), "-3");
  EXPECT_EQ(JsonFromVariant(Variant(0.5), objects).dump(), "0.5");
  EXPECT_EQ(JsonFromVariant(Variant("x"), objects).dump(), R"("x")");
  EXPECT_EQ(JsonFromVariant(Variant::Nothing(), objects).dump(), R"({"$":"nothing"})");
  EXPECT_EQ(JsonFromVariant(Variant::Date(DateFromText("2024-01-31 08:00:00")), objects).dump(),
            R"({"$":"date","value":"2024-01-31 08:00:00"})");
  EXPECT_EQ(JsonFromVariant(MakeRecord("tsRvkTipiMov", {{"Cons", Variant::Boolean(false)},
                                                        {"Ins", Variant::Boolean(true)}}),
                            objects)
                .dump(),
            R"({"$":"record","type":"tsRvkTipiMov","fields":{"Cons":false,"Ins":true}})");

  auto array = std::make_shared<VariantArray>(0, 1, 1, 2);
  array->At(0, 1) = Variant("a");
  array->At(0, 2) = Variant(int32_t{1});
  array->At(1, 1) = Variant("b");
  EXPECT_EQ(JsonFromVariant(Variant(array), objects).dump(),
            R"({"$":"array","lbounds":[0,1],"items":[["a",1],["b",{"$":"empty"}]]})");

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

// The answer writer takes a short cut for plain ASCII strings; every other
// value must come out exactly as the JSON library writes it.
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

}  // namespace
}  // namespace zarvik::automation
