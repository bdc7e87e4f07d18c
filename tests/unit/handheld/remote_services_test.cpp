#include "handheld/remote_services.h"

#include "tests/doubles/fake_services.h"
#include "tests/unit/handheld/handheld_under_test.h"

namespace {

using doubles::calls;
using doubles::CapturedOutput;
using doubles::FakeServices;
using handheld::find_everybody_engine;
using handheld::find_hw_enumeration_engine;
using testing::ElementsAre;

const char NO_GUI_MANAGER[] = "Handheld_Hardware::FindGuiManagerInstance Missing GuiManager err\n";
const char NO_EVERYBODY[] = "Handheld_Hardware::Missing Everybody Engine err, please load\n";
const char NO_ENUMERATION[] = "Handheld_Hardware::Missing HW Enumeration Engine err, please load\n";

class RemoteServicesTest : public testing::Test {
protected:
  RemoteServicesTest() {
    doubles::reset_framework();
    reset_driver_link();
    calls().clear();
  }
  ~RemoteServicesTest() override { reset_driver_link(); }

  FakeServices services_;
  CapturedOutput output_;
};

TEST_F(RemoteServicesTest, TheGuiManagerIsFoundByItsPathOfThreeNames) {
  services_.bind();
  FindGuiManagerInstance();
  EXPECT_THAT(calls().all(), ElementsAre("lookup Halcyra/local/GUIManager"));
  ASSERT_FALSE(CORBA::is_nil(GuiManagerPtr.in()));
  EXPECT_TRUE(GuiManagerPtr->_is_equivalent(services_.gui_manager()));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(RemoteServicesTest, WithoutAGuiManagerOneLineIsPrintedAndTheHolderStaysNil) {
  FindGuiManagerInstance();
  EXPECT_TRUE(CORBA::is_nil(GuiManagerPtr.in()));
  EXPECT_EQ(output_.err(), NO_GUI_MANAGER);
  EXPECT_EQ(output_.out(), "");
}

TEST_F(RemoteServicesTest, ALaterLookupThatFailsKeepsTheEarlierGuiManager) {
  services_.bind();
  FindGuiManagerInstance();
  doubles::unbind_service(FakeServices::GUI_MANAGER);
  FindGuiManagerInstance();
  ASSERT_FALSE(CORBA::is_nil(GuiManagerPtr.in()));
  EXPECT_TRUE(GuiManagerPtr->_is_equivalent(services_.gui_manager()));
  EXPECT_EQ(output_.err(), NO_GUI_MANAGER);
}

TEST_F(RemoteServicesTest, AnObjectOfAnotherTypeMakesTheGuiManagerNilWithoutAnyMessage) {
  services_.bind();
  FindGuiManagerInstance();
  doubles::bind_service(FakeServices::GUI_MANAGER, services_.hw_enumeration());
  FindGuiManagerInstance();
  EXPECT_TRUE(CORBA::is_nil(GuiManagerPtr.in()));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(RemoteServicesTest, AnyTypeOfExceptionOfTheGuiManagersLookupIsSwallowed) {
  doubles::run_first_in_lookups(FakeServices::GUI_MANAGER, [] { throw 42; });
  EXPECT_NO_THROW(FindGuiManagerInstance());
  EXPECT_EQ(output_.err(), NO_GUI_MANAGER);
}

TEST_F(RemoteServicesTest, EachLookupMakesAWrapperThatIsNeverDestroyed) {
  services_.bind();
  const unsigned int made = doubles::wrappers_made();
  FindGuiManagerInstance();
  FindGuiManagerInstance();
  find_everybody_engine();
  find_hw_enumeration_engine();
  EXPECT_EQ(doubles::wrappers_made(), made + 4);
  EXPECT_EQ(doubles::wrappers_destroyed(), 0U);
}

TEST_F(RemoteServicesTest, TheEverybodyEngineIsFoundByItsPathOfFourNames) {
  services_.bind();
  find_everybody_engine();
  EXPECT_THAT(calls().all(), ElementsAre("lookup Halcyra/local/EVERYBODYENG/1"));
  ASSERT_FALSE(CORBA::is_nil(EverBdyPtr));
  EXPECT_TRUE(EverBdyPtr->_is_equivalent(services_.everybody_engine()));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(RemoteServicesTest, WithoutAnEverybodyEngineItsLineIsPrinted) {
  find_everybody_engine();
  EXPECT_EQ(EverBdyPtr, nullptr);
  EXPECT_EQ(output_.err(), NO_EVERYBODY);
  EXPECT_EQ(output_.out(), "");
}

TEST_F(RemoteServicesTest, AnEverybodyEngineOfAnotherTypeIsReportedAsNull) {
  services_.bind();
  find_everybody_engine();
  doubles::bind_service(FakeServices::EVERYBODY_ENGINE, services_.gui_manager());
  find_everybody_engine();
  EXPECT_TRUE(CORBA::is_nil(EverBdyPtr));
  EXPECT_EQ(output_.err(), "EveryBdyPtr is null\n");
}

TEST_F(RemoteServicesTest, ALaterLookupThatFailsKeepsTheEarlierEverybodyEngine) {
  services_.bind();
  find_everybody_engine();
  doubles::run_first_in_lookups(FakeServices::EVERYBODY_ENGINE, [] { throw CORBA::TRANSIENT(); });
  find_everybody_engine();
  ASSERT_FALSE(CORBA::is_nil(EverBdyPtr));
  EXPECT_TRUE(EverBdyPtr->_is_equivalent(services_.everybody_engine()));
  EXPECT_EQ(output_.err(), NO_EVERYBODY);
}

TEST_F(RemoteServicesTest, TheEnumerationEngineIsFoundByItsPathOfFourNames) {
  services_.bind();
  find_hw_enumeration_engine();
  EXPECT_THAT(calls().all(), ElementsAre("lookup Halcyra/local/HWENUM_ABLE/1"));
  ASSERT_FALSE(CORBA::is_nil(EnumEngPtr.in()));
  EXPECT_TRUE(EnumEngPtr->_is_equivalent(services_.hw_enumeration()));
  EXPECT_EQ(output_.out() + output_.err(), "");
}

TEST_F(RemoteServicesTest, WithoutAnEnumerationEngineItsLineIsPrinted) {
  find_hw_enumeration_engine();
  EXPECT_TRUE(CORBA::is_nil(EnumEngPtr.in()));
  EXPECT_EQ(output_.err(), NO_ENUMERATION);
  EXPECT_EQ(output_.out(), "");
}

TEST_F(RemoteServicesTest, AnEnumerationEngineOfAnotherTypeIsReportedAsNull) {
  services_.bind();
  doubles::bind_service(FakeServices::HW_ENUMERATION, services_.gui_manager());
  find_hw_enumeration_engine();
  EXPECT_TRUE(CORBA::is_nil(EnumEngPtr.in()));
  EXPECT_EQ(output_.err(), "HwEnumPtr is null\n");
}

TEST_F(RemoteServicesTest, ALaterLookupThatFailsKeepsTheEarlierEnumerationEngine) {
  services_.bind();
  find_hw_enumeration_engine();
  doubles::unbind_service(FakeServices::HW_ENUMERATION);
  find_hw_enumeration_engine();
  ASSERT_FALSE(CORBA::is_nil(EnumEngPtr.in()));
  EXPECT_EQ(output_.err(), NO_ENUMERATION);
}

TEST_F(RemoteServicesTest, AnyTypeOfExceptionOfAnEnginesLookupIsSwallowed) {
  doubles::run_first_in_lookups(FakeServices::EVERYBODY_ENGINE, [] { throw 42; });
  doubles::run_first_in_lookups(FakeServices::HW_ENUMERATION, [] { throw std::out_of_range("lookup"); });
  EXPECT_NO_THROW(find_everybody_engine());
  EXPECT_NO_THROW(find_hw_enumeration_engine());
  EXPECT_EQ(output_.err(), std::string(NO_EVERYBODY) + NO_ENUMERATION);
}

/// Objects whose type cannot be queried: no process listens at their address.
class UnreachableServicesTest : public RemoteServicesTest {
protected:
  UnreachableServicesTest() {
    services_.bind();
    FindGuiManagerInstance();
    find_everybody_engine();
    find_hw_enumeration_engine();
    int no_arguments = 0;
    const CORBA::ORB_var orb = CORBA::ORB_init(no_arguments, nullptr);
    const CORBA::Object_var nobody = orb->string_to_object("corbaloc::127.0.0.1:1/nobody");
    for (const char* const path :
         {FakeServices::GUI_MANAGER, FakeServices::EVERYBODY_ENGINE, FakeServices::HW_ENUMERATION}) {
      doubles::bind_service(path, nobody.in());
    }
  }
};

TEST_F(UnreachableServicesTest, AGuiManagerThatCannotBeNarrowedIsALookupThatFails) {
  EXPECT_NO_THROW(FindGuiManagerInstance());
  EXPECT_EQ(output_.err(), NO_GUI_MANAGER);
  EXPECT_TRUE(GuiManagerPtr->_is_equivalent(services_.gui_manager()));
}

TEST_F(UnreachableServicesTest, AnEverybodyEngineThatCannotBeNarrowedIsALookupThatFails) {
  EXPECT_NO_THROW(find_everybody_engine());
  EXPECT_EQ(output_.err(), NO_EVERYBODY);
  EXPECT_TRUE(EverBdyPtr->_is_equivalent(services_.everybody_engine()));
}

TEST_F(UnreachableServicesTest, AnEnumerationEngineThatCannotBeNarrowedIsALookupThatFails) {
  EXPECT_NO_THROW(find_hw_enumeration_engine());
  EXPECT_EQ(output_.err(), NO_ENUMERATION);
  EXPECT_TRUE(EnumEngPtr->_is_equivalent(services_.hw_enumeration()));
}

}  // namespace
