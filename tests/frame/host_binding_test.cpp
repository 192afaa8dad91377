// Binding the host's application object: which members fill which field,
// and that a member the host lacks (or a failing one) fills nothing and
// raises nothing.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "db/connection.h"
#include "frame/host_object.h"
#include "frame/revocation_frame.h"
#include "frame_test_support.h"
#include "platform/variant.h"

namespace zarvik {
namespace {

// The host's application object as the host ERP builds it, with each piece
// removable by a case.
struct HostParts {
  std::shared_ptr<HostObject> app = std::make_shared<HostObject>("Application");
  std::shared_ptr<HostObject> global = std::make_shared<HostObject>("ClsGlobal");
  std::shared_ptr<HostObject> company = std::make_shared<HostObject>("Ditta");
  std::shared_ptr<HostObject> user = std::make_shared<HostObject>("Utente");
  std::shared_ptr<db::Connection> connection = std::make_shared<db::Connection>();

  HostParts() {
    company->Set("CodDitta", Variant(int32_t{2}));
    user->Set("idutente", Variant("5"))
        .Set("codice", Variant("ROSSI"))
        .Set("Gruppo", Variant("VEN"));
    global->Set("Gcls_DittaCorrente", Variant(ObjectRef(company)))
        .Set("Gcls_UtenteCorrente", Variant(ObjectRef(user)));
    app->Set("ClsGlobal", Variant(ObjectRef(global)))
        .Set("Connection", Variant(ObjectRef(connection)));
  }
};

struct Expected {
  Variant ditta;  // DittaCorrente after the binding
  int32_t user_id;
  std::string codice;
  std::string gruppo;
  bool connection_taken;
};

struct BindingCase {
  const char* name;
  std::function<void(HostParts&)> change;
  Expected expected;
};

// The frame starts with these values so that "unchanged" is visible.
constexpr int32_t kIdBefore = 77;
const char* const kCodeBefore = "PRIMA";
const char* const kGroupBefore = "GRP";

void PrintTo(const BindingCase& c, std::ostream* out) { *out << c.name; }

class HostBindingTest : public ::testing::TestWithParam<BindingCase> {};

TEST_P(HostBindingTest, FillsWhatTheHostHas) {
  const BindingCase& c = GetParam();
  HostParts parts;
  c.change(parts);
  testing::RecordingEnv rec;
  RevocationFrame frame(ParserFrameSettings(), rec.env);
  frame.SetIdUser(kIdBefore);
  frame.ctx.CodiceUtente = kCodeBefore;
  frame.ctx.CodiceGruppo = kGroupBefore;
  frame.ctx.DittaCorrente = Variant("D0");

  frame.SetActiveInterface(parts.app);

  EXPECT_EQ(frame.ActiveInterface(), parts.app);
  EXPECT_EQ(frame.ctx.DittaCorrente.Type(), c.expected.ditta.Type());
  EXPECT_TRUE(VbEquals(frame.ctx.DittaCorrente, c.expected.ditta));
  EXPECT_EQ(frame.UserId(), c.expected.user_id);
  EXPECT_EQ(frame.ctx.CodiceUtente, c.expected.codice);
  EXPECT_EQ(frame.ctx.CodiceGruppo, c.expected.gruppo);
  EXPECT_EQ(frame.ctx.ConnectionADO == parts.connection, c.expected.connection_taken);
  if (!c.expected.connection_taken) {
    EXPECT_EQ(frame.ctx.ConnectionADO, nullptr);
  }
  // Nothing surfaces: no box, no user marked as resolved, no statement.
  EXPECT_TRUE(rec.sink->messages.empty());
  EXPECT_FALSE(frame.UserResolved());
  // Never touched by the binding.
  EXPECT_EQ(frame.ctx.CodiceUtenteCLIFOR, "");
  EXPECT_TRUE(frame.ctx.IdAgente.IsEmpty());
  EXPECT_TRUE(frame.ctx.DittaAgente.IsEmpty());
  EXPECT_TRUE(frame.ctx.CodiceAgente.IsEmpty());
}

const Variant kD0("D0");
const Variant kTwo(int32_t{2});

INSTANTIATE_TEST_SUITE_P(
    Cases, HostBindingTest,
    ::testing::Values(
        BindingCase{"FullHostObject", [](HostParts&) {}, {kTwo, 5, "ROSSI", "VEN", true}},
        BindingCase{"NoClsGlobal",
                    [](HostParts& p) { p.app->Remove("ClsGlobal"); },
                    {kD0, kIdBefore, kCodeBefore, kGroupBefore, true}},
        BindingCase{"CompanyCodeKeepsItsType",
                    [](HostParts& p) { p.company->Set("CodDitta", Variant("0001")); },
                    {Variant("0001"), 5, "ROSSI", "VEN", true}},
        BindingCase{"NoUser",
                    [](HostParts& p) { p.global->Remove("Gcls_UtenteCorrente"); },
                    {kTwo, kIdBefore, kCodeBefore, kGroupBefore, true}},
        BindingCase{"UserIdNotNumeric",
                    [](HostParts& p) { p.user->Set("idutente", Variant("abc")); },
                    {kTwo, kIdBefore, "ROSSI", "VEN", true}},
        BindingCase{"UserWithoutCode",
                    [](HostParts& p) { p.user->Remove("codice"); },
                    {kTwo, 5, kCodeBefore, "VEN", true}},
        BindingCase{"NumericCodeAsText",
                    [](HostParts& p) { p.user->Set("codice", Variant(int32_t{42})); },
                    {kTwo, 5, "42", "VEN", true}},
        BindingCase{"NoConnection",
                    [](HostParts& p) { p.app->Remove("Connection"); },
                    {kTwo, 5, "ROSSI", "VEN", false}},
        BindingCase{"ConnectionNotAConnection",
                    [](HostParts& p) {
                      p.app->Set("Connection", Variant(ObjectRef(std::make_shared<HostObject>())));
                    },
                    {kTwo, 5, "ROSSI", "VEN", false}},
        BindingCase{"MemberNamesIgnoreCase",
                    [](HostParts& p) {
                      p.app->Remove("ClsGlobal");
                      p.app->Set("CLSGLOBAL", Variant(ObjectRef(p.global)));
                      p.user->Remove("codice");
                      p.user->Set("Codice", Variant("NERI"));
                    },
                    {kTwo, 5, "NERI", "VEN", true}}),
    [](const ::testing::TestParamInfo<BindingCase>& info) { return std::string(info.param.name); });

// The connection is taken only while ConnectionADO is Nothing; binding
// Nothing afterwards only stores the empty reference.
TEST(HostBinding, LaterBindingsKeepWhatTheFirstTook) {
  HostParts parts;
  RevocationFrame mine(ParserFrameSettings(), testing::RecordingEnv().env);
  auto own = std::make_shared<db::Connection>();
  mine.ctx.ConnectionADO = own;
  mine.SetActiveInterface(parts.app);
  EXPECT_EQ(mine.ctx.ConnectionADO, own);

  RevocationFrame frame(ParserFrameSettings(), testing::RecordingEnv().env);
  frame.SetActiveInterface(parts.app);
  HostParts second;
  frame.SetActiveInterface(second.app);
  EXPECT_EQ(frame.ctx.ConnectionADO, parts.connection);
  frame.ctx.CodiceUtente = "BIANCHI";
  frame.SetActiveInterface(nullptr);
  EXPECT_EQ(frame.ActiveInterface(), nullptr);
  EXPECT_EQ(frame.ctx.CodiceUtente, "BIANCHI");
  EXPECT_EQ(frame.UserId(), 5);
  EXPECT_EQ(frame.ctx.ConnectionADO, parts.connection);
}

TEST(HostBinding, AMemberThatFailsWhenReadIsSkipped) {
  // A host object whose every member read fails with an error of its own.
  class FailingObject : public Object {
   public:
    std::string TypeName() const override { return "Failing"; }
    Variant GetProperty(const std::string&) override { throw VbError(vberr::kProviderError, "x"); }
  };
  RevocationFrame frame(ParserFrameSettings(), testing::RecordingEnv().env);
  frame.ctx.CodiceUtente = "ROSSI";
  auto app =
      MakeHostObject({{"ClsGlobal", Variant(ObjectRef(std::make_shared<FailingObject>()))},
                      {"Connection", Variant(ObjectRef(std::make_shared<FailingObject>()))}});
  frame.SetActiveInterface(app);
  EXPECT_EQ(frame.ctx.CodiceUtente, "ROSSI");
  EXPECT_EQ(frame.ctx.ConnectionADO, nullptr);
}

}  // namespace
}  // namespace zarvik
