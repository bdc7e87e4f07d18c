#include <dlfcn.h>

#include <atomic>

#include "tests/doubles/fake_services.h"
#include "tests/unit/handheld/handheld_under_test.h"

// The reference to the everybody engine, held by a plain pointer. The test monitors the ORB's own release, so it is
// built on omniORB only.

namespace {

const omniObjRef* watched = nullptr;
std::atomic<unsigned int> releases{0};

}  // namespace

/// Monitors the ORB function that CORBA::release() calls.
void omni::releaseObjRef(omniObjRef* object) {
  if (object && object == watched) {
    ++releases;
  }
  using Release = void (*)(omniObjRef*);
  static const auto real = reinterpret_cast<Release>(dlsym(RTLD_NEXT, "_ZN4omni13releaseObjRefEP10omniObjRef"));
  real(object);
}

namespace {

using doubles::FakeServices;

class EverybodyReferenceTest : public HandheldSurroundings {
protected:
  EverybodyReferenceTest() {
    services_.bind();
    handheld::find_everybody_engine();
    watched = EverBdyPtr->_PR_getobj();
    releases = 0;
  }
  ~EverybodyReferenceTest() override {
    watched = nullptr;
    reset_driver_link();
  }

  FakeServices services_;
  doubles::CapturedOutput output_;
};

TEST_F(EverybodyReferenceTest, IsReleasedWhenALaterLookupReplacesIt) {
  handheld::find_everybody_engine();
  EXPECT_EQ(releases, 1U);
}

TEST_F(EverybodyReferenceTest, IsReleasedWhenALaterLookupFindsAnotherType) {
  doubles::bind_service(FakeServices::EVERYBODY_ENGINE, services_.gui_manager());
  releases = 0;
  handheld::find_everybody_engine();
  EXPECT_EQ(releases, 1U);
}

TEST_F(EverybodyReferenceTest, IsKeptWhenALaterLookupFails) {
  doubles::unbind_service(FakeServices::EVERYBODY_ENGINE);
  releases = 0;
  handheld::find_everybody_engine();
  EXPECT_EQ(releases, 0U);
}

}  // namespace
