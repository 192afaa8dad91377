#include "automation/dispatcher.h"

#include <memory>

#include "automation/record_object.h"
#include "db/connection.h"
#include "db/recordset.h"
#include "platform/vb_error.h"

namespace zarvik::automation {
namespace {

Variant CoerceScalar(const Variant& value, const TypeRef& type) {
  if (value.IsObject() || value.Type() == VarType::kArray) throw VbError(vberr::kTypeMismatch);
  switch (type.base) {
    case BaseType::kBoolean:
      return Variant::Boolean(value.ToBool());
    case BaseType::kInteger:
      return Variant(value.ToInteger());
    case BaseType::kLong:
      return Variant(value.ToLong());
    case BaseType::kDouble:
      return Variant(value.ToDouble());
    case BaseType::kDate:
      return Variant::Date(value.ToDate());
    case BaseType::kString:
      return Variant(value.ToString());
    default:
      break;
  }
  throw VbError(vberr::kTypeMismatch);
}

Variant CoerceObject(const Variant& value, const TypeRef& type) {
  if (!value.IsObject()) throw VbError(vberr::kTypeMismatch);
  ObjectRef object = value.ToObject();
  if (!object) return value;  // Nothing fits every object type
  bool fits = true;
  if (type.name == "Connection") {
    fits = std::dynamic_pointer_cast<db::Connection>(object) != nullptr;
  } else if (type.name == "Recordset") {
    fits = std::dynamic_pointer_cast<db::Recordset>(object) != nullptr;
  }
  if (!fits) throw VbError(vberr::kTypeMismatch);
  return value;
}

Variant CoerceRecord(const Variant& value, const TypeRef& type) {
  if (!value.IsObject()) throw VbError(vberr::kTypeMismatch);
  auto record = std::dynamic_pointer_cast<RecordObject>(value.ToObject());
  if (!record || record->TypeName() != type.name) throw VbError(vberr::kTypeMismatch);
  return value;
}

}  // namespace

Variant CoerceToType(const Variant& value, const TypeRef& type) {
  switch (type.base) {
    case BaseType::kVariant:
      return value;
    case BaseType::kObject:
      return CoerceObject(value, type);
    case BaseType::kRecord:
      return CoerceRecord(value, type);
    case BaseType::kVoid:
      throw VbError(vberr::kTypeMismatch);
    default:
      break;
  }
  try {
    return CoerceScalar(value, type);
  } catch (const VbError& e) {
    // Automation reports Null (and every other failed conversion except an
    // out-of-range number) as a type mismatch.
    if (e.Number() == vberr::kOverflow) throw;
    throw VbError(vberr::kTypeMismatch);
  }
}

Variant InvokeMember(const MemberDescription& member, void* instance, std::vector<Argument>& args) {
  const std::vector<ParamDescription>& params = member.params;
  if (args.size() > params.size()) throw VbError(vberr::kWrongArgCount);
  std::vector<Variant> values(params.size());
  std::vector<bool> missing(params.size(), false);
  for (size_t i = 0; i < params.size(); ++i) {
    const ParamDescription& p = params[i];
    if (i >= args.size() || args[i].missing) {
      if (!p.optional) {
        if (i >= args.size()) throw VbError(vberr::kWrongArgCount);
        throw VbError(kArgumentNotOptional);
      }
      if (p.default_value) {
        values[i] = *p.default_value;
      } else {
        missing[i] = true;
      }
      continue;
    }
    values[i] = CoerceToType(args[i].value, p.type);
  }
  Invocation invocation(std::move(values), std::move(missing));
  Variant result = member.call(instance, invocation);
  for (size_t i = 0; i < args.size(); ++i) {
    if (params[i].by_ref && !args[i].missing) args[i].value = invocation.Value(i);
  }
  return result;
}

Variant InvokeGet(const ClassDescription& cls, void* instance, const std::string& name,
                  std::vector<Argument>& args) {
  const MemberDescription* member = cls.Find(name, MemberKind::kPropertyGet);
  if (!member) member = cls.Find(name, MemberKind::kMethod);
  if (!member) throw VbError(vberr::kNotSupported);
  return InvokeMember(*member, instance, args);
}

void InvokePut(const ClassDescription& cls, void* instance, const std::string& name,
               const Variant& value) {
  const MemberDescription* set = cls.Find(name, MemberKind::kPropertySet);
  const MemberDescription* let = cls.Find(name, MemberKind::kPropertyLet);
  const MemberDescription* member = (value.IsObject() && set) ? set : let;
  if (!member) throw VbError(vberr::kNotSupported);
  std::vector<Argument> args{Argument{value, false}};
  InvokeMember(*member, instance, args);
}

Variant InvokeMethod(const ClassDescription& cls, void* instance, const std::string& name,
                     std::vector<Argument>& args) {
  const MemberDescription* member = cls.Find(name, MemberKind::kMethod);
  if (!member) member = cls.Find(name, MemberKind::kPropertyGet);
  if (!member) throw VbError(vberr::kNotSupported);
  return InvokeMember(*member, instance, args);
}

}  // namespace zarvik::automation
