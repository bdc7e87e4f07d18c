#include "messaging/service_lookup.h"

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

namespace {

// Wrappers are never destroyed, not even at exit: what they found may be in use by any thread until the very end.
ORB_wrapper_base& new_kept_wrapper() {
  static boost::mutex& mutex = *new boost::mutex;
  static auto& kept = *new std::vector<ORB_wrapper_base*>;
  auto* const wrapper = new ORB_wrapper_base;
  const boost::lock_guard<boost::mutex> lock(mutex);
  kept.push_back(wrapper);
  return *wrapper;
}

}  // namespace

CORBA::Object_ptr FindObject(const std::vector<std::string>& path) {
  ORB_wrapper_base& wrapper = new_kept_wrapper();
  std::vector<ORB_wrapper_base::ClientInfo> clients(1, ORB_wrapper_base::ClientInfo(path));
  wrapper.LookupClient(clients);
  return clients.front().object;
}
