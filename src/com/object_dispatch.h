// IDispatch over any of the component's Objects (Windows only): the names a
// caller asks for get DISPIDs in the order they are first asked, and every
// call goes to the Object's GetProperty, PutProperty or CallMethod. DISPID 0
// (the default member) is the member named "". The test ADO server serves
// its objects through it, and the component hands out through it any
// object that has no COM identity of its own.
#ifndef ZARVIK_COM_OBJECT_DISPATCH_H_
#define ZARVIK_COM_OBJECT_DISPATCH_H_

#include <oaidl.h>

#include <atomic>
#include <string>
#include <vector>

#include "com/com_values.h"
#include "platform/object.h"

namespace zarvik::com {

class ObjectDispatch;

// The private interface of the dispatchers. The component and the test
// server each link this code, so an object also tells which module it
// belongs to, and only one of the caller's own module is unwrapped.
struct IOwnObject : public IUnknown {
  virtual const void* STDMETHODCALLTYPE ModuleTag() = 0;
  virtual ObjectDispatch* STDMETHODCALLTYPE Dispatcher() = 0;
};

// The Object behind a dispatcher of this module, else null.
ObjectRef OwnObject(IUnknown* unknown);

class ObjectDispatch : public IDispatch, public IOwnObject {
 public:
  ObjectDispatch(ObjectRef target, ValueContext context);
  const ObjectRef& Target() const { return target_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
  ULONG STDMETHODCALLTYPE AddRef() override;
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                          DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID riid, LCID lcid, WORD flags,
                                   DISPPARAMS* params, VARIANT* result, EXCEPINFO* info,
                                   UINT* arg_error) override;
  const void* STDMETHODCALLTYPE ModuleTag() override;
  ObjectDispatch* STDMETHODCALLTYPE Dispatcher() override { return this; }

 private:
  virtual ~ObjectDispatch() = default;

  std::atomic<ULONG> refs_{1};
  ObjectRef target_;
  ValueContext context_;
  std::vector<std::string> names_;  // DISPID n is names_[n - 1], as first asked
};

// The arguments of an IDispatch call in declared order (DISPPARAMS holds
// them last first), and the value of a property put.
std::vector<const VARIANT*> ArgumentsInOrder(const DISPPARAMS& params);
// The property value of a put: the named DISPID_PROPERTYPUT argument.
HRESULT PutValue(const DISPPARAMS& params, const VARIANT** value);

}  // namespace zarvik::com

#endif  // ZARVIK_COM_OBJECT_DISPATCH_H_
