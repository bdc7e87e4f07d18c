// Exits with 0 if the framework gives this process a DDS participant, else with 1.

#include <varnok_dds.h>

namespace {

struct Entity : Varnok::DDS_BaseObj {
  bool has_participant() const { return !CORBA::is_nil(DdsBase().participant); }
};

}  // namespace

int main() {
  return Entity().has_participant() ? 0 : 1;
}
