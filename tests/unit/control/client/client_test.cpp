#include "control/client/client.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <string>
#include <vector>

#include "control/wire/exec_frames.h"
#include "tests/unit/control/client/fake_server.h"

namespace {

using control::client::ApiError;
using control::client::Client;
using control::client::Command;
using control::client::ConnectionError;
using control::client::escaped;
using control::client::EventStream;
using nlohmann::json;

constexpr std::chrono::hours LONG{1};

std::string with_length(const std::string& body, const std::string& status = "200 OK") {
  return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}

std::string failure_of(const std::string& answer) {
  const FakeServer server(answer);
  try {
    Client(server.socket()).get("/x");
    return "accepted";
  } catch (const ConnectionError& error) {
    return error.what();
  }
}

TEST(ClientTest, MembersKeepTheirOrder) {
  const FakeServer server(with_length(R"({"z":1,"a":{"y":2,"b":3}})"));
  EXPECT_EQ(Client(server.socket()).get("/x").dump(), R"({"z":1,"a":{"y":2,"b":3}})");
}

TEST(ClientTest, ARequestHasMethodTargetAndBody) {
  std::string seen;
  const FakeServer server([&seen](const std::string& header, int socket) {
    char body[7];
    const ssize_t size = ::recv(socket, body, sizeof body, MSG_WAITALL);
    seen = header + std::string(body, static_cast<std::size_t>(size));
    send_text(socket, with_length("{}"));
  });
  Client(server.socket()).send("PUT", "/v1/a?b=c", {{"v", 1}});
  EXPECT_EQ(seen,
            "PUT /v1/a?b=c HTTP/1.1\r\nHost: unit\r\nContent-Type: application/json\r\nContent-Length: 7\r\n\r\n"
            "{\"v\":1}");
}

TEST(ClientTest, AnErrorHasItsParts) {
  const FakeServer server(
      with_length(R"({"error":{"what":"no such setting","where":"a.b","expected":"a.c"}})", "404 Not Found"));
  try {
    Client(server.socket()).get("/x");
    FAIL() << "accepted";
  } catch (const ApiError& error) {
    EXPECT_EQ(error.status, 404);
    EXPECT_STREQ(error.what(), "a.b: no such setting");
    EXPECT_EQ(error.where, "a.b");
    EXPECT_EQ(error.expected, "a.c");
  }
}

TEST(ClientTest, NonsenseIsAnError) {
  const std::string not_http = "the unit's control service gave an answer that is not HTTP";
  const std::string closed = "the unit's control service closed the connection";
  const std::string no_object = "the unit's control service gave an answer that is not a JSON object";
  EXPECT_EQ(failure_of(""), closed);
  EXPECT_EQ(failure_of("HTTP/1.1 200 OK\r\n"), closed);
  EXPECT_EQ(failure_of("SSH-2.0-x\r\n\r\n"), not_http);
  EXPECT_EQ(failure_of("HTTP/1.1 2x0 OK\r\n\r\n"), not_http);
  EXPECT_EQ(failure_of("HTTP/1.1 200 OK\r\nnonsense\r\n\r\n"), not_http);
  EXPECT_EQ(failure_of("HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n"), not_http);
  EXPECT_EQ(failure_of("HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n"), not_http);
  EXPECT_EQ(failure_of("HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n{}"), closed);
  EXPECT_EQ(failure_of("HTTP/1.1 200 OK\r\n" + std::string(100'000, 'x')), closed);
  EXPECT_EQ(failure_of(with_length("[]")), no_object);
  EXPECT_EQ(failure_of(with_length("{")), no_object);
  EXPECT_EQ(failure_of(with_length("{}", "500 Oops")), not_http);
}

TEST(ClientTest, NoServiceIsAnError) {
  const doubles::TemporaryFolder folder;
  try {
    Client(folder / "socket").get("/x");
    FAIL() << "connected";
  } catch (const ConnectionError& error) {
    EXPECT_EQ(error.what(),
              folder / "socket" + ": cannot connect to the unit's control service: No such file or directory");
  }
  EXPECT_THROW(Client("/" + std::string(200, 'x')).get("/x"), ConnectionError);
}

TEST(ClientTest, TheWaitIsAskedBeforeBlockingAndMayGiveUp) {
  const FakeServer server([](const std::string& header, int socket) {
    if (header.find("/slow") == std::string::npos) {
      send_text(socket, with_length("{}"));
    } else {
      // Until the client has given up.
      char byte = 0;
      static_cast<void>(::recv(socket, &byte, 1, 0));
    }
  });
  Client client(server.socket());
  int waits = 0;
  client.wait_with([&waits](int descriptor) {
    ++waits;
    pollfd ready{descriptor, POLLIN, 0};
    ::poll(&ready, 1, -1);
  });
  client.get("/fast");
  EXPECT_GE(waits, 1);
  client.wait_with([](int) { throw std::runtime_error("interrupted"); });
  EXPECT_THROW(client.get("/slow"), std::runtime_error);
  client.wait_with({});
  EXPECT_EQ(client.get("/fast").dump(), "{}");
}

TEST(ClientTest, AnyByteCanBeEscaped) {
  EXPECT_EQ(escaped("aZ0-._~"), "aZ0-._~");
  EXPECT_EQ(escaped("a b/c?d&e=f+g%h,°"), "a%20b%2Fc%3Fd%26e%3Df%2Bg%25h%2C%C2%B0");
}

/// A chunked answer of these pieces.
std::string chunked(const std::vector<std::string>& pieces) {
  std::string text = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const std::string& piece : pieces) {
    char size[20];
    std::snprintf(size, sizeof size, "%zx", piece.size());
    text += size + ("\r\n" + piece + "\r\n");
  }
  return text;
}

TEST(EventStreamTest, EventsAreReadAcrossPieces) {
  const FakeServer server(
      chunked({": \n\n", "event: a", "\ndata: {\"x\":1}\n\nevent: b\ndata", ": [2]\n\n: later\n\n", ""}));
  EventStream stream(server.socket(), "/v1/stream");
  const auto one = stream.next(LONG);
  EXPECT_EQ(one->type + one->data.dump(), R"(a{"x":1})");
  const auto two = stream.next(LONG);
  EXPECT_EQ(two->type + two->data.dump(), "b[2]");
  EXPECT_THROW(stream.next(LONG), ConnectionError);
}

TEST(EventStreamTest, AnEventThatIsNoJsonAndAnAnswerThatIsNoStreamAreErrors) {
  const FakeServer bad(chunked({"event: a\ndata: {x}\n\n"}));
  EventStream stream(bad.socket(), "/v1/stream");
  EXPECT_THROW(stream.next(LONG), ConnectionError);
  const FakeServer whole(with_length("{}"));
  EXPECT_THROW(EventStream(whole.socket(), "/v1/stream"), ConnectionError);
}

TEST(CommandTest, ALimitPassesWithoutMessage) {
  const FakeServer server([](const std::string&, int socket) {
    send_text(socket, "HTTP/1.1 101 Switching Protocols\r\nUpgrade: unit-exec\r\n\r\n");
    char block[100];
    while (::recv(socket, block, sizeof block, 0) > 0) {
    }
  });
  Command command(server.socket(), {{"argv", {"true"}}});
  EXPECT_FALSE(command.next(std::chrono::milliseconds(0)));
  EXPECT_FALSE(command.next(std::chrono::milliseconds(20)));
}

TEST(CommandTest, NonsenseIsAnError) {
  const std::string head = "HTTP/1.1 101 Switching Protocols\r\n\r\n";
  using control::wire::exec_frame;
  using control::wire::ExecKind;
  for (const std::string& bytes : {std::string("\xff\xff\xff\xff\1", 5), std::string("\1\0\0\0\x09x", 6),
                                   exec_frame(ExecKind::CONTROL, "x"), std::string("\1\0")}) {
    const FakeServer server(head + bytes);
    Command command(server.socket(), {{"argv", {"true"}}});
    EXPECT_THROW(command.next(LONG), ConnectionError);
  }
  const FakeServer plain(with_length("{}"));
  EXPECT_THROW(Command(plain.socket(), {{"argv", {"true"}}}), ConnectionError);
}

TEST(CommandTest, OutputIsReadWhileInputWaits) {
  // Takes no input before the client has taken this output, more than the sockets hold.
  const std::string output = control::wire::exec_frame(control::wire::ExecKind::OUT, std::string(3 << 20, 'o'));
  const std::string input(3 << 20, 'i');
  std::size_t taken = 0;
  const FakeServer server([&](const std::string&, int socket) {
    send_text(socket, "HTTP/1.1 101 Switching Protocols\r\n\r\n" + output);
    char block[65536];
    while (const ssize_t size = ::recv(socket, block, sizeof block, 0)) {
      if (size < 0) {
        break;
      }
      taken += static_cast<std::size_t>(size);
      if (taken > input.size()) {
        break;
      }
    }
  });
  Command command(server.socket(), {{"argv", {"cat"}}});
  command.input(input);
  EXPECT_EQ(command.next(LONG)->bytes.size(), std::size_t{3} << 20);
}

}  // namespace
