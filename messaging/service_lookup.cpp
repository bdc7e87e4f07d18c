#include "messaging/service_lookup.h"

namespace messaging {

CORBA::Object_ptr find_object(const std::vector<std::string>& path) {
  // Never destroyed, not even at exit: what it finds may be in use by any thread until the very end.
  ORB_wrapper_base& wrapper = *new ORB_wrapper_base;
  std::vector<ORB_wrapper_base::ClientInfo> clients(1, ORB_wrapper_base::ClientInfo(path));
  wrapper.LookupClient(clients);
  return clients.front().object;
}

}  // namespace messaging
