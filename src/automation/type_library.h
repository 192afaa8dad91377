// The declarative description of the component's automation classes, as a
// type library holds it: every member's name, kind, parameters and result.
//
// The description is the only late-bound way into the component: the
// dispatcher (dispatcher.h) invokes members through it, `zarvik describe`
// prints it and `zarvik host` serves it. Each class has its own description
// file (describe_parser.cpp, describe_filtroquery.cpp,
// describe_rvkusers.cpp); a new public member is added there, bound to its
// typed C++ call with ClassBuilder (class_builder.h).
#ifndef ZARVIK_AUTOMATION_TYPE_LIBRARY_H_
#define ZARVIK_AUTOMATION_TYPE_LIBRARY_H_

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/invocation.h"
#include "db/tracing.h"
#include "platform/env.h"
#include "platform/object.h"
#include "platform/variant.h"

namespace zarvik::automation {

// The automation type of a parameter, a property or a result.
enum class BaseType {
  kVoid,     // no result (Let/Set, a Sub)
  kVariant,  // VARIANT
  kBoolean,  // VARIANT_BOOL (True = -1)
  kInteger,  // 16-bit
  kLong,     // 32-bit (also every enum type)
  kDouble,
  kDate,
  kString,  // BSTR
  kObject,  // an object reference; `name` says which class
  kRecord,  // a user-defined type (record of rights); `name` is its type
};

struct TypeRef {
  BaseType base = BaseType::kVariant;
  // kLong: the enum's name, or "" for a plain Long. kObject: "Connection",
  // "Recordset" or "Object" (any object). kRecord: the record's type name.
  std::string name;
};

namespace types {
inline TypeRef Void() { return {BaseType::kVoid, ""}; }
inline TypeRef Variant() { return {BaseType::kVariant, ""}; }
inline TypeRef Boolean() { return {BaseType::kBoolean, ""}; }
inline TypeRef Integer() { return {BaseType::kInteger, ""}; }
inline TypeRef Long() { return {BaseType::kLong, ""}; }
inline TypeRef Double() { return {BaseType::kDouble, ""}; }
inline TypeRef Date() { return {BaseType::kDate, ""}; }
inline TypeRef String() { return {BaseType::kString, ""}; }
inline TypeRef Object(std::string class_name = "Object") {
  return {BaseType::kObject, std::move(class_name)};
}
inline TypeRef Connection() { return Object("Connection"); }
inline TypeRef Recordset() { return Object("Recordset"); }
inline TypeRef Enum(std::string enum_name) { return {BaseType::kLong, std::move(enum_name)}; }
inline TypeRef Record(std::string record_name) {
  return {BaseType::kRecord, std::move(record_name)};
}
}  // namespace types

enum class MemberKind { kPropertyGet, kPropertyLet, kPropertySet, kMethod };

struct ParamDescription {
  std::string name;
  TypeRef type;
  bool by_ref = false;
  bool optional = false;
  // For an optional parameter: the value an omitted argument takes. Without
  // one the callee sees the argument as missing (Invocation::IsMissing).
  std::optional<Variant> default_value;

  // Chainable refinements: In("x", types::String()).Optional("").
  ParamDescription Optional() const;
  ParamDescription Optional(const Variant& default_value) const;
};

// A by-value ([in]) parameter.
ParamDescription In(std::string name, TypeRef type);
// A by-reference ([in, out]) parameter: the callee's changes are returned.
ParamDescription ByRef(std::string name, TypeRef type);

// The typed C++ call behind a member: `instance` is the object the class's
// `create` made; the arguments are already coerced to the declared types.
using MemberCall = std::function<Variant(void* instance, Invocation& args)>;

struct MemberDescription {
  std::string name;
  MemberKind kind = MemberKind::kMethod;
  // For Let/Set: one parameter, the value assigned.
  std::vector<ParamDescription> params;
  TypeRef result = types::Void();
  std::string help;
  MemberCall call;
};

// What a created object receives from whoever creates it.
struct CreationContext {
  Env env = DefaultEnv();
  // Statements on connections the object opens itself are recorded here
  // (may be null).
  std::shared_ptr<db::StatementLog> statement_log;
};

struct ClassDescription {
  std::string name;
  std::string help;
  std::vector<MemberDescription> members;
  // Creates an instance of the class (the pointer's deleter runs its
  // termination).
  std::function<std::shared_ptr<void>(const CreationContext&)> create;
  // For a class whose instances hold other objects: the instance's
  // Object::ForEachReference and ReleaseReferences. Null: it holds none
  // that could close a cycle.
  std::function<void(const void* instance, const std::function<void(const ObjectRef&)>& visit)>
      for_each_reference;
  std::function<void(void* instance)> release_references;

  // The first member with this name (compared without regard to case) and
  // kind, or nullptr.
  const MemberDescription* Find(const std::string& member_name, MemberKind kind) const;
  // True when some member has this name (any kind).
  bool HasMember(const std::string& member_name) const;
};

struct EnumDescription {
  std::string name;
  std::vector<std::pair<std::string, int32_t>> values;
};

struct RecordField {
  std::string name;
  TypeRef type;
};

struct RecordDescription {
  std::string name;
  std::vector<RecordField> fields;  // in declared order
};

struct TypeLibrary {
  std::string name;  // "ZARVIK"
  std::string help;  // "Norvello BO Revoke"
  std::vector<EnumDescription> enums;
  std::vector<RecordDescription> records;
  std::vector<std::shared_ptr<const ClassDescription>> classes;

  // The class with this name (case-insensitive), or nullptr.
  std::shared_ptr<const ClassDescription> FindClass(const std::string& class_name) const;
  const RecordDescription* FindRecord(const std::string& record_name) const;
  const EnumDescription* FindEnum(const std::string& enum_name) const;
};

// Each class's description file adds its class, and the enums and records
// its members use, to the library.
void DescribeParser(TypeLibrary& library);
void DescribeFiltroQuery(TypeLibrary& library);
void DescribeRvkUsers(TypeLibrary& library);

// The whole library: the three classes, their enums and records.
TypeLibrary BuildTypeLibrary();

// Names of a type as the IDL text and error messages write it.
std::string TypeName(const TypeRef& type);

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_TYPE_LIBRARY_H_
