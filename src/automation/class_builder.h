// Binding a class's typed C++ members into its automation description.
//
// In a class's description file:
//
//   ClassBuilder<CLSFW_PARSER> b(cls);
//   b.Get("CodiceUtente", types::String(), &CLSFW_PARSER::CodiceUtente);
//   b.Let("CodiceUtente", types::String(), &CLSFW_PARSER::SetCodiceUtente);
//   b.Method("SQLConditionCliFor",
//            {In("PrefTabella", types::String()), In("InserireAND", types::Boolean()),
//             In("NomeCampoDitta", types::String()).Optional(""), ...},
//            types::String(), &CLSFW_PARSER::SQLConditionCliFor);
//
// A member function pointer is bound automatically: each parameter is taken
// from the coerced argument with VariantConverter<P>::From; a parameter
// taken by non-const reference is written back (by-reference results); a
// std::optional<X> parameter is std::nullopt when the caller omitted it; the
// result goes through VariantConverter<R>::To (void gives Empty). A lambda
// `Variant(T&, Invocation&)` may be given instead for anything unusual.
//
// Records of rights returned by value: specialise VariantConverter for the
// record struct in the description file, with To() returning MakeRecord(...)
// (record_object.h).
#ifndef ZARVIK_AUTOMATION_CLASS_BUILDER_H_
#define ZARVIK_AUTOMATION_CLASS_BUILDER_H_

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "automation/invocation.h"
#include "automation/type_library.h"
#include "platform/object.h"
#include "platform/variant.h"
#include "platform/vb_error.h"

namespace zarvik::automation {

// Conversion between a C++ parameter/result type and a Variant. The
// dispatcher has already coerced the argument to the declared type, so From
// only unpacks it.
template <class T, class Enable = void>
struct VariantConverter;  // specialise for further types

template <>
struct VariantConverter<Variant> {
  static Variant From(const Variant& v) { return v; }
  static Variant To(const Variant& v) { return v; }
};
template <>
struct VariantConverter<bool> {
  static bool From(const Variant& v) { return v.ToBool(); }
  static Variant To(bool v) { return Variant::Boolean(v); }
};
template <>
struct VariantConverter<int16_t> {
  static int16_t From(const Variant& v) { return v.ToInteger(); }
  static Variant To(int16_t v) { return Variant(v); }
};
template <>
struct VariantConverter<int32_t> {
  static int32_t From(const Variant& v) { return v.ToLong(); }
  static Variant To(int32_t v) { return Variant(v); }
};
template <>
struct VariantConverter<double> {
  static double From(const Variant& v) { return v.ToDouble(); }
  static Variant To(double v) { return Variant(v); }
};
template <>
struct VariantConverter<std::string> {
  static std::string From(const Variant& v) { return v.ToString(); }
  static Variant To(const std::string& v) { return Variant(v); }
};
template <>
struct VariantConverter<std::shared_ptr<VariantArray>> {
  static std::shared_ptr<VariantArray> From(const Variant& v) { return v.ToArray(); }
  static Variant To(std::shared_ptr<VariantArray> v) { return Variant(std::move(v)); }
};
// Object references of any Object-derived class (Connection, Recordset, ...):
// Nothing is a null pointer; an object of another class is error 13.
template <class O>
struct VariantConverter<std::shared_ptr<O>, std::enable_if_t<std::is_base_of_v<Object, O>>> {
  static std::shared_ptr<O> From(const Variant& v) {
    ObjectRef object = v.ToObject();
    if (!object) return nullptr;
    auto typed = std::dynamic_pointer_cast<O>(object);
    if (!typed) throw VbError(vberr::kTypeMismatch);
    return typed;
  }
  static Variant To(const std::shared_ptr<O>& v) { return Variant(ObjectRef(v)); }
};
// Automation enums travel as Longs.
template <class E>
struct VariantConverter<E, std::enable_if_t<std::is_enum_v<E>>> {
  static E From(const Variant& v) { return static_cast<E>(v.ToLong()); }
  static Variant To(E v) { return Variant(static_cast<int32_t>(v)); }
};

namespace detail {

template <class P>
struct IsOptional : std::false_type {};
template <class X>
struct IsOptional<std::optional<X>> : std::true_type {};

template <class P>
P ArgumentFrom(const Invocation& in, size_t i) {
  if constexpr (IsOptional<P>::value) {
    if (in.IsMissing(i)) return std::nullopt;
    return VariantConverter<typename P::value_type>::From(in.Value(i));
  } else {
    return VariantConverter<P>::From(in.Value(i));
  }
}

template <class P>
void WriteBack(Invocation& in, size_t i, const P& value) {
  if constexpr (IsOptional<P>::value) {
    if (value) in.Set(i, VariantConverter<typename P::value_type>::To(*value));
  } else {
    in.Set(i, VariantConverter<P>::To(value));
  }
}

template <class P>
constexpr bool kIsOutParam =
    std::is_lvalue_reference_v<P> && !std::is_const_v<std::remove_reference_t<P>>;

template <class T, class M, class R, class... P, size_t... I>
Variant CallBound(T& self, M method, Invocation& in, std::index_sequence<I...>) {
  std::tuple<std::decay_t<P>...> values{ArgumentFrom<std::decay_t<P>>(in, I)...};
  if constexpr (std::is_void_v<R>) {
    (self.*method)(std::get<I>(values)...);
    (void)std::initializer_list<int>{
        (kIsOutParam<P> ? (WriteBack(in, I, std::get<I>(values)), 0) : 0)...};
    return Variant();
  } else {
    Variant result = VariantConverter<std::decay_t<R>>::To((self.*method)(std::get<I>(values)...));
    (void)std::initializer_list<int>{
        (kIsOutParam<P> ? (WriteBack(in, I, std::get<I>(values)), 0) : 0)...};
    return result;
  }
}

}  // namespace detail

// A typed call for a member function, as described above.
template <class T, class R, class... P>
std::function<Variant(T&, Invocation&)> Bind(R (T::*method)(P...)) {
  return [method](T& self, Invocation& in) {
    return detail::CallBound<T, decltype(method), R, P...>(self, method, in,
                                                           std::index_sequence_for<P...>{});
  };
}
template <class T, class R, class... P>
std::function<Variant(T&, Invocation&)> Bind(R (T::*method)(P...) const) {
  return [method](T& self, Invocation& in) {
    return detail::CallBound<T, decltype(method), R, P...>(self, method, in,
                                                           std::index_sequence_for<P...>{});
  };
}

// Number of parameters of a member function (to check a description
// against the C++ signature).
template <class T, class R, class... P>
constexpr size_t Arity(R (T::*)(P...)) {
  return sizeof...(P);
}
template <class T, class R, class... P>
constexpr size_t Arity(R (T::*)(P...) const) {
  return sizeof...(P);
}

template <class T>
class ClassBuilder {
 public:
  // Describes class T under `name`; `create` makes instances with the
  // caller's Env and statement log.
  ClassBuilder(ClassDescription& cls, std::string name, std::string help) : cls_(cls) {
    cls_.name = std::move(name);
    cls_.help = std::move(help);
    cls_.create = [](const CreationContext& context) -> std::shared_ptr<void> {
      auto object = std::make_shared<T>(context.env);
      if (context.statement_log) object->SetStatementLog(context.statement_log);
      return object;
    };
  }

  // Instances hold objects (a host binding): T::ForEachReference and
  // T::ReleaseReferences let the owner of a set of objects break cycles.
  ClassBuilder& HoldsReferences() {
    cls_.for_each_reference = [](const void* instance,
                                 const std::function<void(const ObjectRef&)>& visit) {
      static_cast<const T*>(instance)->ForEachReference(visit);
    };
    cls_.release_references = [](void* instance) {
      static_cast<T*>(instance)->ReleaseReferences();
    };
    return *this;
  }

  // Property get.
  template <class F>
  ClassBuilder& Get(const std::string& name, TypeRef type, F getter, std::string help = "") {
    return Add(name, MemberKind::kPropertyGet, {}, std::move(type), getter, std::move(help));
  }
  // Property let (plain value).
  template <class F>
  ClassBuilder& Let(const std::string& name, TypeRef type, F setter, std::string help = "") {
    return Add(name, MemberKind::kPropertyLet, {In("value", type)}, types::Void(), setter,
               std::move(help));
  }
  // Property set (object reference).
  template <class F>
  ClassBuilder& SetRef(const std::string& name, TypeRef type, F setter, std::string help = "") {
    return Add(name, MemberKind::kPropertySet, {In("value", type)}, types::Void(), setter,
               std::move(help));
  }
  // Method (a Sub when `result` is types::Void()).
  template <class F>
  ClassBuilder& Method(const std::string& name, std::vector<ParamDescription> params,
                       TypeRef result, F method, std::string help = "") {
    return Add(name, MemberKind::kMethod, std::move(params), std::move(result), method,
               std::move(help));
  }

 private:
  template <class F>
  ClassBuilder& Add(const std::string& name, MemberKind kind, std::vector<ParamDescription> params,
                    TypeRef result, F f, std::string help) {
    std::function<Variant(T&, Invocation&)> typed;
    if constexpr (std::is_member_function_pointer_v<F>) {
      if (Arity(f) != params.size()) {
        throw std::logic_error("automation description of " + cls_.name + "." + name +
                               ": parameter count differs from the C++ member");
      }
      typed = Bind(f);
    } else {
      typed = f;
    }
    MemberDescription member;
    member.name = name;
    member.kind = kind;
    member.params = std::move(params);
    member.result = std::move(result);
    member.help = std::move(help);
    member.call = [typed](void* instance, Invocation& in) {
      return typed(*static_cast<T*>(instance), in);
    };
    cls_.members.push_back(std::move(member));
    return *this;
  }

  ClassDescription& cls_;
};

}  // namespace zarvik::automation

#endif  // ZARVIK_AUTOMATION_CLASS_BUILDER_H_
