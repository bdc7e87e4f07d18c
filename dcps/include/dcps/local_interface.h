#pragma once

#include <type_traits>

#include <tao/corba.h>

namespace dcps {

/// Base of the interfaces of process-local objects: DDS entities, listeners and type supports.
///
/// A nil reference of such an interface is a null pointer. References are counted: _duplicate() adds one,
/// CORBA::release() removes one, and the last one deletes the object. Counting is thread-safe.
class __attribute__((visibility("default"))) LocalInterface : public virtual CORBA::LocalObject {
protected:
  /// Marks the object as local: CORBA::release() of a plain object reference then counts here as well.
  LocalInterface() { _PR_setobj(reinterpret_cast<omniObjRef*>(1)); }
};

/// What a reference holder (`X_var`) needs of its interface.
template <typename Interface>
struct ReferenceHelper {
  static Interface* _nil() { return nullptr; }
  static bool is_nil(Interface* reference) { return reference == nullptr; }
  static void duplicate(Interface* reference) {
    if (reference != nullptr) {
      reference->_add_ref();
    }
  }
  static void release(Interface* reference) {
    if (reference != nullptr) {
      reference->_remove_ref();
    }
  }
};

/// A holder that owns one reference.
template <typename Interface>
using Reference = _CORBA_ObjRef_Var<Interface, ReferenceHelper<Interface>>;

/// A holder with a reference of its own.
template <typename Interface>
Reference<Interface> add_reference(Interface* reference) {
  ReferenceHelper<Interface>::duplicate(reference);
  return Reference<Interface>(reference);
}

/// The same object by another of its interfaces, with a reference added; nil if it has no such interface.
template <typename Interface>
Interface* narrow(CORBA::Object_ptr object) {
  auto* narrowed = dynamic_cast<Interface*>(object);
  ReferenceHelper<Interface>::duplicate(narrowed);
  return narrowed;
}

template <typename Interface>
using IsLocal = std::enable_if_t<std::is_base_of_v<LocalInterface, Interface>, int>;

}  // namespace dcps

namespace CORBA {

template <typename Interface, dcps::IsLocal<Interface> = 0>
bool is_nil(Interface* reference) {
  return reference == nullptr;
}

template <typename Interface>
bool is_nil(const dcps::Reference<Interface>& holder) {
  return holder.in() == nullptr;
}

template <typename Interface, dcps::IsLocal<Interface> = 0>
void release(Interface* reference) {
  dcps::ReferenceHelper<Interface>::release(reference);
}

}  // namespace CORBA

/// Declares a local interface ahead of its definition, with its reference types.
#define DCPS_DECLARE_INTERFACE(Interface) \
  class Interface;                        \
  using Interface##_ptr = Interface*;     \
  using Interface##_var = dcps::Reference<Interface>

/// What the CORBA mapping gives every interface; belongs in its public part.
#define DCPS_INTERFACE_BODY(Interface)                           \
  using _ptr_type = Interface##_ptr;                             \
  using _var_type = Interface##_var;                             \
  static _ptr_type _nil() {                                      \
    return nullptr;                                              \
  }                                                              \
  static _ptr_type _duplicate(_ptr_type reference) {             \
    dcps::ReferenceHelper<Interface>::duplicate(reference);      \
    return reference;                                            \
  }                                                              \
  static _ptr_type _narrow(CORBA::Object_ptr object) {           \
    return dcps::narrow<Interface>(object);                      \
  }                                                              \
  static _ptr_type _unchecked_narrow(CORBA::Object_ptr object) { \
    return _narrow(object);                                      \
  }
