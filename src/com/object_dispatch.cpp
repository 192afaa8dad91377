#include "com/object_dispatch.h"

#include <exception>
#include <new>

#include "automation/name_uuid.h"
#include "platform/vb_string.h"

namespace zarvik::com {
namespace {

const GUID& OwnObjectIid() {
  static const GUID iid = GuidOf("ZARVIK.com.OwnObject");
  return iid;
}

// Its address differs in every module that links this file.
constexpr char kModuleTag = 0;

}  // namespace

ObjectRef OwnObject(IUnknown* unknown) {
  ComPtr<IOwnObject> own;
  if (FAILED(unknown->QueryInterface(OwnObjectIid(), reinterpret_cast<void**>(own.Out()))) ||
      own->ModuleTag() != &kModuleTag) {
    return nullptr;
  }
  return own->Dispatcher()->Target();
}

const void* ObjectDispatch::ModuleTag() { return &kModuleTag; }

ObjectDispatch::ObjectDispatch(ObjectRef target, ValueContext context)
    : target_(std::move(target)), context_(std::move(context)) {}

HRESULT ObjectDispatch::QueryInterface(REFIID riid, void** out) {
  if (!out) return E_POINTER;
  if (riid == IID_IUnknown || riid == IID_IDispatch) {
    *out = static_cast<IDispatch*>(this);
  } else if (riid == OwnObjectIid()) {
    *out = static_cast<IOwnObject*>(this);
  } else {
    *out = nullptr;
    return E_NOINTERFACE;
  }
  AddRef();
  return S_OK;
}

ULONG ObjectDispatch::AddRef() { return ++refs_; }

ULONG ObjectDispatch::Release() {
  const ULONG left = --refs_;
  if (left == 0) delete this;
  return left;
}

HRESULT ObjectDispatch::GetTypeInfoCount(UINT* count) {
  if (count) *count = 0;
  return S_OK;
}

HRESULT ObjectDispatch::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
  if (info) *info = nullptr;
  return DISP_E_BADINDEX;
}

HRESULT ObjectDispatch::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  if (count != 1) return DISP_E_UNKNOWNNAME;  // named arguments are not supported
  const std::string name = Narrow(names[0], wcslen(names[0]));
  for (size_t n = 0; n < names_.size(); ++n) {
    if (vb::SameText(names_[n], name)) {
      ids[0] = static_cast<DISPID>(n + 1);
      return S_OK;
    }
  }
  names_.push_back(name);
  ids[0] = static_cast<DISPID>(names_.size());
  return S_OK;
}

std::vector<const VARIANT*> ArgumentsInOrder(const DISPPARAMS& params) {
  std::vector<const VARIANT*> args;
  for (UINT i = params.cArgs; i > params.cNamedArgs; --i) args.push_back(&params.rgvarg[i - 1]);
  return args;
}

HRESULT PutValue(const DISPPARAMS& params, const VARIANT** value) {
  if (params.cNamedArgs != 1 || params.rgdispidNamedArgs[0] != DISPID_PROPERTYPUT ||
      params.cArgs < 1) {
    return DISP_E_PARAMNOTOPTIONAL;
  }
  *value = &params.rgvarg[0];
  return S_OK;
}

namespace {

// A call with arguments on a member that takes none, such as
// rs.Fields("X") or cmd.Parameters("@P"), goes to the default member of the
// object the member answers, as automation's own dispatch does.
Variant CallWithDefault(Object& target, const std::string& name, std::vector<Variant>& args) {
  try {
    return target.CallMethod(name, args);
  } catch (const VbError& e) {
    if (e.Number() != vberr::kNotSupported || args.empty()) throw;
  }
  const ObjectRef inner = target.GetProperty(name).ToObject();
  if (!inner) throw VbError(vberr::kObjectNotSet);
  return inner->CallMethod("", args);
}

}  // namespace

HRESULT ObjectDispatch::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                               VARIANT* result, EXCEPINFO* info, UINT*) {
  if (id < 0 || static_cast<size_t>(id) > names_.size()) return DISP_E_MEMBERNOTFOUND;
  const std::string name = id == DISPID_VALUE ? "" : names_[static_cast<size_t>(id) - 1];
  return Guarded(info, false, [&]() -> HRESULT {
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
      const VARIANT* value = nullptr;
      if (HRESULT hr = PutValue(*params, &value); FAILED(hr)) return hr;
      target_->PutProperty(name, FromVariant(*value));
      return S_OK;
    }
    if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
    const std::vector<const VARIANT*> in = ArgumentsInOrder(*params);
    std::vector<Variant> args;
    for (const VARIANT* v : in) args.push_back(FromVariant(*v));
    Variant answer;
    bool done = false;
    if (args.empty() && (flags & DISPATCH_PROPERTYGET)) {
      try {
        answer = target_->GetProperty(name);
        done = true;
      } catch (const VbError& e) {
        if (e.Number() != vberr::kNotSupported || !(flags & DISPATCH_METHOD)) throw;
      }
    }
    if (!done) answer = CallWithDefault(*target_, name, args);
    for (size_t i = 0; i < in.size(); ++i) {
      if (in[i]->vt & VT_BYREF) StoreByRef(args[i], context_, *in[i]);
    }
    if (result) ToVariant(answer, context_, result);
    return S_OK;
  });
}

}  // namespace zarvik::com
