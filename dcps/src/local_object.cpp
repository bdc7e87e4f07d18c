#include <dds/DCPS/LocalObject.h>

namespace OpenDDS::DCPS {

LocalObjectBase::LocalObjectBase() = default;
LocalObjectBase::~LocalObjectBase() = default;

void LocalObjectBase::_add_ref() {
  references_.fetch_add(1, std::memory_order_relaxed);
}

void LocalObjectBase::_remove_ref() {
  if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) {
    delete this;
  }
}

}  // namespace OpenDDS::DCPS
