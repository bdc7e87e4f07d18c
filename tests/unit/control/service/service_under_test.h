#pragma once

#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

#include "control/client/client.h"
#include "control/service/service.h"
#include "tests/doubles/temporary_folder.h"
#include "tests/unit/control/service/fake_agent.h"

/// A service on real sockets, with a fake agent behind it, on a thread of its own.
class ServiceUnderTest {
public:
  explicit ServiceUnderTest(control::service::ServiceOptions options = {});
  ~ServiceUnderTest();

  FakeAgent& agent() { return *agent_; }
  std::filesystem::path socket() const { return folder_ / "control.sock"; }
  std::string log(const std::string& name) const { return folder_ / ("logs/" + name); }
  control::client::Client client() const { return control::client::Client(socket()); }
  control::service::Service& service() { return *service_; }
  /// Waits for the end of run().
  control::service::Ended ended();
  /// Waits until on_ready() was called.
  void await_ready() { ready_.get_future().wait(); }

private:
  doubles::TemporaryFolder folder_;
  std::promise<void> ready_;
  std::unique_ptr<FakeAgent> agent_;
  std::unique_ptr<control::service::Service> service_;
  std::future<control::service::Ended> running_;
};

/// A client that sends and receives bytes as the test says.
class RawClient {
public:
  explicit RawClient(const std::filesystem::path& socket);
  /// Takes over a connected socket.
  explicit RawClient(int descriptor) : descriptor_(descriptor) {}
  ~RawClient();
  RawClient(RawClient&& other) noexcept;

  /// Returns false if the service has closed the connection.
  bool send(std::string_view bytes) const;
  /// Everything up to the end of the connection.
  std::string rest();
  /// Everything up to and including that text; what there is at the end of the connection.
  std::string until(const std::string& text);
  /// An answer with Content-Length: header and body.
  std::string answer();
  void close();
  int descriptor() const { return descriptor_; }

private:
  bool read();

  int descriptor_;
  std::string received_;
};

/// The status of an answer.
int status_of(const std::string& answer);
/// The body of an answer.
nlohmann::json body_of(const std::string& answer);
/// A POST, PUT or PATCH as text.
std::string request_text(const std::string& method, const std::string& target, const std::string& body);
std::string get_text(const std::string& target);
