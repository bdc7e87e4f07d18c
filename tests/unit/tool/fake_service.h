#pragma once

#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/doubles/temporary_folder.h"

namespace tool_test {

/// A running unit for one test, as commands see it: a folder of its own with the lock, and a control service that gives
/// the answers of the test. It is the only unit of this process meanwhile.
class FakeService {
public:
  explicit FakeService(const std::string& name = "fake");
  ~FakeService();
  FakeService(const FakeService&) = delete;
  FakeService& operator=(const FakeService&) = delete;

  /// The answer to requests with this method and target ("GET /v1/dialogs"). Other requests are answered 404. A status
  /// of 0 stands for no answer at all.
  FakeService& answer(const std::string& request, const std::string& body, int status = 200);
  /// The events of every stream, as "type data". The stream stays open.
  FakeService& event(const std::string& type, const std::string& data);

  /// The requests so far, with their bodies: "PUT /v1/record {"on":true}".
  std::vector<std::string> requests() const;
  std::string folder() const { return folder_ / "unit"; }

private:
  struct Answer {
    std::string body;
    int status;
  };

  void listen(const std::string& path);
  void accept();
  void serve(int connection);
  void reply(int connection, const std::string& request);

  doubles::TemporaryFolder folder_;
  int lock_ = -1;
  int listener_ = -1;
  mutable std::mutex mutex_;
  std::map<std::string, Answer> answers_;
  std::string events_;
  std::vector<std::string> requests_;
  std::vector<int> connections_;
  std::vector<std::thread> threads_;
  std::thread accepting_;
};

/// How a command ended.
struct Ended {
  int status;
  std::string out;
  std::string err;
};

/// Runs the command line in this process.
Ended run(const std::vector<std::string>& words);

}  // namespace tool_test
