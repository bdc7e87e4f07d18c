// Faults armed for single operations of the services.

#include <future>

#include "tests/unit/simulator/services/unit_with_services.h"

namespace services_test {
namespace {

class OperationFault : public UnitWithServices {
protected:
  OperationFault() { start_services(); }
};

TEST_F(OperationFault, AFailureIsAnExceptionWithTheFaultsNumber) {
  model().faults().arm(Point::GUI_SHOW_DIALOG, Fault{FaultKind::FAIL, 42, 1, 1});
  const Halcyra::gui::GUIManager_var gui = gui_manager();
  try {
    gui->ShowDialog("Shutdown", "", "", 0);
    ADD_FAILURE() << "no exception";
  } catch (const CORBA::INTERNAL& error) {
    EXPECT_EQ(error.minor(), 42U);
  }
  EXPECT_TRUE(model().gui().dialogs().empty());
  EXPECT_EQ(gui->ShowDialog("Shutdown", "", "", 0), 0);
}

TEST_F(OperationFault, OneOperationFailsAndItsNeighboursDoNot) {
  model().faults().arm(Point::EVERYBODY_SHUTDOWN_ALL, Fault{FaultKind::FAIL, 0, 1, Fault::ALWAYS});
  model().faults().arm(Point::GUI_SET_DIALOG_SIZE, Fault{FaultKind::FAIL, 0, 1, Fault::ALWAYS});
  const Varnok::EverybodyEng::Shutdown_var shutdown = everybody_engine()->GetShutdown();
  EXPECT_THROW(shutdown->ShutdownAll(Varnok::Locker_Core()), CORBA::INTERNAL);
  EXPECT_EQ(gui_manager()->ShowDialog("Shutdown", "", "", 0), 0);
  EXPECT_THROW(gui_manager()->SetDialogSize("Shutdown", "Max"), CORBA::INTERNAL);
  EXPECT_EQ(model().gui().dialogs().at(0).size, "");
}

TEST_F(OperationFault, TheEnumerationEngineFailsFromTheSecondCallOn) {
  model().faults().arm(Point::HW_ENUMERATE_SHUTDOWN_ENGINE, Fault{FaultKind::FAIL, 0, 2, Fault::ALWAYS});
  const Varnok::HwEnumerate_Able_var engine = hw_enumerate();
  EXPECT_NO_THROW(engine->ShutdownEngine("SYSTEM_ENGINE1"));
  EXPECT_THROW(engine->ShutdownEngine("SYSTEM_ENGINE1"), CORBA::INTERNAL);
  EXPECT_THROW(engine->ShutdownEngine("SYSTEM_ENGINE1"), CORBA::INTERNAL);
}

TEST_F(OperationFault, TheShutdownInterfaceCanBeNil) {
  model().faults().arm(Point::EVERYBODY_GET_SHUTDOWN, Fault{FaultKind::GARBAGE, 0, 1, 1});
  const Varnok::EverybodyEng::Interfaces_var engine = everybody_engine();
  EXPECT_TRUE(CORBA::is_nil(Varnok::EverybodyEng::Shutdown_var(engine->GetShutdown()).in()));
  EXPECT_FALSE(CORBA::is_nil(Varnok::EverybodyEng::Shutdown_var(engine->GetShutdown()).in()));
}

TEST_F(OperationFault, AQuestionCanBeAnsweredWithANumberOfNoButton) {
  model().faults().arm(Point::GUI_SHOW_DIALOG, Fault{FaultKind::GARBAGE, -3, 1, 1});
  EXPECT_EQ(gui_manager()->ShowDialog("System Prompt", "Do you want to shutdown?", "Cancel,1|Ok,0", 1), -3);
}

TEST_F(OperationFault, ACallWithoutReplyReturnsOnlyWhenTheServiceEnds) {
  model().faults().arm(Point::HW_ENUMERATE_SHUTDOWN_ENGINE, Fault{FaultKind::NO_REPLY, 0, 1, Fault::ALWAYS});
  auto call =
      std::async(std::launch::async, [engine = hw_enumerate()]() mutable { engine->ShutdownEngine("SYSTEM_ENGINE1"); });
  EXPECT_EQ(call.wait_for(std::chrono::milliseconds(300)), std::future_status::timeout);
  services_->send(SIGTERM);
  EXPECT_EQ(services_->wait(), 0);
  EXPECT_THROW(call.get(), CORBA::SystemException);
}

}  // namespace
}  // namespace services_test
