#include "com/com_values.h"

#include <cstring>
#include <memory>
#include <vector>

#include "automation/dispatcher.h"
#include "automation/name_uuid.h"
#include "automation/record_object.h"
#include "com/foreign_object.h"
#include "com/object_dispatch.h"
#include "db/connection.h"
#include "db/recordset.h"
#include "platform/utf16.h"

namespace zarvik::com {
namespace {

// The record description of a type, or null when the library lacks it.
ComPtr<IRecordInfo> RecordInfoOf(const ValueContext& context, const std::string& type) {
  ComPtr<IRecordInfo> record;
  ComPtr<ITypeInfo> info;
  if (context.type_library && SUCCEEDED(context.type_library->GetTypeInfoOfGuid(
                                  GuidOf(automation::TypeUuidName("ZARVIK", type)), info.Out()))) {
    GetRecordInfoFromTypeInfo(info.get(), record.Out());
  }
  return record;
}

Variant FromRecord(IRecordInfo* info, void* data) {
  BSTR name = nullptr;
  info->GetName(&name);
  const std::string type = FromBstr(name);
  SysFreeString(name);
  // Asked without an array, Windows answers the number of fields; Wine
  // answers at most the number it is given.
  ULONG count = 1024;
  info->GetFieldNames(&count, nullptr);
  std::vector<BSTR> names(count);
  info->GetFieldNames(&count, names.data());
  std::vector<std::pair<std::string, Variant>> fields;
  for (BSTR field : names) {
    OwnedVariant value;
    if (data) info->GetField(data, field, &value.v);
    fields.emplace_back(FromBstr(field), FromVariant(value.v));
    SysFreeString(field);
  }
  return automation::MakeRecord(type, std::move(fields));
}

// Writes the fields of `record` into the record memory `data`, at the
// offsets its type description gives (Wine's IRecordInfo::PutField is a
// stub). The component's records hold 16-bit Booleans only.
void WriteRecord(IRecordInfo* info, const automation::RecordObject& record, void* data) {
  ComPtr<ITypeInfo> type;
  TYPEATTR* attr = nullptr;
  if (FAILED(info->GetTypeInfo(type.Out())) || FAILED(type->GetTypeAttr(&attr))) {
    throw VbError(vberr::kTypeMismatch);
  }
  for (WORD i = 0; i < attr->cVars; ++i) {
    VARDESC* var = nullptr;
    if (FAILED(type->GetVarDesc(i, &var))) continue;
    BSTR name = nullptr;
    type->GetDocumentation(var->memid, &name, nullptr, nullptr, nullptr);
    for (const auto& [field, value] : record.Fields()) {
      if (field == FromBstr(name) && var->elemdescVar.tdesc.vt == VT_BOOL) {
        *reinterpret_cast<VARIANT_BOOL*>(static_cast<char*>(data) + var->oInst) =
            value.ToBool() ? VARIANT_TRUE : VARIANT_FALSE;
      }
    }
    SysFreeString(name);
    type->ReleaseVarDesc(var);
  }
  type->ReleaseTypeAttr(attr);
}

Variant FromArray(SAFEARRAY* array) {
  if (!array || SafeArrayGetDim(array) != 2) throw VbError(vberr::kTypeMismatch);
  LONG bounds[4];
  for (UINT d = 0; d < 2; ++d) {
    SafeArrayGetLBound(array, d + 1, &bounds[d * 2]);
    SafeArrayGetUBound(array, d + 1, &bounds[d * 2 + 1]);
  }
  auto out = std::make_shared<VariantArray>(bounds[0], bounds[1], bounds[2], bounds[3]);
  for (LONG i = bounds[0]; i <= bounds[1]; ++i) {
    for (LONG j = bounds[2]; j <= bounds[3]; ++j) {
      LONG index[2] = {i, j};
      OwnedVariant item;
      if (FAILED(SafeArrayGetElement(array, index, &item.v))) throw VbError(vberr::kTypeMismatch);
      out->At(i, j) = FromVariant(item.v);
    }
  }
  return Variant(std::move(out));
}

void FromArray(const VariantArray& array, const ValueContext& context, VARIANT* out) {
  SAFEARRAYBOUND bounds[2];
  for (int d = 0; d < 2; ++d) {
    bounds[d].lLbound = array.LBound(d + 1);
    bounds[d].cElements = static_cast<ULONG>(array.UBound(d + 1) - array.LBound(d + 1) + 1);
  }
  SAFEARRAY* sa = SafeArrayCreate(VT_VARIANT, 2, bounds);
  if (!sa) throw std::bad_alloc();
  for (int32_t i = array.LBound(1); i <= array.UBound(1); ++i) {
    for (int32_t j = array.LBound(2); j <= array.UBound(2); ++j) {
      LONG index[2] = {i, j};
      OwnedVariant item;
      ToVariant(array.At(i, j), context, &item.v);
      SafeArrayPutElement(sa, index, &item.v);
    }
  }
  out->vt = VT_ARRAY | VT_VARIANT;
  out->parray = sa;
}

IDispatch* DispatchOf(const ObjectRef& object, const ValueContext& context) {
  if (!object) return nullptr;
  if (auto foreign = std::dynamic_pointer_cast<ForeignObject>(object)) {
    foreign->Dispatch()->AddRef();
    return foreign->Dispatch();
  }
  if (auto connection = std::dynamic_pointer_cast<db::Connection>(object)) {
    if (connection->Peer()) return DispatchOf(connection->Peer(), context);
  }
  if (auto recordset = std::dynamic_pointer_cast<db::Recordset>(object)) {
    if (recordset->Peer()) return DispatchOf(recordset->Peer(), context);
  }
  return new ObjectDispatch(object, context);
}

}  // namespace

GUID GuidOf(const std::string& uuid_name) {
  const automation::UuidBytes b = automation::NameUuid(uuid_name);
  GUID g;
  g.Data1 = (DWORD{b[0]} << 24) | (DWORD{b[1]} << 16) | (DWORD{b[2]} << 8) | b[3];
  g.Data2 = static_cast<WORD>((b[4] << 8) | b[5]);
  g.Data3 = static_cast<WORD>((b[6] << 8) | b[7]);
  std::memcpy(g.Data4, &b[8], 8);
  return g;
}

std::wstring GuidText(const GUID& guid) {
  wchar_t text[40];
  StringFromGUID2(guid, text, 40);
  return text;
}

std::wstring Wide(const std::string& utf8) {
  const std::u16string units = Utf16FromUtf8(utf8);
  return std::wstring(units.begin(), units.end());
}

std::string Narrow(const wchar_t* text, size_t length) {
  return Utf8FromUtf16(std::u16string(text, text + length));
}

BSTR ToBstr(const std::string& utf8) {
  const std::wstring wide = Wide(utf8);
  BSTR out = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
  if (!out) throw std::bad_alloc();
  return out;
}

std::string FromBstr(BSTR text) { return text ? Narrow(text, SysStringLen(text)) : std::string(); }

bool IsMissing(const VARIANT& value) {
  return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

Variant FromVariant(const VARIANT& value) {
  if (value.vt == (VT_BYREF | VT_VARIANT)) return FromVariant(*value.pvarVal);
  OwnedVariant copy;
  const VARIANT* v = &value;
  if (value.vt & VT_BYREF) {
    if (FAILED(VariantCopyInd(&copy.v, const_cast<VARIANT*>(&value))))
      throw VbError(vberr::kTypeMismatch);
    v = &copy.v;
  }
  switch (v->vt) {
    case VT_EMPTY:
      return Variant();
    case VT_NULL:
      return Variant::Null();
    case VT_BOOL:
      return Variant::Boolean(v->boolVal != VARIANT_FALSE);
    case VT_I2:
      return Variant(static_cast<int16_t>(v->iVal));
    case VT_I4:
      return Variant(static_cast<int32_t>(v->lVal));
    case VT_R8:
      return Variant(v->dblVal);
    case VT_DATE:
      return Variant::Date(v->date);
    case VT_BSTR:
      return Variant(FromBstr(v->bstrVal));
    case VT_DISPATCH:
    case VT_UNKNOWN: {
      if (!v->punkVal) return Variant::Nothing();
      if (ObjectRef own = OwnObject(v->punkVal)) return Variant(own);
      ComPtr<IDispatch> dispatch;
      if (FAILED(v->punkVal->QueryInterface(IID_IDispatch,
                                            reinterpret_cast<void**>(dispatch.Out())))) {
        throw VbError(vberr::kTypeMismatch);
      }
      return Variant(ObjectRef(std::make_shared<ForeignObject>(std::move(dispatch))));
    }
    case VT_RECORD:
      return FromRecord(v->pRecInfo, v->pvRecord);
    case VT_ERROR:
      throw VbError(vberr::kTypeMismatch);
    default:
      break;
  }
  if (v->vt == (VT_ARRAY | VT_VARIANT)) return FromArray(v->parray);
  // Other numbers (bytes, 64-bit and unsigned integers, singles, currency,
  // decimals) as a Long when they are whole and fit, else as a Double.
  OwnedVariant number;
  if (SUCCEEDED(VariantChangeType(&number.v, const_cast<VARIANT*>(v), 0, VT_R8))) {
    OwnedVariant whole;
    if (SUCCEEDED(VariantChangeType(&whole.v, const_cast<VARIANT*>(v), 0, VT_I4)) &&
        whole.v.lVal == number.v.dblVal) {
      return Variant(static_cast<int32_t>(whole.v.lVal));
    }
    return Variant(number.v.dblVal);
  }
  throw VbError(vberr::kTypeMismatch);
}

void ToVariant(const Variant& value, const ValueContext& context, VARIANT* out) {
  VariantInit(out);
  switch (value.Type()) {
    case VarType::kEmpty:
      return;
    case VarType::kNull:
      out->vt = VT_NULL;
      return;
    case VarType::kBoolean:
      out->vt = VT_BOOL;
      out->boolVal = value.ToBool() ? VARIANT_TRUE : VARIANT_FALSE;
      return;
    case VarType::kInteger:
      out->vt = VT_I2;
      out->iVal = value.ToInteger();
      return;
    case VarType::kLong:
      out->vt = VT_I4;
      out->lVal = value.ToLong();
      return;
    case VarType::kDouble:
      out->vt = VT_R8;
      out->dblVal = value.RawNumber();
      return;
    case VarType::kDate:
      out->vt = VT_DATE;
      out->date = value.RawNumber();
      return;
    case VarType::kString:
      out->bstrVal = ToBstr(value.RawString());
      out->vt = VT_BSTR;
      return;
    case VarType::kArray:
      FromArray(*value.ToArray(), context, out);
      return;
    case VarType::kObject:
      break;
  }
  const ObjectRef object = value.ToObject();
  if (auto record = std::dynamic_pointer_cast<automation::RecordObject>(object)) {
    if (ComPtr<IRecordInfo> info = RecordInfoOf(context, record->TypeName())) {
      void* data = info->RecordCreate();
      WriteRecord(info.get(), *record, data);
      out->vt = VT_RECORD;
      out->pvRecord = data;
      out->pRecInfo = info.Detach();
      return;
    }
  }
  out->vt = VT_DISPATCH;
  out->pdispVal = DispatchOf(object, context);
}

void StoreByRef(const Variant& value, const ValueContext& context, const VARIANT& target) {
  if (target.vt == (VT_BYREF | VT_VARIANT)) {
    VariantClear(target.pvarVal);
    ToVariant(value, context, target.pvarVal);
    return;
  }
  OwnedVariant v;
  ToVariant(value, context, &v.v);
  StoreScalar(v.v, target.vt & ~VT_BYREF, target.byref, true);
}

void StoreScalar(VARIANT& value, VARTYPE type, void* data, bool free_old) {
  if (FAILED(VariantChangeType(&value, &value, 0, type))) throw VbError(vberr::kTypeMismatch);
  switch (type) {
    case VT_BSTR:
      if (free_old) SysFreeString(*static_cast<BSTR*>(data));
      *static_cast<BSTR*>(data) = value.bstrVal;
      value.vt = VT_EMPTY;
      return;
    case VT_BOOL:
      *static_cast<VARIANT_BOOL*>(data) = value.boolVal;
      return;
    case VT_I2:
      *static_cast<SHORT*>(data) = value.iVal;
      return;
    case VT_I4:
      *static_cast<LONG*>(data) = value.lVal;
      return;
    case VT_R8:
    case VT_DATE:
      *static_cast<double*>(data) = value.dblVal;
      return;
    default:
      throw VbError(vberr::kTypeMismatch);
  }
}

namespace {

HRESULT HresultOf(const VbError& error) {
  const int32_t n = error.Number();
  if (n > 0 && n < 65536) return MAKE_HRESULT(SEVERITY_ERROR, FACILITY_CONTROL, n);
  return n < 0 ? static_cast<HRESULT>(n) : E_FAIL;
}

}  // namespace

HRESULT DispatchError(const VbError& error, EXCEPINFO* info) {
  switch (error.Number()) {
    case vberr::kNotSupported:
      return DISP_E_MEMBERNOTFOUND;
    case vberr::kWrongArgCount:
      return DISP_E_BADPARAMCOUNT;
    case automation::kArgumentNotOptional:
      return DISP_E_PARAMNOTOPTIONAL;
    case vberr::kTypeMismatch:
      return DISP_E_TYPEMISMATCH;
    case vberr::kOverflow:
      return DISP_E_OVERFLOW;
    default:
      break;
  }
  if (info) {
    std::memset(info, 0, sizeof *info);
    info->bstrSource = ToBstr("ZARVIK");
    info->bstrDescription = ToBstr(error.Description());
    info->scode = HresultOf(error);
  }
  return DISP_E_EXCEPTION;
}

HRESULT VtableError(const VbError& error) {
  ComPtr<ICreateErrorInfo> create;
  if (SUCCEEDED(CreateErrorInfo(create.Out()))) {
    const std::wstring description = Wide(error.Description());
    create->SetSource(const_cast<LPOLESTR>(L"ZARVIK"));
    create->SetDescription(const_cast<LPOLESTR>(description.c_str()));
    ComPtr<IErrorInfo> info;
    if (SUCCEEDED(create->QueryInterface(IID_IErrorInfo, reinterpret_cast<void**>(info.Out())))) {
      SetErrorInfo(0, info.get());
    }
  }
  return HresultOf(error);
}

VbError ErrorOf(HRESULT hr, EXCEPINFO* info) {
  switch (hr) {
    case DISP_E_MEMBERNOTFOUND:
    case DISP_E_UNKNOWNNAME:
      return VbError(vberr::kNotSupported);
    case DISP_E_BADPARAMCOUNT:
      return VbError(vberr::kWrongArgCount);
    case DISP_E_PARAMNOTOPTIONAL:
      return VbError(automation::kArgumentNotOptional);
    case DISP_E_TYPEMISMATCH:
      return VbError(vberr::kTypeMismatch);
    case DISP_E_OVERFLOW:
      return VbError(vberr::kOverflow);
    default:
      break;
  }
  int32_t number = static_cast<int32_t>(hr);
  std::string description;
  if (hr == DISP_E_EXCEPTION && info) {
    if (info->pfnDeferredFillIn) info->pfnDeferredFillIn(info);
    description = FromBstr(info->bstrDescription);
    number = info->wCode != 0 ? info->wCode : static_cast<int32_t>(info->scode);
    SysFreeString(info->bstrSource);
    SysFreeString(info->bstrDescription);
    SysFreeString(info->bstrHelpFile);
  }
  if (HRESULT_FACILITY(number) == FACILITY_CONTROL && number < 0) number = HRESULT_CODE(number);
  if (description.empty()) description = VbErrorText(number);
  if (description.empty()) description = "Automation error";
  return VbError(number, description);
}

}  // namespace zarvik::com
