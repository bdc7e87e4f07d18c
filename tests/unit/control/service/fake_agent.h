#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "simulator/channel/frames.h"

/// The far end of the service's socket pair: answers requests on a thread of its own as it is told to.
class FakeAgent {
public:
  using Json = nlohmann::ordered_json;
  /// The members besides `id` of the answer, such as {"ok":{…}}; null: no answer.
  using Verb = std::function<Json(const Json& with)>;

  /// `descriptor`: becomes the agent's.
  explicit FakeAgent(int descriptor);
  ~FakeAgent();
  FakeAgent(const FakeAgent&) = delete;
  FakeAgent& operator=(const FakeAgent&) = delete;

  /// How a verb is answered from now on; verbs without are answered with {"verb":…,"with":…}.
  void on(const std::string& verb, Verb answer);
  void on(const std::string& verb, const Json& answer);

  void notice(const Json& notice) { frame(0, notice.dump()); }
  void frame(std::uint32_t stream, std::string_view payload);
  /// Bytes as they are, frame or not. Returns false if the service is gone.
  bool raw(std::string_view bytes);
  /// Closes its end.
  void leave();

  /// Waits for a request of that verb which was not taken yet, and takes it.
  Json take(const std::string& verb);
  /// Waits until that many bytes have arrived on a stream; returns what arrived.
  std::string input(std::uint32_t stream, std::size_t size);
  /// Waits until the service has closed its end.
  void await_end();
  std::size_t count(const std::string& verb);

private:
  void serve();
  void serve_request(const Json& request);

  int descriptor_;
  std::mutex mutex_;
  std::mutex sending_;
  std::condition_variable changed_;
  std::map<std::string, Verb> verbs_;
  std::vector<Json> requests_;
  std::map<std::string, std::size_t> counts_;
  std::map<std::uint32_t, std::string> input_;
  bool ended_ = false;
  std::thread thread_;
};
