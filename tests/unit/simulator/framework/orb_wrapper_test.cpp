#include <gtest/gtest.h>
#include <orb_wrapper.h>

#include <cstdlib>

#include "tests/doubles/naming_service.h"
#include "tests/unit/simulator/model/this_unit.h"

namespace {

using doubles::free_port;
using doubles::NamingService;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator_test::ThisUnit;
using ClientInfo = ORB_wrapper_base::ClientInfo;

/// The naming service that this process's ORB uses; it contains the path "Halcyra"/"local"/"GUIManager".
class OrbWrapperTest : public ::testing::Test {
protected:
  static void SetUpTestSuite() {
    ThisUnit::get();
    naming = new NamingService;
    ::setenv("UNIT_NAMING_PORT", std::to_string(naming->port()).c_str(), 1);
    const CosNaming::NamingContext_var root = naming->root();
    const CosNaming::NamingContext_var halcyra = root->bind_new_context(name("Halcyra"));
    const CosNaming::NamingContext_var local = halcyra->bind_new_context(name("local"));
    local->bind(name("GUIManager"), root.in());
  }
  static void TearDownTestSuite() {
    delete naming;
    naming = nullptr;
  }

  OrbWrapperTest() { ThisUnit::get().reset(); }

  static CosNaming::Name name(const char* id) {
    CosNaming::Name name;
    name.length(1);
    name[0].id = CORBA::string_dup(id);
    name[0].kind = CORBA::string_dup("");
    return name;
  }

  static NamingService* naming;
};

NamingService* OrbWrapperTest::naming = nullptr;

TEST_F(OrbWrapperTest, FindsTheObjectBehindAPath) {
  std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"})};
  ORB_wrapper_base wrapper;
  wrapper.LookupClient(clients);
  const CosNaming::NamingContext_var root = naming->root();
  EXPECT_TRUE(root->_is_equivalent(clients[0].object));
  EXPECT_FALSE(clients[0].object->_non_existent());
}

TEST_F(OrbWrapperTest, FillsEveryEntryInOrder) {
  std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"}), ClientInfo({"Halcyra"})};
  ORB_wrapper_base wrapper;
  wrapper.LookupClient(clients);
  EXPECT_FALSE(CORBA::is_nil(clients[0].object));
  const CosNaming::NamingContext_var halcyra = CosNaming::NamingContext::_narrow(clients[1].object);
  EXPECT_FALSE(CORBA::is_nil(halcyra.in()));
  EXPECT_FALSE(halcyra->_is_equivalent(clients[0].object));
}

TEST_F(OrbWrapperTest, APathThatLeadsNowhereThrowsAndKeepsEarlierEntries) {
  std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"}),
                                  ClientInfo({"Halcyra", "local", "HWENUM_ABLE", "1"}), ClientInfo({"Halcyra"})};
  ORB_wrapper_base wrapper;
  EXPECT_THROW(wrapper.LookupClient(clients), CosNaming::NamingContext::NotFound);
  EXPECT_FALSE(CORBA::is_nil(clients[0].object));
  EXPECT_TRUE(CORBA::is_nil(clients[1].object));
  EXPECT_TRUE(CORBA::is_nil(clients[2].object));
}

TEST_F(OrbWrapperTest, AnEmptyPathThrows) {
  std::vector<ClientInfo> clients{ClientInfo(std::vector<std::string>{})};
  ORB_wrapper_base wrapper;
  EXPECT_THROW(wrapper.LookupClient(clients), CORBA::Exception);
}

TEST_F(OrbWrapperTest, WhatOneWrapperFindsOutlivesAnother) {
  std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"})};
  ORB_wrapper_base wrapper;
  wrapper.LookupClient(clients);
  {
    std::vector<ClientInfo> others{ClientInfo({"Halcyra", "local", "GUIManager"})};
    ORB_wrapper_base other;
    other.LookupClient(others);
  }
  EXPECT_FALSE(clients[0].object->_non_existent());
}

TEST_F(OrbWrapperTest, ALookupCanBeToldToFail) {
  ThisUnit::get().model().faults().arm(Point::ORB_LOOKUP, {FaultKind::FAIL, 0, 1, 1});
  std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"})};
  ORB_wrapper_base wrapper;
  EXPECT_THROW(wrapper.LookupClient(clients), CORBA::TRANSIENT);
  EXPECT_NO_THROW(wrapper.LookupClient(clients));
}

TEST_F(OrbWrapperTest, LookupsAreRecordedWithTheirPath) {
  ThisUnit::get().model().record().start();
  std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"})};
  ORB_wrapper_base().LookupClient(clients);
  const auto lines = doubles::lines_of(ThisUnit::get().file("calls.jsonl"));
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_NE(lines[0].find(R"("at":"orb.lookup","args":{"path":["Halcyra","local","GUIManager"]})"), std::string::npos);
}

/// Lookups in processes whose ORB is not started yet; each runs in its own child process.
class OrbStartTest : public ::testing::Test {
protected:
  OrbStartTest() {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    ThisUnit::get().reset();
  }

  /// The name of the exception that a lookup throws with that port.
  static std::string refusal(const std::string& port) {
    ::setenv("UNIT_NAMING_PORT", port.c_str(), 1);
    std::vector<ClientInfo> clients{ClientInfo({"Halcyra", "local", "GUIManager"})};
    try {
      ORB_wrapper_base().LookupClient(clients);
    } catch (const CORBA::Exception& error) {
      return error._name();
    }
    return "found";
  }
};

TEST_F(OrbStartTest, WithoutNamingServiceALookupThrows) {
  EXPECT_EXIT(std::exit(refusal(std::to_string(free_port())) == "TRANSIENT" ? 4 : 1), ::testing::ExitedWithCode(4), "");
}

TEST_F(OrbStartTest, WithoutPortALookupThrowsUntilThereIsOne) {
  EXPECT_EXIT(
      {
        for (const char* none : {"", "0", "65536", "port"}) {
          if (refusal(none) != "INITIALIZE") {
            std::exit(1);
          }
        }
        std::exit(refusal(std::to_string(free_port())) == "TRANSIENT" ? 5 : 1);
      },
      ::testing::ExitedWithCode(5), "");
}

}  // namespace
