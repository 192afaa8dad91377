// Objects of other automation servers as the component sees them: the
// host's application object, its ADO connections and recordsets, the
// objects it creates by ProgID (Windows only).
#ifndef ZARVIK_COM_FOREIGN_OBJECT_H_
#define ZARVIK_COM_FOREIGN_OBJECT_H_

#include <dispex.h>
#include <oaidl.h>

#include <string>
#include <vector>

#include "com/com_values.h"
#include "platform/object.h"

namespace zarvik::com {

// Late binding on an IDispatch: members are looked up by name with
// GetIDsOfNames and, where that is not implemented (script objects), with
// IDispatchEx::GetDispID ignoring case. Property gets and method calls are
// invoked as both (VB's late-bound call); a property put of an object tries
// a put by reference first. Arguments go by value. A failure raises the
// VbError the server reported (438 for an unknown member).
class ForeignObject : public Object {
 public:
  explicit ForeignObject(ComPtr<IDispatch> dispatch);
  IDispatch* Dispatch() const { return dispatch_.get(); }

  std::string TypeName() const override;
  Variant GetProperty(const std::string& name) override;
  void PutProperty(const std::string& name, const Variant& value) override;
  Variant CallMethod(const std::string& name, std::vector<Variant>& args) override;

 private:
  DISPID Id(const std::string& name) const;
  HRESULT Invoke(DISPID id, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO* info);
  Variant Call(const std::string& name, WORD flags, std::vector<VARIANT>& args, bool put);

  ComPtr<IDispatch> dispatch_;
  ComPtr<IDispatchEx> dispatch_ex_;
};

// Creates objects by ProgID with CoCreateInstance (in-process or local
// servers). Unknown ProgID or failure: 429.
class ComObjectFactory : public ObjectFactory {
 public:
  ObjectRef CreateObject(const std::string& prog_id) override;
};

}  // namespace zarvik::com

#endif  // ZARVIK_COM_FOREIGN_OBJECT_H_
