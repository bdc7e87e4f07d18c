#include <unistd.h>
#include <varnok_locker.h>

#include <atomic>
#include <mutex>

#include "simulator/framework/crossing.h"

namespace Varnok {
namespace {

using simulator::framework::cross;
using simulator::model::Point;

/// The framework lock. Never destroyed: a holder may outlive all file-scope objects.
std::mutex& framework_lock() {
  static std::mutex& lock = *new std::mutex;
  return lock;
}

CORBA::ULongLong next_serial() {
  static std::atomic<CORBA::ULongLong> cores_made{0};
  return ++cores_made;
}

}  // namespace

Locker::Locker() : core_(nullptr) {
  cross(Point::LOCKER_TAKE, "{}");
  framework_lock().lock();
}

Locker::~Locker() {
  delete core_;
  framework_lock().unlock();
}

void Locker::Init_core() const {
  if (core_ != nullptr) {
    return;
  }
  cross(Point::LOCKER_INIT_CORE, "{}");
  core_ = new Locker_Core;
  core_->process = static_cast<CORBA::ULong>(::getpid());
  core_->serial = next_serial();
}

}  // namespace Varnok
