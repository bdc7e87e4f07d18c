#include "host/server.h"

#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>

namespace host {
namespace {

/// One connection to the server.
class Connection {
public:
  explicit Connection(const std::string& path) : socket_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    connected = connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  }
  ~Connection() { close(socket_); }

  void send(const std::string& text) const {
    EXPECT_EQ(write(socket_, text.data(), text.size()), ssize_t(text.size()));
  }
  std::string line() const {
    std::string text;
    for (char byte = 0; read(socket_, &byte, 1) == 1 && byte != '\n';) {
      text += byte;
    }
    return text;
  }

  bool connected = false;

private:
  int socket_;
};

/// Outlives the server, as its answers do: the request "block" waits until this is opened.
struct Door {
  std::mutex mutex;
  std::condition_variable opened;
  bool open = false;

  void pass() {
    std::unique_lock<std::mutex> lock(mutex);
    opened.wait(lock, [this] { return open; });
  }
  void unlock() {
    const std::lock_guard<std::mutex> lock(mutex);
    open = true;
    opened.notify_all();
  }
};

class ServerTest : public testing::Test {
protected:
  ServerTest() {
    std::filesystem::create_directory(folder_);
    server_ = std::make_unique<Server>(path_, [door = door_](const std::string& line) {
      if (line == "block") {
        door->pass();
      }
      return Answer{"answer to " + line, line == "leave"};
    });
    running_ = std::thread([this] { server_->run(); });
  }
  ~ServerTest() override {
    door_->unlock();
    if (running_.joinable()) {
      server_->leave();
      running_.join();
    }
    server_.reset();
    std::filesystem::remove_all(folder_);
  }

  const std::string folder_ = testing::TempDir() + "server_test." + std::to_string(getpid());
  const std::string path_ = folder_ + "/sock";
  std::shared_ptr<Door> door_ = std::make_shared<Door>();
  std::unique_ptr<Server> server_;
  std::thread running_;
};

TEST_F(ServerTest, AnswersEachLineInOrder) {
  const Connection connection(path_);
  connection.send("one\ntwo\nth");
  EXPECT_EQ(connection.line(), "answer to one");
  EXPECT_EQ(connection.line(), "answer to two");
  connection.send("ree\n");
  EXPECT_EQ(connection.line(), "answer to three");
}

TEST_F(ServerTest, BlockedCallBlocksItsOwnConnectionOnly) {
  const Connection blocked(path_);
  const Connection free(path_);
  blocked.send("block\nafter\n");
  free.send("go\n");
  EXPECT_EQ(free.line(), "answer to go");
  door_->unlock();
  EXPECT_EQ(blocked.line(), "answer to block");
  EXPECT_EQ(blocked.line(), "answer to after");
}

TEST_F(ServerTest, ServesOthersAfterAConnectionHasGone) {
  {
    const Connection gone(path_);
    gone.send("half a li");
  }
  const Connection connection(path_);
  connection.send("x\n");
  EXPECT_EQ(connection.line(), "answer to x");
}

TEST_F(ServerTest, LeavesOnceTheAnswerIsOut) {
  const Connection connection(path_);
  connection.send("leave\n");
  EXPECT_EQ(connection.line(), "answer to leave");
  running_.join();
}

TEST(ServerPathTest, NameThatIsTooLongIsRefused) {
  EXPECT_THROW(Server("/tmp/" + std::string(120, 'x'), [](const std::string&) { return Answer(); }), std::system_error);
}

}  // namespace
}  // namespace host
