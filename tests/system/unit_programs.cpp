// The programs inside a unit under test, and its host's requests.

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/system/unit_fixture.h"

namespace system_test {
namespace {

using control::client::ApiError;
using control::client::Client;
using control::client::escaped;

std::size_t count_of(const std::string& wanted, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + wanted.size())) {
    ++count;
  }
  return count;
}

std::string target_of(const std::string& operation) {
  return "/v1/operations/" + escaped(operation);
}

/// Sends the request; one that is rejected gives {"error": reason}.
json answer_to(Client& client, const std::string& target, const json& body) {
  try {
    return client.send("POST", target, body);
  } catch (const ApiError& error) {
    return {{"error", error.what()}};
  }
}

}  // namespace

void PrintTo(const Ending& ending, std::ostream* stream) {
  *stream << (ending.status ? "status " + std::to_string(*ending.status)
                            : "signal " + std::to_string(ending.signal.value_or(0)))
          << ", out \"" << ending.out << "\", err \"" << ending.err << "\"";
}

Ending Program::wait() const {
  SimulatedUnit::Known& known = *unit_->programs_.at(number_);
  const auto deadline = std::chrono::steady_clock::now() + PATIENCE;
  while (!known.ended) {
    if (std::chrono::steady_clock::now() > deadline) {
      throw std::runtime_error("a program of the unit does not end; out \"" + out() + "\", err \"" + err() + "\"");
    }
    unit_->pump(known, std::chrono::milliseconds(100));
  }
  Ending ending = known.ending;
  ending.out = out();
  ending.err = err();
  return ending;
}

bool Program::running() const {
  SimulatedUnit::Known& known = *unit_->programs_.at(number_);
  unit_->pump(known, std::chrono::milliseconds(0));
  return !known.ended;
}

void Program::kill(int signal) const {
  unit_->programs_.at(number_)->command.signal(signal);
}

std::string Program::out() const {
  return unit_->text(unit_->stream_file(number_, "out")).value_or("");
}

std::string Program::err() const {
  return unit_->text(unit_->stream_file(number_, "err")).value_or("");
}

void Program::wait_for(const std::string& text, std::size_t times) const {
  if (!eventually([&] { return count_of(text, out()) >= times; })) {
    throw std::runtime_error("a program of the unit does not say \"" + text + "\"; out \"" + out() + "\", err \"" +
                             err() + "\"");
  }
}

int Program::pid() const {
  return unit_->programs_.at(number_)->pid;
}

OpenCall::OpenCall(const std::filesystem::path& socket, const std::string& target, const json& body)
    : given_up_(eventfd(0, EFD_CLOEXEC)) {
  answer_ = std::async(std::launch::async, [socket, target, body, given_up = given_up_] {
    Client client(socket);
    client.wait_with([given_up](int descriptor) {
      pollfd events[] = {{descriptor, POLLIN, 0}, {given_up, POLLIN, 0}};
      poll(events, 2, -1);
      if (events[1].revents != 0) {
        throw std::runtime_error("given up");
      }
    });
    return answer_to(client, target, body);
  });
}

OpenCall::~OpenCall() {
  if (answer_.valid()) {
    eventfd_write(given_up_, 1);
    answer_.wait();
  }
  close(given_up_);
}

bool OpenCall::answered() const {
  return answer_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

json OpenCall::answer() {
  if (answer_.wait_for(PATIENCE) != std::future_status::ready) {
    throw std::runtime_error("a request is not answered");
  }
  return answer_.get();
}

OpenCall Host::begin(const std::string& operation, const json& arguments) const {
  return {unit_->found().socket(), target_of(operation), {{"args", arguments}}};
}

json Host::call(const std::string& operation, const json& arguments) const {
  return answer_to(*unit_->client_, target_of(operation), {{"args", arguments}});
}

Ending Host::leave() const {
  call("leave");
  return wait();
}

}  // namespace system_test
