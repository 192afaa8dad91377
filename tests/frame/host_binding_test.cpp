// Binding the host's application object: which members fill which field.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "db/connection.h"
#include "frame/host_object.h"
#include "frame/revocation_frame.h"
#include "frame_test_support.h"
#include "platform/variant.h"

namespace zarvik {
namespace {

// The host's application object as the host ERP builds it.
struct HostParts {
  std::shared_ptr<HostObject> app = std::make_shared<HostObject>("Application");
  std::shared_ptr<HostObject> global = std::make_shared<HostObject>("ClsGlobal");
  std::shared_ptr<HostObject> company = std::make_shared<HostObject>("Ditta");
  std::shared_ptr<HostObject> user = std::make_shared<HostObject>("Utente");
  std::shared_ptr<db::Connection> connection = std::make_shared<db::Connection>();
  std::shared_ptr<db::Connection> frames_own;  // the frame's connection before the binding

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

// A host object whose every member read fails with an error of its own.
struct FailingObject : Object {
  std::string TypeName() const override { return "Failing"; }
  Variant GetProperty(const std::string&) override { throw VbError(vberr::kProviderError, "x"); }
};

// DittaCorrente (with its type), user id, user code, group, whose connection.
std::string Bound(const RevocationFrame& f, const HostParts& p) {
  const Variant& d = f.ctx.DittaCorrente;
  const char* type = d.Type() == VarType::kLong     ? "Long "
                     : d.Type() == VarType::kString ? ""
                                                    : "? ";
  return type + d.ConcatText() + " " + std::to_string(f.UserId()) + " " + f.ctx.CodiceUtente + " " +
         f.ctx.CodiceGruppo +
         (f.ctx.ConnectionADO == p.connection ? " taken"
          : f.ctx.ConnectionADO               ? " other"
                                              : " none");
}

TEST(HostBinding, FillsWhatTheHostHas) {
  const std::vector<std::tuple<const char*, std::function<void(HostParts&)>, const char*>> cases = {
      {"full host object", [](HostParts&) {}, "Long 2 5 ROSSI VEN taken"},
      {"no ClsGlobal", [](HostParts& p) { p.app->Remove("ClsGlobal"); }, "D0 77 PRIMA GRP taken"},
      {"company code keeps its type",
       [](HostParts& p) { p.company->Set("CodDitta", Variant("0001")); }, "0001 5 ROSSI VEN taken"},
      {"no user", [](HostParts& p) { p.global->Remove("Gcls_UtenteCorrente"); },
       "Long 2 77 PRIMA GRP taken"},
      {"user id not numeric", [](HostParts& p) { p.user->Set("idutente", Variant("abc")); },
       "Long 2 77 ROSSI VEN taken"},
      {"user without code", [](HostParts& p) { p.user->Remove("codice"); },
       "Long 2 5 PRIMA VEN taken"},
      {"numeric code as text", [](HostParts& p) { p.user->Set("codice", Variant(int32_t{42})); },
       "Long 2 5 42 VEN taken"},
      {"no connection", [](HostParts& p) { p.app->Remove("Connection"); },
       "Long 2 5 ROSSI VEN none"},
      {"connection not a connection",
       [](HostParts& p) { p.app->Set("Connection", Variant(ObjectRef(MakeHostObject()))); },
       "Long 2 5 ROSSI VEN none"},
      {"members that fail when read",
       [](HostParts& p) {
         p.app->Set("ClsGlobal", Variant(ObjectRef(std::make_shared<FailingObject>())));
         p.app->Set("Connection", Variant(ObjectRef(std::make_shared<FailingObject>())));
       },
       "D0 77 PRIMA GRP none"},
      {"a connection of the frame's own is kept",
       [](HostParts& p) { p.frames_own = std::make_shared<db::Connection>(); },
       "Long 2 5 ROSSI VEN other"}};

  for (const auto& [name, change, bound] : cases) {
    HostParts parts;
    change(parts);
    testing::RecordingEnv rec;
    RevocationFrame frame(ParserFrameSettings(), rec.env);
    frame.SetIdUser(77);  // starting values, so that "unchanged" shows
    frame.ctx.CodiceUtente = "PRIMA";
    frame.ctx.CodiceGruppo = "GRP";
    frame.ctx.DittaCorrente = Variant("D0");
    frame.ctx.ConnectionADO = parts.frames_own;
    frame.SetActiveInterface(parts.app);
    EXPECT_EQ(Bound(frame, parts), bound) << name;
    EXPECT_TRUE(rec.sink->messages.empty());  // nothing surfaces, nothing is resolved
    EXPECT_FALSE(frame.UserResolved());
  }
}

TEST(HostBinding, UnbindingKeepsWhatTheBindingFilled) {
  HostParts parts;
  RevocationFrame frame(ParserFrameSettings(), testing::RecordingEnv().env);
  frame.SetActiveInterface(parts.app);
  frame.ctx.CodiceUtente = "BIANCHI";
  frame.SetActiveInterface(nullptr);
  EXPECT_EQ(frame.ActiveInterface(), nullptr);
  EXPECT_EQ(Bound(frame, parts), "Long 2 5 BIANCHI VEN taken");
}

}  // namespace
}  // namespace zarvik
