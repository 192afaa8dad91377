// early_client.exe CONNECTION_STRING [WIN32_DLL]: calls the registered
// component through the vtables of its dual interfaces, as an early-bound
// host does, and checks its type libraries: the registered one, and that the
// 32-bit DLL's describes the same types with the same GUIDs. Prints one line
// per failure and then "N passed, M failed".
#include <cstdio>
#include <cwchar>
#include <string>

#include "automation/name_uuid.h"
#include "com/com_values.h"
#include "zarvik_h.h"

namespace {

using zarvik::com::ComPtr;
using zarvik::com::GuidOf;

int passed = 0;
int failed = 0;

void Check(const char* what, bool ok) {
  if (ok) {
    ++passed;
  } else {
    ++failed;
    std::printf("FAIL early binding: %s\n", what);
  }
}

template <class T>
ComPtr<T> Create(const char* cls) {
  ComPtr<T> object;
  CoCreateInstance(GuidOf(zarvik::automation::ClassUuidName("ZARVIK", cls)), nullptr,
                   CLSCTX_INPROC_SERVER,
                   GuidOf(zarvik::automation::InterfaceUuidName("ZARVIK", cls)),
                   reinterpret_cast<void**>(object.Out()));
  return object;
}

// A BSTR for the duration of one call.
class Bstr {
 public:
  explicit Bstr(const wchar_t* text) : b_(SysAllocString(text)) {}
  ~Bstr() { SysFreeString(b_); }
  Bstr(const Bstr&) = delete;
  Bstr& operator=(const Bstr&) = delete;
  operator BSTR() const { return b_; }  // NOLINT(google-explicit-constructor)

 private:
  BSTR b_;
};

// The hidden member of the late-bound interface: record boxes, then count them.
DISPID BoxesId(IDispatch* object) {
  DISPID id = DISPID_UNKNOWN;
  LPOLESTR name = const_cast<LPOLESTR>(L"ZarvikBoxes");
  object->GetIDsOfNames(IID_NULL, &name, 1, 0, &id);
  return id;
}

void ParserChecks(const std::wstring& connection) {
  ComPtr<_CLSFW_PARSER> p = Create<_CLSFW_PARSER>("CLSFW_PARSER");
  Check("CLSFW_PARSER created through its dual interface", static_cast<bool>(p));
  if (!p) return;
  VARIANT on;
  VariantInit(&on);
  on.vt = VT_BOOL;
  on.boolVal = VARIANT_TRUE;
  DISPID put = DISPID_PROPERTYPUT;
  DISPPARAMS set_boxes{&on, &put, 1, 1};
  Check("boxes recorded", SUCCEEDED(p->Invoke(BoxesId(p.get()), IID_NULL, 0, DISPATCH_PROPERTYPUT,
                                              &set_boxes, nullptr, nullptr, nullptr)));
  p->put_ConnectionStringADO(Bstr(connection.c_str()));
  p->put_CodiceGruppo(Bstr(L"VEN"));
  p->put_CodiceUtente(Bstr(L"ROSSI"));
  VARIANT company;
  VariantInit(&company);
  company.vt = VT_I4;
  company.lVal = 1;
  p->put_DittaCorrente(company);

  tsRvkFamiglia family{};
  Check("InitRevokeFamiglia answers", p->InitRevokeFamiglia(Bstr(L"MEC"), &family) == S_OK);
  Check("record fields TTFT",
        family.rvkExists == VARIANT_TRUE && family.CanDelete == VARIANT_TRUE &&
            family.CanUpdate == VARIANT_FALSE && family.CanInsert == VARIANT_TRUE);
  short can_abilitato = 7;
  short can_visualizza = 7;
  VARIANT_BOOL blocked = VARIANT_TRUE;
  p->ContoPDCBloccato(10, Bstr(L"1002"), &can_abilitato, &can_visualizza, &blocked);
  Check("ContoPDCBloccato by-reference results",
        blocked == VARIANT_FALSE && can_abilitato == 1 && can_visualizza == 0);
  BSTR condition = nullptr;
  p->SQLConditionCliFor(Bstr(L"CG44"), VARIANT_TRUE, Bstr(L""), Bstr(L""), Bstr(L""), VARIANT_TRUE,
                        &condition);
  Check("SQLConditionCliFor text",
        condition && std::wcsstr(condition, L" AND  NOT EXISTS  (SELECT RVKCLIFOR") == condition);
  SysFreeString(condition);
  IDispatch* states = nullptr;
  Check("StatiArticoloMaga recordset", p->StatiArticoloMaga(&states) == S_OK && states);
  if (states) states->Release();
  VARIANT array;
  VariantInit(&array);
  p->StatiArticoloMagaArray(&array);
  Check("StatiArticoloMagaArray array",
        array.vt == (VT_ARRAY | VT_VARIANT) && SafeArrayGetDim(array.parray) == 2);
  VariantClear(&array);
  VARIANT boxes;
  VariantInit(&boxes);
  DISPPARAMS none{nullptr, nullptr, 0, 0};
  p->Invoke(BoxesId(p.get()), IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &boxes, nullptr, nullptr);
  Check("no box", boxes.vt == VT_EMPTY);
  VariantClear(&boxes);
}

void TypeLibraryChecks(const wchar_t* win32_dll) {
  const GUID libid = GuidOf(zarvik::automation::LibraryUuidName("ZARVIK"));
  ComPtr<ITypeLib> registered;
  Check("type library registered", LoadRegTypeLib(libid, 1, 0, 0, registered.Out()) == S_OK);
  ComPtr<ITypeLib> win32;
  Check("32-bit type library loads",
        win32_dll && LoadTypeLibEx(win32_dll, REGKIND_NONE, win32.Out()) == S_OK);
  if (!registered || !win32) return;
  TLIBATTR* attr = nullptr;
  win32->GetLibAttr(&attr);
  Check("32-bit library is ZARVIK for Win32", attr->guid == libid && attr->syskind == SYS_WIN32);
  win32->ReleaseTLibAttr(attr);
  const UINT count = registered->GetTypeInfoCount();
  Check("both libraries hold the same types", count == win32->GetTypeInfoCount() && count > 10);
  for (UINT i = 0; i < count; ++i) {
    ComPtr<ITypeInfo> a;
    ComPtr<ITypeInfo> b;
    TYPEATTR* ta = nullptr;
    TYPEATTR* tb = nullptr;
    if (FAILED(registered->GetTypeInfo(i, a.Out())) || FAILED(win32->GetTypeInfo(i, b.Out())) ||
        FAILED(a->GetTypeAttr(&ta)) || FAILED(b->GetTypeAttr(&tb))) {
      Check("type info readable", false);
      continue;
    }
    Check("same GUID in both builds", ta->guid == tb->guid && ta->typekind == tb->typekind);
    a->ReleaseTypeAttr(ta);
    b->ReleaseTypeAttr(tb);
  }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  CoInitialize(nullptr);
  ParserChecks(argc > 1 ? argv[1] : L"");
  TypeLibraryChecks(argc > 2 ? argv[2] : nullptr);
  CoUninitialize();
  std::printf("%d passed, %d failed\n", passed, failed);
  return failed == 0 ? 0 : 1;
}
