// zarvik_test_ado.dll: the tests' own ADO (com/ado_objects.h) as an
// in-process COM server. The Wine test prefix registers it, and only there,
// under ADO's ProgIDs ADODB.Connection and ADODB.Command (Wine's own ADO
// returns no rows from a SELECT). ZarvikTests.Record shows a script the
// fields of a record (VT_RECORD), which VBScript cannot read itself.
#include <olectl.h>
#include <windows.h>

#include <memory>
#include <vector>

#include "automation/record_object.h"
#include "com/ado_objects.h"
#include "com/com_values.h"
#include "com/object_dispatch.h"
#include "com/server.h"
#include "platform/vb_string.h"

namespace zarvik::com {
namespace {

// Fields(record): "Name=value" for every field, separated by blanks.
class RecordReader : public Object {
 public:
  std::string TypeName() const override { return "RecordReader"; }
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override {
    if (vb::UCase(name) != "FIELDS" || args.size() != 1) return Object::CallMethod(name, args);
    auto record = std::dynamic_pointer_cast<automation::RecordObject>(args[0].ToObject());
    if (!record) throw VbError(vberr::kTypeMismatch);
    std::string text;
    for (const auto& [field, value] : record->Fields()) {
      text += (text.empty() ? "" : " ") + field + "=" + value.ToString();
    }
    return Variant(text);
  }
};

template <class Make>
ServerClass Class(const char* prog_id, Make make) {
  return {GuidOf(std::string("ZARVIK.tests.") + prog_id), prog_id, prog_id,
          [make](REFIID riid, void** out) {
            auto* object = new ObjectDispatch(make(), ValueContext{});
            const HRESULT hr = object->QueryInterface(riid, out);
            object->Release();
            return hr;
          }};
}

std::vector<ServerClass> Classes() {
  auto ado = std::make_shared<testing::AdoFactory>();
  return {Class("ADODB.Connection", [ado] { return ado->CreateObject("ADODB.Connection"); }),
          Class("ADODB.Command", [ado] { return ado->CreateObject("ADODB.Command"); }),
          Class("ZarvikTests.Record", [] { return std::make_shared<RecordReader>(); })};
}

}  // namespace
}  // namespace zarvik::com

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* out) {
  return zarvik::com::GetClassObject(zarvik::com::Classes(), clsid, riid, out);
}
STDAPI DllCanUnloadNow() { return S_FALSE; }
STDAPI DllRegisterServer() {
  return zarvik::com::RegisterClasses(zarvik::com::Classes(), nullptr, false, true);
}
STDAPI DllUnregisterServer() {
  return zarvik::com::RegisterClasses(zarvik::com::Classes(), nullptr, false, false);
}
