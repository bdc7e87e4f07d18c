#include "control/client/client.h"
#include "control/client/http_connection.h"
#include "control/wire/exec_frames.h"

namespace control::client {

using nlohmann::json;
using wire::ExecKind;

struct Command::State {
  explicit State(const std::filesystem::path& socket) : connection(socket) {}

  void tell(const json& document) { connection.write(wire::exec_frame(ExecKind::CONTROL, document.dump())); }

  HttpConnection connection;
  wire::ExecFrameReader reader{wire::LARGEST_EXEC_FRAME};
};

namespace {

Command::Message message_of(wire::ExecFrame frame) {
  if (frame.kind == ExecKind::OUT) {
    return {Command::Message::OUT, std::move(frame.payload), {}};
  }
  if (frame.kind == ExecKind::ERR) {
    return {Command::Message::ERR, std::move(frame.payload), {}};
  }
  Command::Message message{Command::Message::CONTROL, {}, json::parse(frame.payload, nullptr, false)};
  if (!message.control.is_object()) {
    throw ConnectionError("the unit's control service sent a message that is not known");
  }
  return message;
}

}  // namespace

Command::Command(const std::filesystem::path& socket, const json& request) : state_(std::make_unique<State>(socket)) {
  HttpConnection& connection = state_->connection;
  connection.request("POST", "/v1/exec", request.dump(-1, ' ', false, json::error_handler_t::replace),
                     "Connection: Upgrade\r\nUpgrade: unit-exec\r\n");
  const Head head = connection.head();
  if (head.status >= 400) {
    throw_api_error(head.status, connection.body(head));
  }
  if (head.status != 101) {
    throw ConnectionError("the unit's control service did not start the command");
  }
}

Command::~Command() = default;
Command::Command(Command&&) noexcept = default;

int Command::descriptor() const {
  return state_->connection.descriptor();
}

std::optional<Command::Message> Command::next(std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  try {
    for (;;) {
      state_->reader.feed(std::exchange(state_->connection.received(), {}));
      if (auto frame = state_->reader.next()) {
        return message_of(std::move(*frame));
      }
      bool ended = false;
      if (!state_->connection.read_more(deadline, ended)) {
        return std::nullopt;
      }
      if (ended) {
        throw ConnectionError("the unit's control service closed the connection");
      }
    }
  } catch (const wire::ExecFrameError& error) {
    throw ConnectionError(error.what());
  }
}

void Command::input(std::string_view bytes) {
  constexpr std::size_t PIECE = 64 << 10;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(PIECE, bytes.size()))) {
    state_->connection.write(wire::exec_frame(ExecKind::INPUT, bytes.substr(0, PIECE)));
  }
}

void Command::end_input() {
  state_->tell({{"eof", true}});
}

void Command::resize(int rows, int columns) {
  state_->tell({{"resize", {{"rows", rows}, {"columns", columns}}}});
}

void Command::signal(int number) {
  state_->tell({{"signal", number}});
}

}  // namespace control::client
