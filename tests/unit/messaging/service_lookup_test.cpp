#include "messaging/service_lookup.h"

#include <gmock/gmock.h>

#include <future>
#include <stdexcept>

#include "tests/doubles/fake_services.h"
#include "tests/doubles/fake_varnok.h"

namespace {

using doubles::bind_service;
using doubles::calls;
using doubles::FakeServices;
using messaging::find_object;
using messaging::find_service;
using testing::ElementsAre;

const std::vector<std::string> GUI_PATH{"Halcyra", "local", "GUIManager"};

class ServiceLookupTest : public testing::Test {
protected:
  ServiceLookupTest() {
    doubles::reset_framework();
    services_.bind();
    calls().clear();
  }
  ~ServiceLookupTest() override { doubles::reset_framework(); }

  FakeServices services_;
};

TEST_F(ServiceLookupTest, FindsTheObjectOfThePath) {
  CORBA::Object_ptr const object = find_object(GUI_PATH);
  EXPECT_TRUE(object->_is_equivalent(services_.gui_manager()));
  EXPECT_THAT(calls().all(), ElementsAre("lookup Halcyra/local/GUIManager"));
}

TEST_F(ServiceLookupTest, EachLookupMakesAWrapperThatStays) {
  const unsigned int made = doubles::wrappers_made();
  find_object(GUI_PATH);
  find_object(GUI_PATH);
  EXPECT_EQ(doubles::wrappers_made(), made + 2);
  EXPECT_EQ(doubles::wrappers_destroyed(), 0U);
}

TEST_F(ServiceLookupTest, AWrapperWhoseLookupThrowsStaysToo) {
  const unsigned int made = doubles::wrappers_made();
  EXPECT_THROW(find_object({"Halcyra", "local", "NOBODY"}), CORBA::OBJECT_NOT_EXIST);
  EXPECT_EQ(doubles::wrappers_made(), made + 1);
  EXPECT_EQ(doubles::wrappers_destroyed(), 0U);
}

TEST_F(ServiceLookupTest, ThrowsWhateverTheLookupThrows) {
  doubles::run_first_in_lookups(FakeServices::GUI_MANAGER, [] { throw std::out_of_range("lookup"); });
  EXPECT_THROW(find_object(GUI_PATH), std::out_of_range);
}

TEST_F(ServiceLookupTest, TheServiceIsTheCallersReference) {
  const Halcyra::gui::GUIManager_var service = find_service<Halcyra::gui::GUIManager>(GUI_PATH);
  ASSERT_FALSE(CORBA::is_nil(service.in()));
  doubles::unbind_service(FakeServices::GUI_MANAGER);
  service->SetDialogSize("Shutdown", "Max");
  EXPECT_EQ(calls().all().back(), "SetDialogSize [Shutdown] [Max]");
}

TEST_F(ServiceLookupTest, AServiceOfAnotherTypeIsNil) {
  bind_service(FakeServices::GUI_MANAGER, services_.everybody_engine());
  const Halcyra::gui::GUIManager_var service = find_service<Halcyra::gui::GUIManager>(GUI_PATH);
  EXPECT_TRUE(CORBA::is_nil(service.in()));
}

TEST_F(ServiceLookupTest, SeveralThreadsMayLookUpAtOnce) {
  const unsigned int made = doubles::wrappers_made();
  std::vector<std::future<bool>> lookups;
  for (int thread = 0; thread < 8; ++thread) {
    lookups.push_back(std::async(std::launch::async, [] { return !CORBA::is_nil(find_object(GUI_PATH)); }));
  }
  for (std::future<bool>& lookup : lookups) {
    EXPECT_TRUE(lookup.get());
  }
  EXPECT_EQ(doubles::wrappers_made(), made + 8);
}

}  // namespace
