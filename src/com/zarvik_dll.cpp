// zarvik.dll: the three classes as an in-process COM server. Each instance
// gets its own Env: its message boxes (BoxSink), the system clock, and the
// host's ADO, reached by ProgID, for every connection (db::Connection's
// foreign peer).
#include <olectl.h>
#include <windows.h>

#include <memory>
#include <vector>

#include "automation/name_uuid.h"
#include "automation/type_library.h"
#include "com/com_values.h"
#include "com/dual_object.h"
#include "com/foreign_object.h"
#include "com/server.h"

// Declared by the Windows SDK's oleauto.h, not by mingw-w64's.
extern "C" {
HRESULT WINAPI RegisterTypeLibForUser(ITypeLib*, OLECHAR*, OLECHAR*);
HRESULT WINAPI UnRegisterTypeLibForUser(REFGUID, WORD, WORD, LCID, SYSKIND);
}

namespace zarvik::com {
namespace {

const char* const kLibrary = "ZARVIK";

ComPtr<ITypeLib> ModuleTypeLibrary() {
  ComPtr<ITypeLib> library;
  LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Out());
  return library;
}

HRESULT CreateInstance(const std::shared_ptr<const automation::TypeLibrary>& library, size_t index,
                       REFIID riid, void** out) {
  const auto& cls = library->classes[index];
  DualContext dual;
  dual.cls = cls;
  dual.boxes = std::make_shared<BoxSink>();
  dual.data_access = std::make_shared<ComObjectFactory>();
  dual.values.type_library = ModuleTypeLibrary();
  dual.iid = GuidOf(automation::InterfaceUuidName(kLibrary, cls->name));
  automation::CreationContext context;
  context.env = Env{dual.boxes, std::make_shared<SystemClock>(), dual.data_access};
  dual.instance = cls->create(context);
  IDispatch* object = NewDualObject(index, std::move(dual));
  if (!object) return E_UNEXPECTED;
  const HRESULT hr = object->QueryInterface(riid, out);
  object->Release();
  return hr;
}

std::vector<ServerClass> Classes() {
  auto library = std::make_shared<const automation::TypeLibrary>(automation::BuildTypeLibrary());
  std::vector<ServerClass> classes;
  for (size_t i = 0; i < library->classes.size(); ++i) {
    const auto& cls = *library->classes[i];
    classes.push_back(
        {GuidOf(automation::ClassUuidName(kLibrary, cls.name)),
         std::string(kLibrary) + "." + cls.name, cls.name,
         [library, i](REFIID riid, void** out) { return CreateInstance(library, i, riid, out); }});
  }
  return classes;
}

SYSKIND ThisSystem() { return sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32; }

HRESULT Register(bool per_user, bool install) {
  const GUID libid = GuidOf(automation::LibraryUuidName(kLibrary));
  HRESULT hr = RegisterClasses(Classes(), &libid, per_user, install);
  if (!install) {
    const HRESULT lib = per_user ? UnRegisterTypeLibForUser(libid, 1, 0, 0, ThisSystem())
                                 : UnRegisterTypeLib(libid, 1, 0, 0, ThisSystem());
    return FAILED(hr) ? hr : (lib == TYPE_E_REGISTRYACCESS ? lib : S_OK);
  }
  if (FAILED(hr)) return hr;
  ComPtr<ITypeLib> library = ModuleTypeLibrary();
  if (!library) return SELFREG_E_TYPELIB;
  std::wstring path = ModulePath();
  hr = per_user ? RegisterTypeLibForUser(library.get(), path.data(), nullptr)
                : RegisterTypeLib(library.get(), path.data(), nullptr);
  return FAILED(hr) ? SELFREG_E_TYPELIB : S_OK;
}

}  // namespace
}  // namespace zarvik::com

STDAPI DllGetClassObject(REFCLSID clsid, REFIID riid, LPVOID* out) {
  try {
    return zarvik::com::GetClassObject(zarvik::com::Classes(), clsid, riid, out);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

// No module-wide object count is kept: the module stays loaded for the life
// of the process.
STDAPI DllCanUnloadNow() { return S_FALSE; }

STDAPI DllRegisterServer() { return zarvik::com::Register(false, true); }

STDAPI DllUnregisterServer() { return zarvik::com::Register(false, false); }

STDAPI DllInstall(BOOL install, LPCWSTR command_line) {
  return zarvik::com::Register(zarvik::com::PerUserCommandLine(command_line), install != FALSE);
}
