#include "tests/unit/control/service/service_under_test.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace {

using control::service::Ended;
using control::service::Service;
using control::service::ServiceOptions;

sockaddr_un address_of(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.string().copy(address.sun_path, sizeof address.sun_path - 1);
  return address;
}

int require(int result) {
  if (result == -1) {
    throw std::system_error(errno, std::generic_category());
  }
  return result;
}

}  // namespace

ServiceUnderTest::ServiceUnderTest(ServiceOptions options) {
  int pair[2];
  require(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, pair));
  options.agent = pair[0];
  options.listener = require(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const sockaddr_un address = address_of(socket());
  require(::bind(options.listener, reinterpret_cast<const sockaddr*>(&address), sizeof address));
  std::filesystem::create_directory(folder_ / "logs");
  options.logs = require(::open((folder_ / "logs").c_str(), O_DIRECTORY | O_RDONLY | O_CLOEXEC));
  options.on_ready = [this] { ready_.set_value(); };
  if (options.unit.is_null()) {
    options.unit = {{"name", "unit-1"}, {"version", "0.1.0"}};
  }
  agent_ = std::make_unique<FakeAgent>(pair[1]);
  service_ = std::make_unique<Service>(std::move(options));
  running_ = std::async(std::launch::async, [this] { return service_->run(); });
}

ServiceUnderTest::~ServiceUnderTest() {
  agent_->leave();
  if (running_.valid()) {
    running_.wait();
  }
}

Ended ServiceUnderTest::ended() {
  return running_.get();
}

RawClient::RawClient(const std::filesystem::path& socket)
    : descriptor_(require(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))) {
  const sockaddr_un address = address_of(socket);
  require(::connect(descriptor_, reinterpret_cast<const sockaddr*>(&address), sizeof address));
}

RawClient::RawClient(RawClient&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), received_(std::move(other.received_)) {}

RawClient::~RawClient() {
  close();
}

void RawClient::close() {
  if (descriptor_ != -1) {
    ::close(std::exchange(descriptor_, -1));
  }
}

bool RawClient::send(std::string_view bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

bool RawClient::read() {
  char block[65536];
  const ssize_t size = ::recv(descriptor_, block, sizeof block, 0);
  received_.append(block, size > 0 ? static_cast<std::size_t>(size) : 0);
  return size > 0;
}

std::string RawClient::rest() {
  while (read()) {
  }
  return std::exchange(received_, {});
}

std::string RawClient::until(const std::string& text) {
  while (received_.find(text) == std::string::npos && read()) {
  }
  const std::size_t at = received_.find(text);
  const std::size_t end = at == std::string::npos ? received_.size() : at + text.size();
  const std::string taken = received_.substr(0, end);
  received_.erase(0, end);
  return taken;
}

std::string RawClient::answer() {
  const std::string head = until("\r\n\r\n");
  const std::size_t at = head.find("Content-Length: ");
  const std::size_t size = at == std::string::npos ? 0 : std::stoul(head.substr(at + 16));
  while (received_.size() < size && read()) {
  }
  const std::string body = received_.substr(0, size);
  received_.erase(0, size);
  return head + body;
}

int status_of(const std::string& answer) {
  return answer.size() > 12 ? std::stoi(answer.substr(9, 3)) : 0;
}

nlohmann::json body_of(const std::string& answer) {
  const std::size_t end = answer.find("\r\n\r\n");
  return nlohmann::json::parse(end == std::string::npos ? "" : answer.substr(end + 4), nullptr, false);
}

std::string request_text(const std::string& method, const std::string& target, const std::string& body) {
  return method + ' ' + target +
         " HTTP/1.1\r\nHost: unit\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n\r\n" + body;
}

std::string get_text(const std::string& target) {
  return "GET " + target + " HTTP/1.1\r\nHost: unit\r\n\r\n";
}
