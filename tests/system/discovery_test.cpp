// The unit's participants and engines with arbitrary unicast ports, such as OpenDDS, discover each other.

#include "tests/system/unit_fixture.h"

namespace {

using namespace system_test;

// Left to the engine, the announcement would follow up to eight seconds after the endpoints.
TEST(DiscoveryTest, ALateEngineIsAnsweredByMulticastBeforeEndpointsAreExchanged) {
  SimulatedUnit unit;
  const Host host = unit.start().host();
  const Program peer = unit.run({"rtps_peer"});
  peer.wait_for("answered\n");
  EXPECT_EQ(peer.out(), "seen\nanswered\n");
}

TEST(DiscoveryTest, AnEngineThatIsThereFirstIsFoundAndFindsTheHost) {
  SimulatedUnit unit;
  const Program peer = unit.start().run({"rtps_peer"});
  const Host host = unit.host();
  peer.wait_for("seen\n");
  peer.wait_for("answered\n");
}

}  // namespace
