// The command of a unit under test: starts programs inside it on request, one line of JSON per request.
//   in   {"number":3,"run":["unit-host"],"environment":{"NAME":"value"},"out":"…","err":"…"}
//        {"kill":17,"signal":15}
//   out  {"number":3,"pid":17}, then {"number":3,"status":0} or {"number":3,"signal":6}
// Exits at the end of its input, which ends the unit.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

using nlohmann::json;

std::map<pid_t, int> number_of;

void say(const json& line) {
  std::cout << line.dump() << std::endl;
}

void redirect(const std::string& file, int flags, int descriptor) {
  const int opened = open(file.c_str(), flags, 0644);
  if (opened == -1 || dup2(opened, descriptor) == -1) {
    _exit(126);
  }
  close(opened);
}

[[noreturn]] void become(const json& order) {
  redirect("/dev/null", O_RDONLY, STDIN_FILENO);
  redirect(order.at("out").get<std::string>(), O_WRONLY | O_CREAT | O_APPEND, STDOUT_FILENO);
  redirect(order.at("err").get<std::string>(), O_WRONLY | O_CREAT | O_APPEND, STDERR_FILENO);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  for (const auto& [name, value] : order.at("environment").items()) {
    setenv(name.c_str(), value.get<std::string>().c_str(), 1);
  }
  std::vector<std::string> words = order.at("run");
  std::vector<char*> line;
  for (std::string& word : words) {
    line.push_back(word.data());
  }
  line.push_back(nullptr);
  execvp(line[0], line.data());
  _exit(127);
}

void obey(const json& order) {
  if (order.contains("kill")) {
    kill(order.at("kill").get<pid_t>(), order.at("signal").get<int>());
    return;
  }
  const pid_t child = fork();
  if (child == 0) {
    become(order);
  }
  number_of[child] = order.at("number");
  say({{"number", order.at("number")}, {"pid", child}});
}

void reap() {
  int status = 0;
  for (pid_t ended = waitpid(-1, &status, WNOHANG); ended > 0; ended = waitpid(-1, &status, WNOHANG)) {
    if (WIFEXITED(status)) {
      say({{"number", number_of.at(ended)}, {"status", WEXITSTATUS(status)}});
    } else {
      say({{"number", number_of.at(ended)}, {"signal", WTERMSIG(status)}});
    }
  }
}

/// Executes the requests that can be read from standard input; false at its end.
bool take_orders(std::string& received) {
  char block[4096];
  const ssize_t size = read(STDIN_FILENO, block, sizeof block);
  if (size <= 0) {
    return false;
  }
  received.append(block, static_cast<std::size_t>(size));
  for (std::size_t end = received.find('\n'); end != std::string::npos; end = received.find('\n')) {
    obey(json::parse(received.substr(0, end)));
    received.erase(0, end + 1);
  }
  return true;
}

}  // namespace

int main() {
  sigset_t child_signal;
  sigemptyset(&child_signal);
  sigaddset(&child_signal, SIGCHLD);
  sigprocmask(SIG_BLOCK, &child_signal, nullptr);
  pollfd events[] = {{STDIN_FILENO, POLLIN, 0}, {signalfd(-1, &child_signal, SFD_CLOEXEC), POLLIN, 0}};
  std::string received;
  while (poll(events, 2, -1) > 0) {
    if ((events[1].revents & POLLIN) != 0) {
      signalfd_siginfo signal{};
      [[maybe_unused]] const ssize_t taken = read(events[1].fd, &signal, sizeof signal);
      reap();
    }
    if (events[0].revents != 0 && !take_orders(received)) {
      return 0;
    }
  }
  return 1;
}
