// A late-bound automation object: members are reached by name at run time.
//
// The host's application object, a data-access connection handed through a
// host object, a recordset returned to the host and the component's own
// classes seen from the automation boundary all implement this interface.
#ifndef ZARVIK_PLATFORM_OBJECT_H_
#define ZARVIK_PLATFORM_OBJECT_H_

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
};

using ObjectRef = std::shared_ptr<Object>;

// Creates objects of another automation library by ProgID, as VB's
// CreateObject does; an unknown ProgID raises 429.
class ObjectFactory {
 public:
  virtual ~ObjectFactory() = default;
  virtual ObjectRef CreateObject(const std::string& prog_id) = 0;
};

}  // namespace zarvik

#endif  // ZARVIK_PLATFORM_OBJECT_H_
