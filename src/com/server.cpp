#include "com/server.h"

#include <objbase.h>
#include <olectl.h>

#include <atomic>

#include "com/com_values.h"

namespace zarvik::com {
namespace {

class ClassFactory : public IClassFactory {
 public:
  explicit ClassFactory(ServerClass cls) : cls_(std::move(cls)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    if (riid != IID_IUnknown && riid != IID_IClassFactory) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<IClassFactory*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    try {
      return cls_.create(riid, out);
    } catch (...) {
      return E_OUTOFMEMORY;
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  virtual ~ClassFactory() = default;
  std::atomic<ULONG> refs_{1};
  ServerClass cls_;
};

// A registry key path under the classes root, opened for writing.
class Key {
 public:
  Key(HKEY root, const std::wstring& path) {
    if (RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key_, nullptr) !=
        ERROR_SUCCESS) {
      key_ = nullptr;
    }
  }
  ~Key() {
    if (key_) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  bool Set(const wchar_t* name, const std::wstring& value) {
    return key_ && RegSetValueExW(
                       key_, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                       static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
  }

 private:
  HKEY key_ = nullptr;
};

std::wstring ReadDefault(HKEY root, const std::wstring& path) {
  wchar_t value[128] = {};
  DWORD size = sizeof value - sizeof(wchar_t);
  if (RegGetValueW(root, path.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, value, &size) !=
      ERROR_SUCCESS) {
    return L"";
  }
  return value;
}

}  // namespace

HRESULT GetClassObject(const std::vector<ServerClass>& classes, REFCLSID clsid, REFIID riid,
                       void** out) {
  if (!out) return E_POINTER;
  *out = nullptr;
  for (const ServerClass& cls : classes) {
    if (cls.clsid != clsid) continue;
    auto* factory = new ClassFactory(cls);
    const HRESULT hr = factory->QueryInterface(riid, out);
    factory->Release();
    return hr;
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

std::wstring ModulePath() {
  HMODULE module = nullptr;
  GetModuleHandleExW(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      reinterpret_cast<LPCWSTR>(&ModulePath), &module);
  wchar_t path[MAX_PATH];
  const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
  return std::wstring(path, length);
}

HRESULT RegisterClasses(const std::vector<ServerClass>& classes, const GUID* libid, bool per_user,
                        bool install) {
  HKEY classes_root = nullptr;
  if (RegCreateKeyExW(per_user ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE, L"Software\\Classes", 0,
                      nullptr, 0, KEY_ALL_ACCESS, nullptr, &classes_root,
                      nullptr) != ERROR_SUCCESS) {
    return SELFREG_E_CLASS;
  }
  bool ok = true;
  const std::wstring module = ModulePath();
  for (const ServerClass& cls : classes) {
    const std::wstring clsid_key = L"CLSID\\" + GuidText(cls.clsid);
    const std::wstring prog_id = Wide(cls.prog_id);
    if (!install) {
      RegDeleteTreeW(classes_root, clsid_key.c_str());
      if (ReadDefault(classes_root, prog_id + L"\\CLSID") == GuidText(cls.clsid)) {
        RegDeleteTreeW(classes_root, prog_id.c_str());
      }
      continue;
    }
    ok = Key(classes_root, clsid_key).Set(nullptr, Wide(cls.description)) &&
         Key(classes_root, clsid_key + L"\\InprocServer32").Set(nullptr, module) &&
         Key(classes_root, clsid_key + L"\\InprocServer32").Set(L"ThreadingModel", L"Apartment") &&
         Key(classes_root, clsid_key + L"\\ProgID").Set(nullptr, prog_id) &&
         (!libid || Key(classes_root, clsid_key + L"\\TypeLib").Set(nullptr, GuidText(*libid))) &&
         Key(classes_root, prog_id).Set(nullptr, Wide(cls.description)) &&
         Key(classes_root, prog_id + L"\\CLSID").Set(nullptr, GuidText(cls.clsid)) && ok;
  }
  RegCloseKey(classes_root);
  return ok ? S_OK : SELFREG_E_CLASS;
}

bool PerUserCommandLine(const wchar_t* command_line) {
  return command_line && _wcsicmp(command_line, L"user") == 0;
}

}  // namespace zarvik::com
