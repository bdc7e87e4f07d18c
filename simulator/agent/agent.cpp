#include "simulator/agent/agent.h"

#include <signal.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <exception>
#include <thread>
#include <utility>

#include "simulator/agent/naming.h"
#include "simulator/agent/network.h"
#include "simulator/agent/refusal.h"
#include "simulator/channel/document.h"

namespace simulator::agent {
namespace {

constexpr int NAMING_PORT = 2809;
constexpr int MOST_REQUESTS = 256;
constexpr int MOST_ROWS = 1000;

/// A descriptor that closes itself.
struct Log {
  ~Log() { ::close(descriptor); }
  int descriptor;
};

int watched_children() {
  sigset_t watched;
  sigemptyset(&watched);
  sigaddset(&watched, SIGCHLD);
  sigprocmask(SIG_BLOCK, &watched, nullptr);
  return ::signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK);
}

/// The status that a shell gives a command that cannot be started.
int status_of(const std::system_error& error) {
  return error.code().value() == ENOENT ? 127 : 126;
}

}  // namespace

Agent::Agent(int channel)
    : link_(channel),
      commands_(link_),
      host_(commands_, link_),
      children_(watched_children()),
      wake_up_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  ::signal(SIGPIPE, SIG_IGN);
  verbs_["host.status"] = [this](const Arguments&) { return host_.state(); };
}

void Agent::run() {
  while (!ends_) {
    int limit = host_.look();
    limit = limit == -1 ? 3'600'000 : limit;
    // What was written before an answer was ready is sent before it.
    const std::vector<Json> due = take_answers();
    if (!due.empty()) {
      limit = 0;
    }
    std::vector<pollfd> events{{link_.descriptor(), POLLIN, 0}, {children_, POLLIN, 0}, {wake_up_, POLLIN, 0}};
    commands_.watch(events, limit);
    if (::poll(events.data(), events.size(), limit) == -1 && errno != EINTR) {
      return;
    }
    if (events[2].revents != 0) {
      eventfd_t count = 0;
      ::eventfd_read(wake_up_, &count);
      if (is_set_up_ && !reaps_) {
        finish_set_up();
      }
    }
    if (reaps_) {
      reap();
    }
    commands_.serve(events);
    for (const Json& answer : due) {
      link_.send(answer);
    }
    if (events[0].revents != 0 && !link_.receive()) {
      return;
    }
    while (const auto frame = link_.next()) {
      take(*frame);
    }
  }
}

void Agent::take(const channel::Frame& frame) {
  if (frame.stream == channel::DOCUMENTS) {
    take_document(frame.payload);
  } else {
    commands_.input(frame.stream, frame.payload);
  }
}

void Agent::take_document(const std::string& text) {
  Json request;
  try {
    request = channel::parsed_document(text);
  } catch (const channel::DocumentError& error) {
    throw channel::FrameError(error.what());
  }
  const std::string name = request.value("do", "");
  const Json id = request.value("id", Json());
  const Json with = request.value("with", Json::object());
  if (name == "stop") {
    ends_ = true;
  } else if (name == "set_up") {
    begin_set_up(with);
  } else if (name == "exec.start") {
    start_command(id, Arguments(with));
  } else if (name == "ui_done") {
    send_ui_done(id);
  } else if (name == "exec.control") {
    link_.send(answer_from(id, [&] { return control_command(Arguments(with)); }));
  } else {
    answer_on_thread(request);
  }
}

void Agent::answer_on_thread(const Json& request) {
  if (requests_ >= MOST_REQUESTS || !is_set_up_) {
    link_.send(answer_from(request.value("id", Json()), [this]() -> Json {
      throw Refusal(CONFLICT, is_set_up_ ? "too many requests are waiting for their answers" : "the unit is starting");
    }));
    return;
  }
  ++requests_;
  std::thread([this, request] {
    add_answer(answer_of(verbs_, request));
    --requests_;
  }).detach();
}

void Agent::add_answer(Json answer) {
  {
    const std::lock_guard guard(answers_mutex_);
    answers_.push_back(std::move(answer));
  }
  ::eventfd_write(wake_up_, 1);
}

std::vector<Json> Agent::take_answers() {
  const std::lock_guard guard(answers_mutex_);
  return std::exchange(answers_, {});
}

void Agent::begin_set_up(const Json& with) {
  try {
    if (orders_) {
      throw Refusal(CONFLICT, "the unit is set up already");
    }
    orders_ = orders_in(with);
    apply_limits(*orders_);
    // From here on, what this process writes is a log.
    const Log log{commands_.new_log("agent.log")};
    ::dup2(log.descriptor, STDOUT_FILENO);
    ::dup2(log.descriptor, STDERR_FILENO);
  } catch (const std::exception& error) {
    link_.send({{"notice", "failed"}, {"what", error.what()}});
    return;
  }
  std::thread([this] {
    try {
      set_up(*orders_);
    } catch (const std::exception& error) {
      link_.send({{"notice", "failed"}, {"what", error.what()}});
    }
    ::eventfd_write(wake_up_, 1);
  }).detach();
}

void Agent::set_up(const Orders& orders) {
  make_files(orders);
  prepare_loopback();
  if (orders.network || orders.dhcp_server) {
    const Log log{commands_.new_log("network.log")};
    make_eth0(orders.dhcp_server, log.descriptor);
  }
  seal_root(orders);
  if (orders.services) {
    const Log naming{commands_.new_log("names.log")};
    const Log services{commands_.new_log("services.log")};
    ::eventfd_write(wake_up_, 1);
    start_naming(NAMING_PORT, naming.descriptor);
    start_services(services.descriptor);
  }
  is_set_up_ = true;
}

void Agent::finish_set_up() {
  auto& unit = model::UnitModel::of_this_unit();
  add_setting_verbs(verbs_, unit, link_);
  add_fault_verbs(verbs_, unit);
  add_host_verbs(verbs_);
  add_power_verbs(verbs_, unit);
  add_screen_verbs(verbs_, unit, link_);
  add_record_verbs(verbs_, unit);
  reaps_ = true;
  std::thread([this, &unit] {
    for (std::uint32_t seen = unit.gui().changed().count();; seen = unit.gui().changed().count()) {
      unit.gui().changed().wait(seen, std::chrono::hours(1));
      link_.send({{"notice", "dialogs"}});
    }
  }).detach();
  const auto ready = [this] { link_.send({{"notice", "ready"}}); };
  if (orders_->host.empty()) {
    ready();
  } else {
    host_.start(orders_->host, orders_->host_serves, ready);
  }
}

CommandLine Agent::command_in(const Arguments& with) const {
  if (!reaps_) {
    throw Refusal(CONFLICT, "the unit is starting");
  }
  CommandLine line;
  line.words = with.texts("argv");
  if (line.words.empty() || line.words.front().empty()) {
    throw Refusal(BAD_REQUEST, "must hold a command", "argv", "array of at least one text");
  }
  line.environment = with.variables("environment");
  line.directory = with.text("directory", "/");
  line.input = with.flag("stdin", false);
  if (with.has("terminal")) {
    const Arguments size(with.any("terminal"));
    line.terminal = {static_cast<int>(size.number("rows", 1, MOST_ROWS)),
                     static_cast<int>(size.number("columns", 1, MOST_ROWS))};
    line.input = true;
  }
  return line;
}

void Agent::start_command(const Json& id, const Arguments& with) {
  std::optional<Json> end;
  link_.send(answer_from(id, [&]() -> Json {
    const CommandLine line = command_in(with);
    try {
      const auto [stream, process] = commands_.start(line);
      return {{"stream", stream}, {"pid", process}};
    } catch (const std::system_error& error) {
      const std::uint32_t stream = commands_.next_stream();
      end = {{"notice", "exit"}, {"stream", stream}, {"error", error.what()}, {"status", status_of(error)}};
      return {{"stream", stream}, {"pid", nullptr}};
    }
  }));
  if (end) {
    link_.send(*end);
  }
}

void Agent::send_ui_done(const Json& id) {
  const auto refuse = [this, id](RefusalCode code, const std::string& what) {
    link_.send(answer_from(id, [&]() -> Json { throw Refusal(code, what); }));
  };
  if (!reaps_) {
    return refuse(CONFLICT, "the unit is starting");
  }
  CommandLine line;
  line.words = {"/bin/sh", "-c", "exec /opt/unit/bin/unit-ui-done >/dev/null 2>&1"};
  try {
    commands_.start(line, [this, id, refuse](const CommandEnd& end) {
      if (end.status == 0) {
        link_.send({{"id", id}, {"ok", {{"sent", true}}}});
      } else {
        refuse(CONFLICT, "no hardware object has taken the message");
      }
    });
  } catch (const std::system_error& error) {
    refuse(FAILED, error.what());
  }
}

Json Agent::control_command(const Arguments& with) {
  const auto stream = static_cast<std::uint32_t>(with.number("stream", 1, UINT32_MAX));
  if (with.has("credit")) {
    commands_.credit(stream, static_cast<std::size_t>(with.number("credit", 1, INT32_MAX)));
  }
  if (with.has("resize")) {
    const Arguments size(with.any("resize"));
    commands_.resize(stream, static_cast<int>(size.number("rows", 1, MOST_ROWS)),
                     static_cast<int>(size.number("columns", 1, MOST_ROWS)));
  }
  if (with.has("signal")) {
    commands_.signal(stream, static_cast<int>(with.number("signal", 1, 64)));
  }
  if (with.flag("eof", false)) {
    commands_.end_input(stream);
  }
  if (with.flag("abandon", false)) {
    commands_.abandon(stream);
  }
  return Json::object();
}

void Agent::reap() {
  signalfd_siginfo signal{};
  while (::read(children_, &signal, sizeof signal) > 0) {
  }
  int status = 0;
  for (pid_t ended = ::waitpid(-1, &status, WNOHANG); ended > 0; ended = ::waitpid(-1, &status, WNOHANG)) {
    commands_.note_exit(ended, status);
  }
}

}  // namespace simulator::agent
