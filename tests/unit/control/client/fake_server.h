#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <thread>

#include "tests/doubles/temporary_folder.h"

/// A server that serves each connection with the function of the test, one after the other, then closes it.
class FakeServer {
public:
  /// `serve`: gets the request's header, up to the empty line, and the connected socket.
  using Serve = std::function<void(const std::string& header, int socket)>;

  explicit FakeServer(Serve serve);
  /// Answers everything with this text.
  explicit FakeServer(const std::string& answer);
  ~FakeServer();
  FakeServer(const FakeServer&) = delete;
  FakeServer& operator=(const FakeServer&) = delete;

  std::filesystem::path socket() const { return folder_ / "socket"; }

private:
  void run(const Serve& serve) const;

  doubles::TemporaryFolder folder_;
  int listener_;
  std::thread thread_;
};

void send_text(int socket, const std::string& text);
