#include "messaging/service_lookup.h"

namespace messaging {

CORBA::Object_ptr find_object(const std::vector<std::string>& path) {
  // Never destroyed, not even at exit: any thread may use the objects that it found until the process ends.
  ORB_wrapper_base& wrapper = *new ORB_wrapper_base;
  std::vector<ORB_wrapper_base::ClientInfo> clients(1, ORB_wrapper_base::ClientInfo(path));
  wrapper.LookupClient(clients);
  return clients.front().object;
}

}  // namespace messaging
