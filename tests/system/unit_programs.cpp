// The programs inside a unit under test, and its host's requests.

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "tests/system/inside_files.h"
#include "tests/system/unit_fixture.h"

namespace system_test {
namespace {

std::size_t count_of(const std::string& wanted, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(wanted); at != std::string::npos; at = text.find(wanted, at + wanted.size())) {
    ++count;
  }
  return count;
}

}  // namespace

void PrintTo(const Ending& ending, std::ostream* stream) {
  *stream << (ending.status ? "status " + std::to_string(*ending.status)
                            : "signal " + std::to_string(ending.signal.value_or(0)))
          << ", out \"" << ending.out << "\", err \"" << ending.err << "\"";
}

Ending Program::wait() const {
  while (running()) {
    if (!unit_->take_report(PATIENCE)) {
      throw std::runtime_error("a program of the unit does not end; out \"" + out() + "\", err \"" + err() + "\"");
    }
  }
  Ending ending = unit_->programs_.at(number_).ending;
  ending.out = out();
  ending.err = err();
  return ending;
}

bool Program::running() const {
  while (unit_->take_report(std::chrono::milliseconds(0))) {
  }
  return !unit_->programs_.at(number_).ended;
}

void Program::kill(int signal) const {
  unit_->send({{"kill", pid()}, {"signal", signal}});
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
  return unit_->programs_.at(number_).pid;
}

OpenCall::OpenCall(const std::filesystem::path& socket, const std::string& line) : connection_(connected(socket)) {
  if (connection_ == -1 || !write_all(connection_, line + "\n")) {
    throw std::system_error(errno, std::generic_category(), socket.string());
  }
}

OpenCall::~OpenCall() {
  close(connection_);
}

bool OpenCall::answered() const {
  pollfd event{connection_, POLLIN, 0};
  return poll(&event, 1, 0) == 1;
}

std::string OpenCall::answer() const {
  std::string answer;
  while (answer.find('\n') == std::string::npos) {
    pollfd event{connection_, POLLIN, 0};
    char block[4096];
    const ssize_t size =
        poll(&event, 1, static_cast<int>(PATIENCE.count())) == 1 ? read(connection_, block, sizeof block) : 0;
    if (size <= 0) {
      throw std::runtime_error("a request is not answered");
    }
    answer.append(block, static_cast<std::size_t>(size));
  }
  return answer;
}

OpenCall Host::begin(const std::string& operation, const json& arguments) const {
  const json request = {{"id", 1}, {"call", operation}, {"args", arguments}};
  return {unit_->outside("/run/unit/host.sock"), request.dump()};
}

json Host::call(const std::string& operation, const json& arguments) const {
  json answer = json::parse(begin(operation, arguments).answer());
  answer.erase("id");
  return answer;
}

Ending Host::leave() const {
  call("leave");
  return wait();
}

}  // namespace system_test
