#include "tests/unit/control/service/fake_agent.h"

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace channel = simulator::channel;

FakeAgent::FakeAgent(int descriptor) : descriptor_(descriptor), thread_([this] { serve(); }) {}

FakeAgent::~FakeAgent() {
  leave();
  thread_.join();
  ::close(descriptor_);
}

void FakeAgent::on(const std::string& verb, Verb answer) {
  const std::lock_guard guard(mutex_);
  verbs_[verb] = std::move(answer);
}

void FakeAgent::on(const std::string& verb, const Json& answer) {
  on(verb, [answer](const Json&) { return answer; });
}

void FakeAgent::frame(std::uint32_t stream, std::string_view payload) {
  raw(channel::frame_of(stream, payload));
}

bool FakeAgent::raw(std::string_view bytes) {
  const std::lock_guard guard(sending_);
  while (!bytes.empty()) {
    const ssize_t sent = ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) {
      return false;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return true;
}

void FakeAgent::leave() {
  ::shutdown(descriptor_, SHUT_RDWR);
}

FakeAgent::Json FakeAgent::take(const std::string& verb) {
  std::unique_lock lock(mutex_);
  auto found = requests_.end();
  changed_.wait(lock, [&] {
    found = std::find_if(requests_.begin(), requests_.end(), [&](const Json& each) { return each["do"] == verb; });
    return found != requests_.end();
  });
  const Json request = *found;
  requests_.erase(found);
  return request;
}

std::string FakeAgent::input(std::uint32_t stream, std::size_t size) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return input_[stream].size() >= size; });
  return input_[stream];
}

void FakeAgent::await_end() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return ended_; });
}

std::size_t FakeAgent::count(const std::string& verb) {
  const std::lock_guard guard(mutex_);
  return counts_[verb];
}

void FakeAgent::serve() {
  channel::FrameReader reader(channel::LARGEST_TO_AGENT);
  char block[65536];
  for (;;) {
    const ssize_t size = ::recv(descriptor_, block, sizeof block, 0);
    if (size <= 0) {
      break;
    }
    reader.feed({block, static_cast<std::size_t>(size)});
    while (auto frame = reader.next()) {
      if (frame->stream == channel::DOCUMENTS) {
        serve_request(Json::parse(frame->payload));
      } else {
        const std::lock_guard guard(mutex_);
        input_[frame->stream] += frame->payload;
      }
      changed_.notify_all();
    }
  }
  const std::lock_guard guard(mutex_);
  ended_ = true;
  changed_.notify_all();
}

void FakeAgent::serve_request(const Json& request) {
  const std::string name = request["do"];
  Verb verb = [&name](const Json& with) -> Json { return {{"ok", {{"verb", name}, {"with", with}}}}; };
  {
    const std::lock_guard guard(mutex_);
    requests_.push_back(request);
    ++counts_[name];
    if (verbs_.count(name) != 0) {
      verb = verbs_[name];
    }
  }
  const Json answer = verb(request["with"]);
  if (!answer.is_null()) {
    Json document = {{"id", request["id"]}};
    document.update(answer);
    frame(channel::DOCUMENTS, document.dump());
  }
}
