#include "tool/host_client.h"

#include <gtest/gtest.h>

#include "tests/unit/tool/fake_host_server.h"
#include "tool/errors.h"

namespace {

using nlohmann::json;
using tool::CommandError;
using tool::HostClient;
using tool_test::FakeHost;

/// The outcome of calling "Beep".
std::string error_of(HostClient& client, int status) {
  try {
    return client.call("Beep", {1, "two"}).dump();
  } catch (const CommandError& error) {
    EXPECT_EQ(error.status, status);
    return error.what();
  }
}

TEST(HostClientTest, CallsAreNumberedAndAnswersComeWithoutTheirNumber) {
  FakeHost host({"{\"id\":1,\"result\":5}\n", "{\"id\":2}\n"});
  {
    HostClient client(host.path());
    EXPECT_EQ(client.call("Beep", {1, "two"}), json::parse(R"({"result":5})"));
    EXPECT_EQ(client.call("Init"), json::object());
  }
  EXPECT_EQ(host.requests(),
            "{\"args\":[1,\"two\"],\"call\":\"Beep\",\"id\":1}\n{\"args\":[],\"call\":\"Init\",\"id\":2}\n");
}

TEST(HostClientTest, AnAnswerMayComeInPieces) {
  FakeHost host({"{\"id\":1,\"result\":\"" + std::string(10000, 'x') + "\"}\n"});
  HostClient client(host.path());
  EXPECT_EQ(client.call("Beep")["result"].get<std::string>().size(), 10000U);
}

TEST(HostClientTest, ARefusedRequestIsBadUsage) {
  FakeHost host({"{\"id\":1,\"error\":\"no such operation\"}\n"});
  HostClient client(host.path());
  EXPECT_EQ(error_of(client, tool::STATUS_BAD_USAGE), "no such operation");
}

TEST(HostClientTest, AnExceptionIsAFailure) {
  FakeHost host({"{\"id\":1,\"exception\":{\"type\":\"E\",\"what\":\"no\"}}\n",
                 "{\"id\":2,\"exception\":{\"type\":\"int\",\"what\":null}}\n"});
  HostClient client(host.path());
  EXPECT_EQ(error_of(client, tool::STATUS_FAILED), "Beep: exception E: no");
  EXPECT_EQ(error_of(client, tool::STATUS_FAILED), "Beep: exception int");
}

TEST(HostClientTest, AHostThatEndsIsAFailure) {
  FakeHost host({""});
  HostClient client(host.path());
  EXPECT_EQ(error_of(client, tool::STATUS_FAILED), "the host exited");
}

TEST(HostClientTest, EachWaitIsTheCallers) {
  FakeHost host({"{\"id\":1}\n"});
  int waits = 0;
  HostClient client(host.path(), [&waits](int descriptor) {
    ++waits;
    pollfd readable{descriptor, POLLIN, 0};
    ::poll(&readable, 1, -1);
  });
  client.call("Beep");
  EXPECT_GE(waits, 1);
}

TEST(HostClientTest, WhereNobodyListensThereIsNoHost) {
  const doubles::TemporaryFolder folder;
  const std::string path = folder / "none";
  EXPECT_FALSE(tool::host_listens(path));
  EXPECT_FALSE(tool::host_listens(std::string(200, 'x')));
  try {
    HostClient client(path);
    FAIL() << "connected";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.what(), path + ": cannot connect to the host: No such file or directory");
  }
}

}  // namespace
