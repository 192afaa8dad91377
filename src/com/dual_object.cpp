#include "com/dual_object.h"

#include <exception>
#include <new>
#include <optional>

#include "automation/dispatcher.h"
#include "automation/idl_text.h"
#include "automation/invocation.h"
#include "com/object_dispatch.h"
#include "db/connection.h"
#include "platform/vb_string.h"

namespace zarvik::com {
namespace {

using automation::MemberKind;

constexpr const char* kBoxesName = "ZARVIKBOXES";

// A by-value argument of a vtable slot as a VARIANT that borrows its value.
VARIANT Borrowed(const Slot& slot) {
  VARIANT v;
  VariantInit(&v);
  if (slot.vt & VT_BYREF) {
    if (!slot.data) {
      v.vt = VT_ERROR;  // an omitted optional by-reference argument
      v.scode = DISP_E_PARAMNOTFOUND;
    } else {
      v.vt = slot.vt;
      v.byref = slot.data;
    }
    return v;
  }
  if (slot.vt == VT_VARIANT) return *static_cast<const VARIANT*>(slot.data);
  v.vt = slot.vt;
  switch (slot.vt) {
    case VT_BSTR:
      v.bstrVal = *static_cast<BSTR*>(slot.data);
      break;
    case VT_BOOL:
      v.boolVal = *static_cast<VARIANT_BOOL*>(slot.data);
      break;
    case VT_I2:
      v.iVal = *static_cast<SHORT*>(slot.data);
      break;
    case VT_I4:
      v.lVal = *static_cast<LONG*>(slot.data);
      break;
    case VT_R8:
    case VT_DATE:
      v.dblVal = *static_cast<double*>(slot.data);
      break;
    case VT_DISPATCH:
      v.pdispVal = *static_cast<IDispatch**>(slot.data);
      break;
    default:
      throw VbError(vberr::kTypeMismatch);
  }
  return v;
}

// Moves a result into the typed [out, retval] of a vtable slot.
void StoreResult(VARIANT& value, const Slot& slot) {
  switch (slot.vt) {
    case VT_VARIANT:
      *static_cast<VARIANT*>(slot.data) = value;
      value.vt = VT_EMPTY;
      return;
    case VT_RECORD:
      if (value.vt != VT_RECORD) throw VbError(vberr::kTypeMismatch);
      if (FAILED(value.pRecInfo->RecordCopy(value.pvRecord, slot.data))) {
        throw VbError(vberr::kTypeMismatch);
      }
      return;
    case VT_DISPATCH:
      if (value.vt != VT_DISPATCH && value.vt != VT_EMPTY) throw VbError(vberr::kTypeMismatch);
      *static_cast<IDispatch**>(slot.data) = value.vt == VT_DISPATCH ? value.pdispVal : nullptr;
      value.vt = VT_EMPTY;
      return;
    default:
      break;
  }
  // The [out, retval] holds nothing yet: no old text to free.
  StoreScalar(value, slot.vt, slot.data, false);
}

}  // namespace

void BoxSink::Show(const Message& message) {
  if (recording) {
    boxes.push_back(message);
    return;
  }
  const std::wstring text = Wide(message.text);
  const std::wstring title = Wide(message.title.empty() ? "ZARVIK" : message.title);
  MessageBoxW(nullptr, text.c_str(), title.c_str(), static_cast<UINT>(message.style));
}

DualCore::DualCore(DualContext context)
    : c_(std::move(context)), ids_(automation::MemberDispIds(*c_.cls)) {}

HRESULT DualCore::GetTypeInfo(UINT index, ITypeInfo** info) {
  if (!info) return E_POINTER;
  *info = nullptr;
  if (index != 0) return DISP_E_BADINDEX;
  if (!c_.values.type_library) return E_NOTIMPL;
  return c_.values.type_library->GetTypeInfoOfGuid(c_.iid, info);
}

HRESULT DualCore::GetIDsOfNames(LPOLESTR* names, UINT count, DISPID* ids) {
  for (UINT i = 0; i < count; ++i) ids[i] = DISPID_UNKNOWN;
  const std::string name = Narrow(names[0], wcslen(names[0]));
  if (vb::SameText(name, kBoxesName)) ids[0] = kBoxesDispId;
  for (size_t m = 0; m < c_.cls->members.size() && ids[0] == DISPID_UNKNOWN; ++m) {
    if (vb::SameText(c_.cls->members[m].name, name)) ids[0] = ids_[m];
  }
  return ids[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

Variant DualCore::InvokeMember(size_t member, const std::vector<const VARIANT*>& in) {
  const automation::MemberDescription& m = c_.cls->members[member];
  std::vector<automation::Argument> args;
  for (size_t i = 0; i < in.size(); ++i) {
    if (IsMissing(*in[i])) {
      args.push_back(automation::Argument::Missing());
      continue;
    }
    Variant value = FromVariant(*in[i]);
    // An ADO connection of the host becomes the component's connection
    // over it.
    if (i < m.params.size() && m.params[i].type.name == "Connection" && value.IsObject()) {
      value = Variant(ObjectRef(db::AsConnection(value.ToObject(), c_.data_access)));
    }
    args.push_back({value, false});
  }
  Variant result = automation::InvokeMember(m, c_.instance.get(), args);
  for (size_t i = 0; i < in.size() && i < m.params.size(); ++i) {
    if (m.params[i].by_ref && !args[i].missing && (in[i]->vt & VT_BYREF)) {
      StoreByRef(args[i].value, c_.values, *in[i]);
    }
  }
  return result;
}

HRESULT DualCore::Boxes(WORD flags, DISPPARAMS* params, VARIANT* result) {
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
    const VARIANT* value = nullptr;
    if (HRESULT hr = PutValue(*params, &value); FAILED(hr)) return hr;
    c_.boxes->recording = FromVariant(*value).ToBool();
    c_.boxes->boxes.clear();
    return S_OK;
  }
  std::vector<Message>& boxes = c_.boxes->boxes;
  Variant answer;
  if (!boxes.empty()) {
    auto table = std::make_shared<VariantArray>(0, static_cast<int32_t>(boxes.size()) - 1, 0, 2);
    for (size_t i = 0; i < boxes.size(); ++i) {
      const auto row = static_cast<int32_t>(i);
      table->At(row, 0) = Variant(boxes[i].text);
      table->At(row, 1) = Variant(boxes[i].title);
      table->At(row, 2) = Variant(static_cast<int32_t>(boxes[i].style));
    }
    answer = Variant(std::move(table));
    boxes.clear();
  }
  if (result) ToVariant(answer, c_.values, result);
  return S_OK;
}

HRESULT DualCore::Invoke(DISPID id, WORD flags, DISPPARAMS* params, VARIANT* result,
                         EXCEPINFO* info) {
  if (id == kBoxesDispId) return Guarded(info, false, [&] { return Boxes(flags, params, result); });
  auto find = [&](MemberKind kind) -> std::optional<size_t> {
    for (size_t m = 0; m < ids_.size(); ++m) {
      if (ids_[m] == id && c_.cls->members[m].kind == kind) return m;
    }
    return std::nullopt;
  };
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  std::optional<size_t> member;
  if (flags & DISPATCH_PROPERTYPUTREF) {
    member = find(MemberKind::kPropertySet);
    if (!member) member = find(MemberKind::kPropertyLet);
  } else if (put) {
    member = find(MemberKind::kPropertyLet);
    if (!member) member = find(MemberKind::kPropertySet);
  } else if (flags & DISPATCH_METHOD) {
    member = find(MemberKind::kMethod);
    if (!member) member = find(MemberKind::kPropertyGet);
  } else {
    member = find(MemberKind::kPropertyGet);
    if (!member) member = find(MemberKind::kMethod);
  }
  if (!member) return DISP_E_MEMBERNOTFOUND;
  return Guarded(info, false, [&]() -> HRESULT {
    std::vector<const VARIANT*> args;
    if (put) {
      const VARIANT* value = nullptr;
      if (HRESULT hr = PutValue(*params, &value); FAILED(hr)) return hr;
      args.push_back(value);
    } else {
      if (params->cNamedArgs != 0) return DISP_E_NONAMEDARGS;
      args = ArgumentsInOrder(*params);
    }
    const Variant answer = InvokeMember(*member, args);
    if (result && !put) ToVariant(answer, c_.values, result);
    return S_OK;
  });
}

HRESULT DualCore::Call(size_t member, std::initializer_list<Slot> args, Slot result) {
  return Guarded(nullptr, true, [&]() -> HRESULT {
    std::vector<VARIANT> values;
    for (const Slot& slot : args) values.push_back(Borrowed(slot));
    std::vector<const VARIANT*> pointers;
    for (const VARIANT& v : values) pointers.push_back(&v);
    const Variant answer = InvokeMember(member, pointers);
    if (result.vt == VT_EMPTY) return S_OK;
    if (!result.data) return E_POINTER;
    OwnedVariant out;
    ToVariant(answer, c_.values, &out.v);
    StoreResult(out.v, result);
    return S_OK;
  });
}

}  // namespace zarvik::com
