#include "tests/unit/dcps/peer.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <stdexcept>

namespace dcps_test {

std::string test_folder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

Peer::Peer(const std::vector<std::string>& arguments) {
  std::array<int, 2> in{};
  std::array<int, 2> out{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, in.data()) != 0 || pipe2(out.data(), O_CLOEXEC) != 0) {
    throw std::runtime_error("no pipe");
  }
  std::vector<std::string> line{test_folder() + "/dcps_peer"};
  line.insert(line.end(), arguments.begin(), arguments.end());
  simulator::process::ChildOptions options;
  options.descriptors = {{in[0], STDIN_FILENO}, {out[1], STDOUT_FILENO}};
  process_ = std::make_unique<doubles::ChildProcess>(line, options);
  close(in[0]);
  close(out[1]);
  to_ = in[1];
  from_ = out[0];
}

Peer::~Peer() {
  close(to_);
  close(from_);
}

std::string Peer::line() {
  std::string text;
  char character = 0;
  pollfd readable{from_, POLLIN, 0};
  while (poll(&readable, 1, 20000) == 1 && read(from_, &character, 1) == 1 && character != '\n') {
    text += character;
  }
  return text;
}

std::string Peer::ask(const std::string& command) {
  return tell(command) ? line() : "";
}

int Peer::finish(const std::string& command) {
  tell(command);
  return process_->wait();
}

bool Peer::tell(const std::string& command) {
  const std::string text = command + "\n";
  return send(to_, text.data(), text.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(text.size());
}

}  // namespace dcps_test
