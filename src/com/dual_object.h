// The component's classes as COM objects (Windows only): each is a dual
// interface whose IDispatch goes through the late-bound dispatcher
// (automation/dispatcher.h) and whose vtable slots are thunks generated
// from the same description (`zarvik describe --thunks`) that pack their
// arguments and call DualCore::Call.
//
// Message boxes: each object shows its boxes as modal OK-only message
// boxes. For tests it has one member that is not in the type library,
// "ZarvikBoxes" (IDispatch only): putting True makes the object record its
// boxes instead of showing them; getting it answers the boxes recorded since
// the last get as an array (n x 3: text, title, style), or Empty.
#ifndef ZARVIK_COM_DUAL_OBJECT_H_
#define ZARVIK_COM_DUAL_OBJECT_H_

#include <oaidl.h>

#include <atomic>
#include <initializer_list>
#include <memory>
#include <vector>

#include "automation/type_library.h"
#include "com/com_values.h"
#include "platform/message_sink.h"
#include "platform/object.h"

namespace zarvik::com {

// One argument or the result of a vtable call: the declared VARTYPE (with
// VT_BYREF for a by-reference parameter) and where the value is.
struct Slot {
  VARTYPE vt;
  void* data;
};

// Shows each box with MessageBoxW, or keeps it while `recording`.
class BoxSink : public MessageSink {
 public:
  void Show(const Message& message) override;
  bool recording = false;
  std::vector<Message> boxes;
};

// The DISPID of "ZarvikBoxes".
constexpr DISPID kBoxesDispId = 0x5A52;

struct DualContext {
  std::shared_ptr<const automation::ClassDescription> cls;
  std::shared_ptr<void> instance;  // its deleter runs the class's termination
  std::shared_ptr<BoxSink> boxes;
  std::shared_ptr<ObjectFactory> data_access;
  ValueContext values;  // with the component's type library
  GUID iid;             // of the class's dual interface
};

class DualCore {
 public:
  explicit DualCore(DualContext context);
  const GUID& Iid() const { return c_.iid; }
  HRESULT GetTypeInfo(UINT index, ITypeInfo** info);
  // Member names ignore case; named arguments are not supported.
  HRESULT GetIDsOfNames(LPOLESTR* names, UINT count, DISPID* ids);
  // The member of the DISPID that `flags` asks for: a put by reference the
  // property's Set (else its Let), a put its Let (else its Set), a method
  // call the method (else the property get), a get the get (else the
  // method).
  HRESULT Invoke(DISPID id, WORD flags, DISPPARAMS* params, VARIANT* result, EXCEPINFO* info);
  // A vtable slot: member `member` of the class with these arguments.
  HRESULT Call(size_t member, std::initializer_list<Slot> args, Slot result);

 private:
  // Arguments in declared order; omitted ones are VT_ERROR
  // DISP_E_PARAMNOTFOUND. By-reference arguments are written back.
  Variant InvokeMember(size_t member, const std::vector<const VARIANT*>& args);
  HRESULT Boxes(WORD flags, DISPPARAMS* params, VARIANT* result);

  DualContext c_;
  std::vector<int32_t> ids_;
};

template <class Interface>
class DualObject : public Interface {
 public:
  explicit DualObject(DualContext context) : core_(std::move(context)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override {
    if (!out) return E_POINTER;
    if (riid != IID_IUnknown && riid != IID_IDispatch && riid != core_.Iid()) {
      *out = nullptr;
      return E_NOINTERFACE;
    }
    *out = static_cast<Interface*>(this);
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --refs_;
    if (left == 0) delete this;
    return left;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count) *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    return core_.GetTypeInfo(index, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                          DISPID* ids) override {
    return core_.GetIDsOfNames(names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                   VARIANT* result, EXCEPINFO* info, UINT*) override {
    return core_.Invoke(id, flags, params, result, info);
  }

 protected:
  virtual ~DualObject() = default;
  HRESULT Call(size_t member, std::initializer_list<Slot> args, Slot result) {
    return core_.Call(member, args, result);
  }

 private:
  std::atomic<ULONG> refs_{1};
  DualCore core_;
};

// The dual object of the library's class number `class_index` (generated
// with the thunks), with one reference.
IDispatch* NewDualObject(size_t class_index, DualContext context);

}  // namespace zarvik::com

#endif  // ZARVIK_COM_DUAL_OBJECT_H_
