#include "control/service/exec_session.h"

#include <algorithm>
#include <chrono>

#include "control/service/http_text.h"
#include "simulator/channel/document.h"

namespace control::service {
namespace {

using nlohmann::json;
using wire::ExecKind;

constexpr std::uint64_t CREDIT_STEP = 64 << 10;
constexpr std::size_t INPUT_PIECE = 64 << 10;
constexpr std::size_t LARGEST_BACKLOG = 1 << 20;  // of the agent, while input is read
constexpr std::chrono::milliseconds ROOM_POLL{20};

bool is_whole(const json& value, std::int64_t minimum, std::int64_t maximum) {
  return value.is_number_integer() && value.get<std::int64_t>() >= minimum && value.get<std::int64_t>() <= maximum;
}

bool is_size(const json& value) {
  return value.is_object() && value.size() == 2 && is_whole(value.value("rows", json()), 1, 1000) &&
         is_whole(value.value("columns", json()), 1, 1000);
}

/// How a command ended, as its client is told.
json exit_in(const json& notice) {
  json how = json::object();
  const json error = notice.value("error", json());
  if (error.is_string()) {
    how["error"] = error;
  }
  for (const char* name : {"status", "signal"}) {
    const json value = notice.value(name, json());
    if (is_whole(value, 0, 255) && how.count("status") == 0) {
      how[name] = value;
    }
  }
  return how.contains("status") || how.contains("signal")
             ? how
             : json{{"error", "the unit's agent did not say how the command ended"}, {"status", 126}};
}

}  // namespace

ExecSession::ExecSession(Socket socket, Clients& clients, const Limits& limits, AgentLink& agent, const json& started)
    : RawConnection(std::move(socket), clients, limits),
      agent_(agent),
      stream_(*stream_in(started)),
      pid_(started.value("pid", json())),
      room_timer_(executor()) {
  const json credit = started.value("input_credit", json());
  if (credit.is_number_unsigned()) {
    input_credit_ = credit.get<std::uint64_t>();
  }
}

std::optional<std::uint32_t> ExecSession::stream_in(const json& started) {
  const json stream = started.value("stream", json());
  // Standard error has the next number.
  return is_whole(stream, 1, UINT32_MAX - 1) ? std::optional(stream.get<std::uint32_t>()) : std::nullopt;
}

void ExecSession::begin(std::string received) {
  Answer answer;
  answer.status = 101;
  answer.fields = {{"Connection", "Upgrade"}, {"Upgrade", "unit-exec"}};
  const std::string header = header_of(answer, NO_BODY, true);
  sending_.push_back(0);
  send(header);
  if (pid_.is_number_integer()) {
    tell({{"started", {{"pid", pid_}}}});
  }
  const auto listen = [this](ExecKind kind) {
    return [weak = weak_from_this(), this, kind](std::string_view bytes) {
      if (const auto self = weak.lock()) {
        output(kind, bytes);
      }
    };
  };
  agent_.listen(stream_, listen(ExecKind::OUT));
  agent_.listen(stream_ + 1, listen(ExecKind::ERR));
  start(std::move(received));
}

void ExecSession::output(ExecKind kind, std::string_view bytes) {
  received_ += bytes.size();
  if (received_ > granted_) {
    agent_.fail("the agent sent more output than it had credit for");
    return;
  }
  if (!bytes.empty() && open()) {
    sending_.push_back(bytes.size());
    send(wire::exec_frame(kind, bytes));
  }
}

void ExecSession::on_sent(std::size_t) {
  owed_ += sending_.front();
  sending_.pop_front();
  if (owed_ >= CREDIT_STEP && !ended_) {
    granted_ += owed_;
    order({{"credit", owed_}});
    owed_ = 0;
  }
}

void ExecSession::tell(const json& document) {
  if (open()) {
    sending_.push_back(0);
    send(wire::exec_frame(ExecKind::CONTROL, document.dump(-1, ' ', false, json::error_handler_t::replace)));
  }
}

void ExecSession::on_exit(const json& how) {
  if (std::exchange(ended_, true)) {
    return;
  }
  forget();
  tell({{"exit", exit_in(how)}});
  finish();
}

void ExecSession::end() {
  on_exit({{"error", "the unit has ended"}, {"status", 126}});
}

void ExecSession::on_closed() {
  room_timer_.cancel();
  if (!std::exchange(ended_, true)) {
    forget();
    order({{"abandon", true}});
  }
}

void ExecSession::forget() {
  agent_.forget(stream_);
  agent_.forget(stream_ + 1);
}

void ExecSession::order(const json& what) {
  json with = what;
  with["stream"] = stream_;
  try {
    agent_.request("exec.control", with, limits().agent_answer, [](const Reply&) {});
  } catch (const RequestError&) {
    // The agent takes nothing any more: the unit is about to fail.
  }
}

void ExecSession::on_bytes(std::string_view bytes) {
  reader_.feed(bytes);
  take_frames();
}

void ExecSession::take_frames() {
  try {
    while (!ended_ && input_.empty()) {
      const auto frame = reader_.next();
      if (!frame) {
        return;
      }
      if (frame->kind == ExecKind::INPUT) {
        input_ = frame->payload;
        pass_input();
      } else if (frame->kind == ExecKind::CONTROL) {
        control(simulator::channel::parsed_document(frame->payload));
      } else {
        cut_off();
      }
    }
  } catch (const wire::ExecFrameError&) {
    cut_off();
  } catch (const simulator::channel::DocumentError&) {
    cut_off();
  }
}

void ExecSession::control(const json& document) {
  const bool one = document.is_object() && document.size() == 1;
  if (one && document.value("eof", json()) == json(true)) {
    order(document);
  } else if (one && is_size(document.value("resize", json()))) {
    order(document);
  } else if (one && is_whole(document.value("signal", json()), 1, 64)) {
    order(document);
  } else {
    cut_off();
  }
}

bool ExecSession::has_room() const {
  return agent_.backlog() < LARGEST_BACKLOG && (!input_credit_ || *input_credit_ != 0);
}

/// Passes input on as far as the agent takes it; reads no more while some is left.
void ExecSession::pass_input() {
  while (!input_.empty() && has_room()) {
    const std::size_t size = std::min<std::uint64_t>({INPUT_PIECE, input_.size(), input_credit_.value_or(INPUT_PIECE)});
    agent_.send_bytes(stream_, std::string_view(input_).substr(0, size));
    input_.erase(0, size);
    if (input_credit_) {
      *input_credit_ -= size;
    }
  }
  if (!input_.empty()) {
    pause();
    look_again();
  }
}

void ExecSession::look_again() {
  room_timer_.expires_after(ROOM_POLL);
  room_timer_.async_wait([this, weak = weak_from_this()](boost::system::error_code failure) {
    const auto self = weak.lock();
    if (!failure && self != nullptr && open()) {
      go_on();
    }
  });
}

/// Continues with the input that was left, then with what arrived behind it.
void ExecSession::go_on() {
  if (client_left()) {
    cut_off();
    return;
  }
  pass_input();
  if (input_.empty()) {
    take_frames();
  }
  if (input_.empty()) {
    resume();
  }
}

void ExecSession::on_input_credit(std::uint64_t bytes) {
  if (input_credit_) {
    *input_credit_ += bytes;
    if (!input_.empty() && open()) {
      go_on();
    }
  }
}

}  // namespace control::service
