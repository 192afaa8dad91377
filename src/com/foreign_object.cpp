#include "com/foreign_object.h"

#include <memory>

namespace zarvik::com {

ForeignObject::ForeignObject(ComPtr<IDispatch> dispatch) : dispatch_(std::move(dispatch)) {
  dispatch_->QueryInterface(__uuidof(IDispatchEx), reinterpret_cast<void**>(dispatch_ex_.Out()));
}

std::string ForeignObject::TypeName() const {
  ComPtr<ITypeInfo> info;
  BSTR name = nullptr;
  if (SUCCEEDED(dispatch_->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.Out())) && info &&
      SUCCEEDED(info->GetDocumentation(MEMBERID_NIL, &name, nullptr, nullptr, nullptr))) {
    std::string text = FromBstr(name);
    SysFreeString(name);
    return text;
  }
  return "Object";
}

DISPID ForeignObject::Id(const std::string& name) const {
  BSTR wide = ToBstr(name);
  DISPID id = DISPID_UNKNOWN;
  HRESULT hr = dispatch_->GetIDsOfNames(IID_NULL, &wide, 1, LOCALE_USER_DEFAULT, &id);
  if (FAILED(hr) && dispatch_ex_) hr = dispatch_ex_->GetDispID(wide, fdexNameCaseInsensitive, &id);
  SysFreeString(wide);
  if (FAILED(hr)) throw VbError(vberr::kNotSupported);
  return id;
}

HRESULT ForeignObject::Invoke(DISPID id, WORD flags, DISPPARAMS* params, VARIANT* result,
                              EXCEPINFO* info) {
  if (dispatch_ex_) {
    return dispatch_ex_->InvokeEx(id, LOCALE_USER_DEFAULT, flags, params, result, info, nullptr);
  }
  UINT arg_error = 0;
  return dispatch_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, params, result, info,
                           &arg_error);
}

// `args` in declared order; DISPPARAMS wants them last first.
Variant ForeignObject::Call(const std::string& name, WORD flags, std::vector<VARIANT>& args,
                            bool put) {
  const DISPID id = Id(name);
  std::vector<VARIANT> reversed(args.rbegin(), args.rend());
  DISPID named = DISPID_PROPERTYPUT;
  DISPPARAMS params{reversed.data(), put ? &named : nullptr, static_cast<UINT>(reversed.size()),
                    put ? 1u : 0u};
  OwnedVariant result;
  EXCEPINFO info{};
  HRESULT hr = Invoke(id, flags, &params, put ? nullptr : &result.v, &info);
  if (hr == DISP_E_MEMBERNOTFOUND && flags == DISPATCH_PROPERTYPUTREF) {
    hr = Invoke(id, DISPATCH_PROPERTYPUT, &params, nullptr, &info);
  }
  if (FAILED(hr)) throw ErrorOf(hr, &info);
  return FromVariant(result.v);
}

namespace {

// The arguments as VARIANTs that clear themselves.
struct Arguments {
  explicit Arguments(const std::vector<Variant>& values) : v(values.size()) {
    for (size_t i = 0; i < values.size(); ++i) ToVariant(values[i], ValueContext{}, &v[i]);
  }
  ~Arguments() {
    for (VARIANT& item : v) VariantClear(&item);
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;
  std::vector<VARIANT> v;
};

}  // namespace

Variant ForeignObject::GetProperty(const std::string& name) {
  std::vector<VARIANT> none;
  return Call(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, none, false);
}

void ForeignObject::PutProperty(const std::string& name, const Variant& value) {
  Arguments args({value});
  Call(name, value.IsObject() ? DISPATCH_PROPERTYPUTREF : DISPATCH_PROPERTYPUT, args.v, true);
}

Variant ForeignObject::CallMethod(const std::string& name, std::vector<Variant>& args) {
  Arguments values(args);
  return Call(name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, values.v, false);
}

ObjectRef ComObjectFactory::CreateObject(const std::string& prog_id) {
  const std::wstring name = Wide(prog_id);
  CLSID clsid;
  ComPtr<IDispatch> dispatch;
  if (FAILED(CLSIDFromProgID(name.c_str(), &clsid)) ||
      FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER,
                              IID_IDispatch, reinterpret_cast<void**>(dispatch.Out())))) {
    throw VbError(429, "ActiveX component can't create object (" + prog_id + ")");
  }
  return std::make_shared<ForeignObject>(std::move(dispatch));
}

}  // namespace zarvik::com
