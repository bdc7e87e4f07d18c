#include "tool/started_unit.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "simulator/settings/unit_file.h"
#include "simulator/sysroot/user_namespaces.h"
#include "tool/errors.h"

namespace tool {
namespace fs = std::filesystem;

using simulator::model::UnitModel;
using simulator::settings::UnitFile;
using simulator::sysroot::RootOptions;
using simulator::sysroot::StateFolder;

fs::path build_folder() {
  return fs::read_symlink("/proc/self/exe").parent_path().parent_path();
}

std::string seen_inside(const std::string& path) {
  std::error_code error;
  const fs::path whole = fs::canonical(path, error);
  if (error) {
    return path;
  }
  const std::string build = fs::canonical(build_folder()).string() + '/';
  return whole.string().rfind(build, 0) == 0 ? "/opt/unit/" + whole.string().substr(build.size()) : path;
}

std::vector<std::pair<std::string, std::string>> passed_environment() {
  constexpr const char* NAMES[] = {"ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS", "TZ", "TERM"};
  constexpr const char* PREFIXES[] = {"GTEST_", "BENCHMARK_", "UNIT_"};
  std::vector<std::pair<std::string, std::string>> passed;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string whole = *entry;
    const std::string name = whole.substr(0, whole.find('='));
    const bool by_name = std::find(std::begin(NAMES), std::end(NAMES), name) != std::end(NAMES);
    const bool by_prefix = std::any_of(std::begin(PREFIXES), std::end(PREFIXES),
                                       [&name](const char* prefix) { return name.rfind(prefix, 0) == 0; });
    // The caller cannot choose the unit's folder and port.
    if ((by_name || by_prefix) && name != "UNIT_RUN" && name != "UNIT_NAMING_PORT") {
      passed.emplace_back(name, whole.substr(name.size() + 1));
    }
  }
  return passed;
}

UnitFile load_unit_file(const std::string& path) {
  return UnitFile::load(path.empty() ? (build_folder() / "share/handheld.json").string() : path);
}

StateFolder make_state(const std::string& path) {
  return path.empty() ? StateFolder::make() : StateFolder::at(path);
}

void require_private_root() {
  if (const std::optional<std::string> missing = simulator::sysroot::missing_for_private_root()) {
    throw CommandError(STATUS_NO_UNIT_ROOT, *missing);
  }
}

namespace {

/// Time limit for the end of the unit after its host has exited.
constexpr std::chrono::seconds PATIENCE_AT_END{5};

StateFolder filled_state(const UnitChoice& choice) {
  // Reject invalid options before creating anything.
  const UnitFile values = load_unit_file(choice.unit_file);
  require_private_root();
  StateFolder state = make_state(choice.state);
  state.fill(values);
  return state;
}

}  // namespace

StartedUnit::StartedUnit(const UnitChoice& choice, const OutputTargets& targets, const Signals& signals, bool record)
    : signals_(signals),
      state_(filled_state(choice)),
      model_(UnitModel::open((state_.run() / "model").string())),
      out_(state_.run() / "log/host.out", targets.out),
      err_(state_.run() / "log/host.err", targets.err) {
  if (record) {
    model_.record().start();
  }
  // This command keeps the terminal's input.
  const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
  RootOptions options = root_options(choice);
  options.input = nothing;
  root_.emplace(state_, options);
  close(nothing);
  out_.start();
  err_.start();
  const fs::path socket = state_.run() / "host.sock";
  while (!host_listens(socket)) {
    wait(-1, std::chrono::milliseconds(2));
  }
  host_.emplace(
      socket, [this](int descriptor) { wait_readable(descriptor); }, [this] { pause(PATIENCE_AT_END); });
}

StartedUnit::~StartedUnit() {
  host_.reset();
  root_.reset();
  out_.finish();
  err_.finish();
}

RootOptions StartedUnit::root_options(const UnitChoice& choice) const {
  RootOptions options;
  options.build = build_folder();
  options.services = true;
  options.network = true;
  options.dhcp_server = choice.dhcp_server;
  options.environment = passed_environment();
  options.command = {"/opt/unit/bin/unit-host"};
  if (!choice.library.empty()) {
    options.command.insert(options.command.end(), {"--library", bring_inside(choice.library)});
    options.environment.emplace_back("LD_LIBRARY_PATH", "/opt/unit/lib");
  }
  options.output = out_.writing_end();
  options.error = err_.writing_end();
  return options;
}

std::string StartedUnit::bring_inside(const std::string& library) const {
  std::string inside = seen_inside(library);
  if (inside != library || !fs::is_regular_file(library)) {
    return inside;
  }
  fs::create_directories(state_.run() / "library");
  const fs::path name = fs::path(library).filename();
  const fs::path copy = state_.run() / "library" / name;
  fs::copy_file(library, copy);
  // The unit's programs may run as a user other than the library's owner.
  fs::permissions(copy, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read, fs::perm_options::add);
  return (fs::path("/run/unit/library") / name).string();
}

void StartedUnit::mute() {
  out_.mute();
  err_.mute();
}

void StartedUnit::pause(std::chrono::milliseconds time) {
  const auto deadline = std::chrono::steady_clock::now() + time;
  for (auto left = time; left.count() > 0;
       left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now())) {
    wait(-1, left);
  }
}

void StartedUnit::wait(int descriptor, std::chrono::milliseconds time) {
  pollfd events[] = {{signals_.descriptor(), POLLIN, 0}, {descriptor, POLLIN, 0}};
  do {
    if (poll(events, 2, static_cast<int>(time.count())) == -1 && errno != EINTR) {
      throw CommandError(STATUS_FAILED, std::string("poll: ") + std::strerror(errno));
    }
    while (const std::optional<int> number = signals_.take()) {
      if (*number != SIGCHLD) {
        throw CommandEnd{status_of_signal(*number), true};
      }
    }
    if (const std::optional<int> status = root_->poll()) {
      out_.finish();
      err_.finish();
      throw CommandEnd{*status == 0 ? STATUS_FAILED : *status};
    }
  } while (descriptor != -1 && events[1].revents == 0);
}

}  // namespace tool
