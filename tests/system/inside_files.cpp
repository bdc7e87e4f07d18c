#include "tests/system/inside_files.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace system_test {

namespace fs = std::filesystem;

std::optional<std::string> text_of(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return std::nullopt;
  }
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

bool write_all(int descriptor, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t part = ::write(descriptor, text.data() + written, text.size() - written);
    if (part <= 0) {
      return false;
    }
    written += static_cast<std::size_t>(part);
  }
  return true;
}

int connected(const fs::path& socket) {
  const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  socket.string().copy(address.sun_path, sizeof address.sun_path - 1);
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    close(connection);
    return -1;
  }
  return connection;
}

bool listens(const fs::path& socket) {
  const int connection = connected(socket);
  if (connection != -1) {
    close(connection);
  }
  return connection != -1;
}

}  // namespace system_test
