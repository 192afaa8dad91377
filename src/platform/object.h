// A late-bound automation object: members are reached by name at run time.
//
// The host's application object, a data-access connection handed through a
// host object, a recordset returned to the host and the component's own
// classes seen from the automation boundary all implement this interface.
#ifndef ZARVIK_PLATFORM_OBJECT_H_
#define ZARVIK_PLATFORM_OBJECT_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zarvik {

class Variant;

class Object {
 public:
  virtual ~Object() = default;

  // Name of the class as VB's TypeName would give it.
  virtual std::string TypeName() const = 0;

  // Property get. A member the object lacks raises error 438.
  virtual Variant GetProperty(const std::string& name);
  // Property let (value) or set (object reference). Unknown member: 438.
  virtual void PutProperty(const std::string& name, const Variant& value);
  // Method call. Arguments are by reference: a method may change them.
  virtual Variant CallMethod(const std::string& name, std::vector<Variant>& args);

  // Objects may refer to each other in cycles (a host object that is its own
  // member, a class bound to a host object that holds the class). Whoever
  // owns a set of objects finds the cycles nothing reaches any more through
  // these two, and breaks them.
  //
  // Calls `visit` for every object this one holds a reference to. None by
  // default.
  virtual void ForEachReference(
      const std::function<void(const std::shared_ptr<Object>&)>& visit) const;
  // Drops every reference this object holds to other objects; it is called
  // on an object about to go, so what is left of it does not matter.
  // Nothing to drop by default.
  virtual void ReleaseReferences();
};

using ObjectRef = std::shared_ptr<Object>;

// Calls `visit` for every object a value holds: the value itself, or the
// elements of an array (arrays inside arrays included).
void ForEachObjectIn(const Variant& value, const std::function<void(const ObjectRef&)>& visit);

// Creates objects of another automation library by ProgID, as VB's
// CreateObject does; an unknown ProgID raises 429.
class ObjectFactory {
 public:
  virtual ~ObjectFactory() = default;
  virtual ObjectRef CreateObject(const std::string& prog_id) = 0;
};

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_OBJECT_H_
