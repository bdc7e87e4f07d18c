#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "tool/commands/table.h"
#include "tool/connection.h"
#include "tool/errors.h"
#include "tool/exec_session.h"
#include "tool/output.h"

namespace tool {
namespace {

namespace fs = std::filesystem;

/// One end of a copy: a file of this machine, or of a unit: ":PATH" or "NAME:PATH".
struct Place {
  bool on_unit = false;
  std::string unit;
  std::string path;
};

Place place_in(const std::string& text) {
  const std::size_t colon = text.find(':');
  if (colon == std::string::npos || text.find('/') < colon) {
    return {false, "", text};
  }
  return {true, text.substr(0, colon), text.substr(colon + 1)};
}

[[noreturn]] void fail(const std::string& path) {
  throw CommandError(STATUS_FAILED, path + ": " + std::strerror(errno));
}

class Descriptor {
public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { close(number_); }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  operator int() const { return number_; }

private:
  int number_;
};

std::filesystem::path socket_of(const Place& place, const Arguments& arguments) {
  const std::string name = place.unit.empty() ? arguments.text("unit") : place.unit;
  return chosen_unit(name).socket();
}

void require(int status, const Place& place) {
  if (status != 0) {
    throw CommandError(STATUS_FAILED, ":" + place.path + ": the copy failed with status " + std::to_string(status));
  }
}

/// Writes the file's bytes to a path on the unit; into it, if it is a folder. The shell gets the path as an argument.
void send(int file, const std::string& base_name, mode_t mode, const Place& to, const Arguments& arguments) {
  constexpr const char* SCRIPT =
      "to=$1; if [ -d \"$to\" ]; then to=$to/$2; fi; new=; [ -e \"$to\" ] || new=yes\n"
      "cat > \"$to\" || exit 1; if [ -n \"$new\" ]; then chmod \"$3\" \"$to\"; fi";
  std::array<char, 5> permissions{};
  std::snprintf(permissions.data(), permissions.size(), "%03o", static_cast<unsigned int>(mode & 0777U));
  UnitCommand command;
  command.argv = {"sh", "-c", SCRIPT, "sh", to.path, base_name, permissions.data()};
  const Source source = [file, &base_name] {
    std::string block(65536, '\0');
    const ssize_t size = read(file, block.data(), block.size());
    if (size < 0) {
      fail(base_name);
    }
    block.resize(static_cast<std::size_t>(size));
    return block;
  };
  require(pipe_through_unit(socket_of(to, arguments), command, source, [](std::string_view) {}), to);
}

/// Writes the bytes of a file on the unit to `file`.
void receive(const Place& from, int file, const std::string& name, const Arguments& arguments) {
  UnitCommand command;
  command.argv = {"cat", "--", from.path};
  command.input = false;
  const int status = pipe_through_unit(socket_of(from, arguments), command, {},
                                       [&](std::string_view bytes) { write_all(file, bytes, name.c_str()); });
  require(status, from);
}

/// A file is written beside its place and moved there when it is complete; a device or FIFO is written directly.
void receive_into(const Place& from, std::string path, const Arguments& arguments) {
  if (fs::is_directory(path)) {
    path = (fs::path(path) / fs::path(from.path).filename()).string();
  }
  if (fs::exists(path) && !fs::is_regular_file(path)) {
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    file == -1 ? fail(path) : receive(from, file, path, arguments);
    return;
  }
  std::string part = path + ".XXXXXX";
  const Descriptor file(mkostemp(part.data(), O_CLOEXEC));
  if (file == -1) {
    fail(path);
  }
  try {
    receive(from, file, path, arguments);
    const mode_t mask = umask(0);
    umask(mask);
    if (fchmod(file, 0666 & ~mask) != 0 || rename(part.c_str(), path.c_str()) != 0) {
      fail(path);
    }
  } catch (...) {
    unlink(part.c_str());
    throw;
  }
}

void send_from(const std::string& path, const Place& to, const Arguments& arguments) {
  const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (file == -1 || fstat(file, &status) != 0) {
    fail(path);
  }
  if (S_ISDIR(status.st_mode)) {
    throw UsageError(path + ": is a folder; only files can be copied");
  }
  send(file, fs::path(path).filename(), S_ISREG(status.st_mode) ? status.st_mode : 0644, to, arguments);
}

int run(const Arguments& arguments) {
  const Place from = place_in(arguments.text("FROM"));
  const Place to = place_in(arguments.text("TO"));
  if (!from.on_unit && !to.on_unit) {
    throw UsageError("one of FROM and TO must be on a unit: :PATH or NAME:PATH");
  }
  if ((from.on_unit && from.path.empty()) || (to.on_unit && to.path.empty())) {
    throw UsageError("a PATH must follow the colon");
  }
  if (!from.on_unit) {
    send_from(from.path, to, arguments);
  } else if (!to.on_unit) {
    receive_into(from, to.path, arguments);
  } else {
    const Descriptor file(open(fs::temp_directory_path().c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (file == -1) {
      fail(fs::temp_directory_path());
    }
    receive(from, file, from.path, arguments);
    lseek(file, 0, SEEK_SET);
    send(file, fs::path(from.path).filename(), 0644, to, arguments);
  }
  return 0;
}

}  // namespace

Command cp_command() {
  return {"cp",
          "Units",
          "Copy a file to a unit or from it",
          {unit_option()},
          {{"FROM", "FILE of this machine, :PATH on the unit or NAME:PATH on the unit NAME", Count::ONE, Offer::FILES},
           {"TO", "the same; a folder takes the file under its name", Count::ONE, Offer::FILES}},
          run};
}

}  // namespace tool
