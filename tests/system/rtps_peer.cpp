// A foreign engine: the part of RTPS that discovery needs, on plain sockets. Announces itself by multicast on the
// loopback interface, with an arbitrary unicast port, as OpenDDS does, and writes, one per line and once each:
//
//   seen     another participant's announcement has come by multicast
//   answered another participant has sent to the announced port to exchange endpoints
//
// Announces itself again each second; runs without end.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <string_view>

namespace {

constexpr const char* DISCOVERY_GROUP = "239.255.0.1";
/// The address on which every participant of domain 0 listens for announcements.
constexpr std::uint16_t DISCOVERY_PORT = 7400;
constexpr std::string_view GUID_PREFIX{
    "\xfe\xed"
    "rtps-peer1",
    12};
constexpr std::string_view ANNOUNCER{"\x00\x01\x00\xc2", 4};
constexpr std::size_t HEADER_SIZE = 20;

/// A little-endian RTPS message under construction.
class Message {
public:
  Message& bytes(std::string_view bytes) {
    text_ += bytes;
    return *this;
  }
  Message& u16(std::uint16_t number) { return little_endian(number, 2); }
  Message& u32(std::uint32_t number) { return little_endian(number, 4); }
  Message& parameter(std::uint16_t id, const Message& value) {
    return u16(id).u16(static_cast<std::uint16_t>(value.text_.size())).bytes(value.text_);
  }
  const std::string& text() const { return text_; }

private:
  Message& little_endian(std::uint32_t number, int size) {
    for (int byte = 0; byte < size; ++byte) {
      text_ += static_cast<char>(number >> (8 * byte));
    }
    return *this;
  }

  std::string text_;
};

/// A UDPv4 locator on the loopback interface.
Message locator(std::uint16_t port) {
  return Message().u32(1).u32(port).bytes(std::string(12, '\0')).bytes({"\x7f\x00\x00\x01", 4});
}

/// The announcement of this participant, which is reached at `port`.
std::string announcement(std::uint16_t port) {
  const Message parameters = Message()
                                 .parameter(0x15, Message().bytes({"\x02\x01\x00\x00", 4}))  // protocol version
                                 .parameter(0x16, Message().bytes({"\x01\x7f\x00\x00", 4}))  // vendor
                                 .parameter(0x50, Message().bytes(GUID_PREFIX).bytes({"\x00\x00\x01\xc1", 4}))
                                 .parameter(0x58, Message().u32(0x3f))        // announces and discovers endpoints
                                 .parameter(0x32, locator(port))              // discovery traffic
                                 .parameter(0x31, locator(port))              // samples
                                 .parameter(0x02, Message().u32(100).u32(0))  // lease, s
                                 .u16(0x01)
                                 .u16(0);
  const Message data = Message()
                           .u16(0)
                           .u16(16)
                           .bytes({"\x00\x01\x00\xc7", 4})
                           .bytes(ANNOUNCER)
                           .u32(0)
                           .u32(1)
                           .bytes({"\x00\x03\x00\x00", 4})  // a parameter list, little-endian
                           .bytes(parameters.text());
  return Message()
      .bytes("RTPS")
      .bytes({"\x02\x01\x01\x7f", 4})
      .bytes(GUID_PREFIX)
      .bytes({"\x15\x05", 2})
      .u16(static_cast<std::uint16_t>(data.text().size()))
      .bytes(data.text())
      .text();
}

bool is_from_another(std::string_view message) {
  return message.size() > HEADER_SIZE && message.substr(0, 4) == "RTPS" &&
         message.substr(8, GUID_PREFIX.size()) != GUID_PREFIX;
}

bool is_announcement(std::string_view message) {
  return message.find(ANNOUNCER, HEADER_SIZE) != std::string_view::npos;
}

/// A UDP socket bound to that address; port 0: chosen by the system.
int bound_socket(const char* address, std::uint16_t port) {
  const int descriptor = socket(AF_INET, SOCK_DGRAM, 0);
  const int yes = 1;
  setsockopt(descriptor, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  sockaddr_in name{};
  name.sin_family = AF_INET;
  name.sin_port = htons(port);
  inet_pton(AF_INET, address, &name.sin_addr);
  if (bind(descriptor, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0) {
    std::perror("bind");
    _exit(1);
  }
  return descriptor;
}

std::uint16_t port_of(int descriptor) {
  sockaddr_in name{};
  socklen_t size = sizeof name;
  getsockname(descriptor, reinterpret_cast<sockaddr*>(&name), &size);
  return ntohs(name.sin_port);
}

int discovery_socket() {
  const int descriptor = bound_socket(DISCOVERY_GROUP, DISCOVERY_PORT);
  ip_mreq group{};
  inet_pton(AF_INET, DISCOVERY_GROUP, &group.imr_multiaddr);
  group.imr_interface.s_addr = htonl(INADDR_LOOPBACK);
  if (setsockopt(descriptor, IPPROTO_IP, IP_ADD_MEMBERSHIP, &group, sizeof group) != 0) {
    std::perror("IP_ADD_MEMBERSHIP");
    _exit(1);
  }
  return descriptor;
}

void announce(int descriptor) {
  in_addr loopback{htonl(INADDR_LOOPBACK)};
  setsockopt(descriptor, IPPROTO_IP, IP_MULTICAST_IF, &loopback, sizeof loopback);
  sockaddr_in group{};
  group.sin_family = AF_INET;
  group.sin_port = htons(DISCOVERY_PORT);
  inet_pton(AF_INET, DISCOVERY_GROUP, &group.sin_addr);
  const std::string message = announcement(port_of(descriptor));
  sendto(descriptor, message.data(), message.size(), 0, reinterpret_cast<const sockaddr*>(&group), sizeof group);
}

void say_once(const char* line) {
  static std::set<std::string> said;
  if (said.insert(line).second) {
    std::puts(line);
    std::fflush(stdout);
  }
}

}  // namespace

int main() {
  const int own = bound_socket("127.0.0.1", 0);
  pollfd events[] = {{discovery_socket(), POLLIN, 0}, {own, POLLIN, 0}};
  std::array<char, 65536> buffer{};
  announce(own);
  for (;;) {
    if (poll(events, 2, 1000) == 0) {
      announce(own);
      continue;
    }
    for (const pollfd& event : events) {
      if ((event.revents & POLLIN) == 0) {
        continue;
      }
      const ssize_t size = recv(event.fd, buffer.data(), buffer.size(), 0);
      const std::string_view message(buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
      if (!is_from_another(message)) {
        continue;
      }
      if (event.fd == own) {
        if (!is_announcement(message)) {
          say_once("answered");
        }
      } else if (is_announcement(message)) {
        say_once("seen");
      }
    }
  }
}
