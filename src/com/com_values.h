// The COM side of the automation boundary (Windows only): GUIDs, BSTRs,
// VARIANTs and errors converted to and from the component's own types.
#ifndef ZARVIK_COM_COM_VALUES_H_
#define ZARVIK_COM_COM_VALUES_H_

#include <oaidl.h>
#include <windows.h>

#include <new>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik::com {

// An owning COM interface pointer.
template <class T>
class ComPtr {
 public:
  ComPtr() = default;
  explicit ComPtr(T* adopted) : p_(adopted) {}
  ComPtr(const ComPtr& o) : p_(o.p_) {
    if (p_) p_->AddRef();
  }
  ComPtr(ComPtr&& o) noexcept : p_(std::exchange(o.p_, nullptr)) {}
  ComPtr& operator=(ComPtr o) {
    std::swap(p_, o.p_);
    return *this;
  }
  ~ComPtr() {
    if (p_) p_->Release();
  }
  T* get() const { return p_; }
  T* operator->() const { return p_; }
  explicit operator bool() const { return p_ != nullptr; }
  T** Out() {
    *this = ComPtr();
    return &p_;
  }
  T* Detach() { return std::exchange(p_, nullptr); }

 private:
  T* p_ = nullptr;
};

// A VARIANT that clears itself.
struct OwnedVariant {
  VARIANT v;
  OwnedVariant() { VariantInit(&v); }
  ~OwnedVariant() { VariantClear(&v); }
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(const OwnedVariant&) = delete;
};

// The GUID of a name-based UUID name (automation/name_uuid.h) and the
// registry's text form of a GUID ("{XXXXXXXX-...}").
GUID GuidOf(const std::string& uuid_name);
std::wstring GuidText(const GUID& guid);

std::wstring Wide(const std::string& utf8);
std::string Narrow(const wchar_t* text, size_t length);
BSTR ToBstr(const std::string& utf8);
std::string FromBstr(BSTR text);

// Where VT_RECORD values find their record descriptions: the type library
// of the component (may be null: records then travel as objects).
struct ValueContext {
  ComPtr<ITypeLib> type_library;
};

// VARIANT -> Variant. By-reference values are read through; VT_DISPATCH
// and VT_UNKNOWN become objects (one of our own Object dispatchers gives
// its Object back, any other a ForeignObject); VT_RECORD a RecordObject;
// a two-dimensional SAFEARRAY a VariantArray. Other types raise 13.
Variant FromVariant(const VARIANT& value);
// True for an omitted optional argument (VT_ERROR DISP_E_PARAMNOTFOUND).
bool IsMissing(const VARIANT& value);

// Variant -> VARIANT (`out` must be cleared or fresh). Objects: a peer of a
// foreign ADO object is that object, a ForeignObject its IDispatch, a record
// of the type library VT_RECORD, any other Object an ObjectDispatch.
void ToVariant(const Variant& value, const ValueContext& context, VARIANT* out);

// Writes `value` back into a by-reference argument, converted to the type
// the reference points to.
void StoreByRef(const Variant& value, const ValueContext& context, const VARIANT& target);

// Converts `value` to the scalar `type` (BSTR, VARIANT_BOOL, short, long,
// double or DATE) and stores it at `data`, which points to that type; a
// BSTR moves there (the VARIANT is left Empty), freeing the one it replaces
// when `free_old`. Any other type raises 13.
void StoreScalar(VARIANT& value, VARTYPE type, void* data, bool free_old);

// The HRESULT a failed call returns. IDispatch::Invoke: automation's own
// errors (438, 450, 449, 13, 6) as DISP_E_*, every other as
// DISP_E_EXCEPTION with the EXCEPINFO filled. A vtable call: the error's
// HRESULT (0x800A0000 + number for run-time errors), with the description
// set as the thread's error info.
HRESULT DispatchError(const VbError& error, EXCEPINFO* info);
HRESULT VtableError(const VbError& error);
// Runs `body`, the whole of a call from COM: nothing it throws crosses the
// interface; errors answer as DispatchError (IDispatch) or VtableError.
template <class F>
HRESULT Guarded(EXCEPINFO* info, bool vtable, F&& body) {
  try {
    return body();
  } catch (const VbError& e) {
    return vtable ? VtableError(e) : DispatchError(e, info);
  } catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
  } catch (const std::exception& e) {
    const VbError internal(51, e.what());
    return vtable ? VtableError(internal) : DispatchError(internal, info);
  }
}
// The error a failed call on a foreign object stands for.
VbError ErrorOf(HRESULT hr, EXCEPINFO* info);

}  // namespace zarvik::com

#endif  // ZARVIK_COM_COM_VALUES_H_
