#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/unit/dcps/entities.h"
#include "tests/unit/dcps/peer.h"

// Start and end of processes that use the engine.
namespace dcps_test {
namespace {

std::vector<std::string> arguments(const std::string& topic) {
  return {std::to_string(own_domain()), own_topic(topic)};
}

TEST(Process, ExitsWithItsStatusWhileEverythingIsInUse) {
  Peer peer(arguments("exit"));
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 1"), "0");
  EXPECT_EQ(peer.finish("exit 7"), 7);
}

TEST(Process, ExitsWithItsStatusWhenEverythingIsDeleted) {
  Peer peer(arguments("leave"));
  ASSERT_EQ(peer.line(), "ready");
  EXPECT_EQ(peer.finish("leave 0"), 0);
}

TEST(Process, SurvivesAListenerThatThrowsAndCallsItNoMore) {
  Entities entities;
  const Writer_var writer = entities.writer(own_topic("throw") + "/back", durable_writer());
  Peer peer({std::to_string(own_domain()), own_topic("throw"), "errors"});
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(writer->write(numbered(1), DDS::HANDLE_NIL), DDS::RETCODE_OK);
  EXPECT_EQ(peer.line(),
            "dcps: a listener threw an exception (thrown by the listener); no listener is called any more");
  std::string threads = peer.ask("listener-threads");
  for (int tries = 0; tries < 1000 && threads != "0"; ++tries) {
    threads = peer.ask("listener-threads");
  }
  EXPECT_EQ(threads, "0");
  ASSERT_EQ(writer->write(numbered(2), DDS::HANDLE_NIL), DDS::RETCODE_OK);
  EXPECT_EQ(peer.ask("take 2"), "0");
  EXPECT_EQ(peer.ask("calls"), "1");
  EXPECT_EQ(peer.finish("leave 5"), 5);
}

TEST(Process, WorksWithoutAnyConfiguration) {
  const char* const before = getenv("CYCLONEDDS_URI");
  const std::string saved = before == nullptr ? "" : before;
  unsetenv("CYCLONEDDS_URI");
  Peer peer({std::to_string(own_domain()), own_topic("bare")});
  if (before != nullptr) {
    setenv("CYCLONEDDS_URI", saved.c_str(), 1);
  }
  EXPECT_EQ(peer.line(), "ready");
  EXPECT_EQ(peer.ask("write 1"), "0");
  EXPECT_EQ(peer.finish("leave 0"), 0);
}

TEST(Process, APluginHearsASampleWhileItIsLoaded) {
  setenv("DCPS_PLUGIN_DOMAIN", std::to_string(own_domain()).c_str(), 1);
  setenv("DCPS_PLUGIN_TOPIC", own_topic("plugin").c_str(), 1);
  Peer peer(arguments("plugin"));
  ASSERT_EQ(peer.line(), "ready");
  ASSERT_EQ(peer.ask("write 9"), "0");
  void* const plugin = dlopen((test_folder() + "/libdcps_plugin.so").c_str(), RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(plugin, nullptr) << dlerror();
  const auto number = reinterpret_cast<int (*)()>(dlsym(plugin, "dcps_plugin_number"));
  ASSERT_NE(number, nullptr);
  EXPECT_EQ(number(), 9);
  const auto stop = reinterpret_cast<void (*)()>(dlsym(plugin, "dcps_plugin_stop"));
  ASSERT_NE(stop, nullptr);
  stop();
  EXPECT_EQ(dlclose(plugin), 0);
}

}  // namespace
}  // namespace dcps_test
