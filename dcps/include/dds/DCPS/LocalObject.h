#pragma once

#include <atomic>

#include <dcps/local_interface.h>

namespace OpenDDS::DCPS {

using LocalObject_ptr = CORBA::LocalObject_ptr;
using LocalObject_var = CORBA::LocalObject_var;

/// The reference count of an implementation. It starts at 1, the maker's reference; the object deletes itself when the
/// last reference is released. A member or a local variable keeps its maker's reference for good.
class __attribute__((visibility("default"))) LocalObjectBase : public virtual CORBA::LocalObject {
public:
  LocalObjectBase(const LocalObjectBase&) = delete;
  LocalObjectBase& operator=(const LocalObjectBase&) = delete;

  void _add_ref() override;
  void _remove_ref() override;
  long ref_count() const { return references_; }

protected:
  LocalObjectBase();
  ~LocalObjectBase() override;

private:
  std::atomic<long> references_{1};
};

/// Base of the implementations of one local interface:
/// `class MyListener : public OpenDDS::DCPS::LocalObject<DDS::DataReaderListener>`.
template <class Stub>
class LocalObject : public virtual Stub, public virtual LocalObjectBase {
public:
  using _ptr_type = typename Stub::_ptr_type;
  using _var_type = typename Stub::_var_type;
  static _ptr_type _narrow(CORBA::Object_ptr object) { return Stub::_narrow(object); }
};

}  // namespace OpenDDS::DCPS
