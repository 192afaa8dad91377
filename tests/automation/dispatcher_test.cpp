// Late-bound invocation through a description: coercion to the declared
// types, defaults of omitted arguments, by-reference results and the
// automation errors of a call the boundary cannot make.
#include "automation/dispatcher.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "automation/automation_object.h"
#include "automation/class_builder.h"
#include "automation/record_object.h"
#include "db/connection.h"
#include "frame/host_object.h"
#include "platform/vb_error.h"

namespace zarvik::automation {
namespace {

// A class with one member of each shape the component's classes use.
class Probe {
 public:
  explicit Probe(const Env& /*env*/) {}
  void SetStatementLog(std::shared_ptr<db::StatementLog> /*log*/) {}

  // Echo members that show the type each argument arrived with.
  int16_t Small(int16_t v) { return v; }
  bool Flag(bool v) { return v; }
  std::string Text(const std::string& v) { return v; }
  Variant Any(const Variant& v) { return v; }

  void Bump(int16_t& n, std::string& s, const std::string& untouched) {
    n = static_cast<int16_t>(n + 1);
    s += "!";
    last_untouched = untouched;
  }
  std::string Opt(const std::string& a, std::optional<std::string> b, const std::string& c,
                  bool d) {
    return a + "|" + (b ? *b : "<missing>") + "|" + c + "|" + (d ? "T" : "F");
  }
  void OptRef(std::optional<std::string>& b) {
    if (b) *b += "?";
  }
  std::string ConnectionKind(std::shared_ptr<db::Connection> c) {
    return c ? "connection" : "nothing";
  }
  Variant Rights() {
    return MakeRecord("tsProbe",
                      {{"Abilitato", Variant::Boolean(true)}, {"Num", Variant(int16_t{3})}});
  }
  std::string Value() const { return value_; }
  void SetValue(const std::string& v) { value_ = v; }

  std::string last_untouched;

 private:
  std::string value_ = "start";
};

std::shared_ptr<const ClassDescription> DescribeProbe() {
  auto cls = std::make_shared<ClassDescription>();
  ClassBuilder<Probe> b(*cls, "Probe", "test class");
  b.Method("Small", {In("v", types::Integer())}, types::Integer(), &Probe::Small)
      .Method("Flag", {In("v", types::Boolean())}, types::Boolean(), &Probe::Flag)
      .Method("Text", {In("v", types::String())}, types::String(), &Probe::Text)
      .Method("Any", {In("v", types::Variant())}, types::Variant(), &Probe::Any)
      .Method("Bump",
              {ByRef("n", types::Integer()), ByRef("s", types::String()),
               In("untouched", types::String())},
              types::Void(), &Probe::Bump)
      .Method("Opt",
              {In("a", types::String()), In("b", types::String()).Optional(),
               In("c", types::String()).Optional("dflt"),
               In("d", types::Boolean()).Optional(Variant::Boolean(true))},
              types::String(), &Probe::Opt)
      .Method("OptRef", {ByRef("b", types::String()).Optional()}, types::Void(), &Probe::OptRef)
      .Method("ConnectionKind", {In("c", types::Connection())}, types::String(),
              &Probe::ConnectionKind)
      .Method("Rights", {}, types::Record("tsProbe"), &Probe::Rights)
      .Get("Value", types::String(), &Probe::Value)
      .Let("Value", types::String(), &Probe::SetValue);
  return cls;
}

class DispatcherTest : public ::testing::Test {
 protected:
  Variant Call(const std::string& name, std::vector<Argument>& args) {
    return InvokeMethod(*cls_, &probe_, name, args);
  }
  Variant Call1(const std::string& name, const Variant& v) {
    std::vector<Argument> args{{v, false}};
    return Call(name, args);
  }
  int32_t ErrorOf(const std::string& name, std::vector<Argument> args) {
    try {
      Call(name, args);
    } catch (const VbError& e) {
      return e.Number();
    }
    return 0;
  }

  std::shared_ptr<const ClassDescription> cls_ = DescribeProbe();
  Probe probe_{Env{}};
};

struct CoercionCase {
  const char* member;
  Variant in;
  VarType out_type;
  Variant out;  // compared with VbEquals
};

TEST_F(DispatcherTest, ArgumentsArriveInTheDeclaredType) {
  const std::vector<CoercionCase> cases = {
      {"Small", Variant(int32_t{1}), VarType::kInteger, Variant(int16_t{1})},  // JSON 1
      {"Small", Variant("12"), VarType::kInteger, Variant(int16_t{12})},
      {"Small", Variant(2.5), VarType::kInteger, Variant(int16_t{2})},  // banker's rounding
      {"Small", Variant::Boolean(true), VarType::kInteger, Variant(int16_t{-1})},
      {"Small", Variant(), VarType::kInteger, Variant(int16_t{0})},
      {"Flag", Variant(int32_t{1}), VarType::kBoolean, Variant::Boolean(true)},
      {"Text", Variant(int32_t{5}), VarType::kString, Variant("5")},
      {"Text", Variant::Boolean(true), VarType::kString, Variant("True")},
      {"Any", Variant::Null(), VarType::kNull, Variant::Null()},
  };
  for (const CoercionCase& c : cases) {
    const Variant got = Call1(c.member, c.in);
    EXPECT_EQ(got.Type(), c.out_type) << c.member << "(" << c.in.ConcatText() << ")";
    if (c.out_type != VarType::kNull) {
      EXPECT_TRUE(VbEquals(got, c.out)) << c.member << "(" << c.in.ConcatText() << ")";
    }
  }
  // True crosses as -1.
  EXPECT_EQ(Call1("Flag", Variant(int32_t{5})).RawNumber(), -1);
}

TEST_F(DispatcherTest, CallsTheBoundaryCannotMakeAreErrors) {
  const auto object = Variant(ObjectRef(std::make_shared<HostObject>()));
  const Argument one{Variant(int32_t{1}), false};
  const struct {
    const char* member;
    std::vector<Argument> args;
    int32_t error;
  } cases[] = {
      {"Small", {{Variant(int32_t{40000}), false}}, vberr::kOverflow},
      {"Small", {{Variant("abc"), false}}, vberr::kTypeMismatch},
      {"Small", {{Variant::Null(), false}}, vberr::kTypeMismatch},
      {"Text", {{object, false}}, vberr::kTypeMismatch},
      {"ConnectionKind", {{object, false}}, vberr::kTypeMismatch},
      {"ConnectionKind", {{Variant("DSN=x"), false}}, vberr::kTypeMismatch},
      {"Nope", {}, vberr::kNotSupported},
      {"Small", {}, vberr::kWrongArgCount},
      {"Small", {one, one}, vberr::kWrongArgCount},
      {"Opt", {Argument::Missing()}, kArgumentNotOptional},
  };
  for (const auto& c : cases) EXPECT_EQ(ErrorOf(c.member, c.args), c.error) << c.member;
  EXPECT_EQ(Call1("ConnectionKind", Variant::Nothing()).ToString(), "nothing");
  EXPECT_EQ(
      Call1("ConnectionKind", Variant(ObjectRef(std::make_shared<db::Connection>()))).ToString(),
      "connection");
  // Property put on a property without a Let.
  EXPECT_THROW(InvokePut(*cls_, &probe_, "Rights", Variant("x")), VbError);
}

TEST_F(DispatcherTest, ByReferenceArgumentsComeBackChanged) {
  std::vector<Argument> args{
      {Variant(int32_t{41}), false}, {Variant("hi"), false}, {Variant(int32_t{9}), false}};
  EXPECT_TRUE(Call("Bump", args).IsEmpty());
  EXPECT_EQ(args[0].value.Type(), VarType::kInteger);
  EXPECT_EQ(args[0].value.ToLong(), 42);
  EXPECT_EQ(args[1].value.ToString(), "hi!");
  // A by-value argument is left as the caller passed it.
  EXPECT_EQ(args[2].value.Type(), VarType::kLong);
  EXPECT_EQ(probe_.last_untouched, "9");

  // An omitted optional by-reference argument stays omitted.
  std::vector<Argument> omitted{Argument::Missing()};
  Call("OptRef", omitted);
  EXPECT_TRUE(omitted[0].missing);
  std::vector<Argument> given{{Variant("x"), false}};
  Call("OptRef", given);
  EXPECT_EQ(given[0].value.ToString(), "x?");
}

TEST_F(DispatcherTest, OmittedOptionalArguments) {
  struct Case {
    std::vector<Argument> args;
    const char* result;
  };
  std::vector<Case> cases = {
      {{{Variant("a"), false}}, "a|<missing>|dflt|T"},
      {{{Variant("a"), false}, Argument::Missing(), {Variant("c"), false}}, "a|<missing>|c|T"},
      {{{Variant("a"), false},
        {Variant(int32_t{2}), false},
        Argument::Missing(),
        {Variant(int32_t{0}), false}},
       "a|2|dflt|F"},
  };
  for (Case& c : cases) EXPECT_EQ(Call("Opt", c.args).ToString(), c.result);
}

TEST_F(DispatcherTest, NamesIgnoreCaseAndPropertiesAnswerCalls) {
  EXPECT_EQ(Call1("sMaLl", Variant(int32_t{3})).ToLong(), 3);
  InvokePut(*cls_, &probe_, "value", Variant(int32_t{12}));
  std::vector<Argument> none;
  EXPECT_EQ(InvokeGet(*cls_, &probe_, "VALUE", none).ToString(), "12");
  EXPECT_EQ(Call("Value", none).ToString(), "12");
  // A method without arguments answers a get.
  const Variant rights = InvokeGet(*cls_, &probe_, "Rights", none);
  auto record = std::dynamic_pointer_cast<RecordObject>(rights.ToObject());
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->TypeName(), "tsProbe");
  ASSERT_EQ(record->Fields().size(), 2u);
  EXPECT_EQ(record->Fields()[0].first, "Abilitato");
  EXPECT_EQ(record->GetProperty("num").ToLong(), 3);
}

TEST(ClassBuilder, DescriptionMustMatchTheCxxSignature) {
  ClassDescription cls;
  ClassBuilder<Probe> b(cls, "Probe", "");
  EXPECT_THROW(b.Method("Small", {}, types::Integer(), &Probe::Small), std::logic_error);
}

}  // namespace
}  // namespace zarvik::automation
