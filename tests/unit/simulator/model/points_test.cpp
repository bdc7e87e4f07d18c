#include "simulator/model/points.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using simulator::model::fault_kind_named;
using simulator::model::FaultKind;
using simulator::model::Point;
using simulator::model::point_named;
using simulator::model::PointRow;
using simulator::model::POINTS;

TEST(PointsTest, EveryPointHasANameOfItsOwn) {
  std::set<std::string_view> names;
  for (const PointRow& row : POINTS) {
    EXPECT_EQ(point_named(row.name), row.key) << row.name;
    EXPECT_EQ(name_of(row.key), row.name);
    names.insert(row.name);
  }
  EXPECT_EQ(names.size(), POINTS.size());
  EXPECT_EQ(point_named("radalt.nothing"), std::nullopt);
}

TEST(PointsTest, NamesArePaired) {
  EXPECT_EQ(name_of(Point::RADALT_READ), "radalt.read");
  EXPECT_EQ(name_of(Point::PSDRIVER_OPEN), "psdriver.open");
  EXPECT_EQ(name_of(Point::SET_SWITCH_INTERRUPT_CALLBACK), "psdriver.SetSwitchInterruptCallback");
  EXPECT_EQ(name_of(Point::GET_BATTERY_TEMPERATURE), "psdriver.GetBatteryTemperature");
  EXPECT_EQ(name_of(Point::SET_USER_INTERFACE_COMMUNICATION_STATUS), "psdriver.SetUserInterface_CommunicationStatus");
  EXPECT_EQ(name_of(Point::EVENTS_SEND), "events.send");
  EXPECT_EQ(name_of(Point::ORB_LOOKUP), "orb.lookup");
  EXPECT_EQ(name_of(Point::HW_ENUMERATE_SHUTDOWN_ENGINE), "hw_enumerate.ShutdownEngine");
  EXPECT_EQ(name_of(Point::I2C_READ), "i2c_read");
  EXPECT_EQ(fault_kind_named("no_reply"), FaultKind::NO_REPLY);
  EXPECT_EQ(fault_kind_named("never"), std::nullopt);
  EXPECT_EQ(name_of(FaultKind::GARBAGE), "garbage");
}

/// The kinds that the point accepts, by their first letters: none, fail, no_reply (r), late, twice, slow, garbage,
/// stuck (k).
std::string admitted(Point point) {
  constexpr std::string_view LETTERS = "nfrltsgk";
  std::string letters;
  for (const auto& each : simulator::model::FAULT_KINDS) {
    letters += row_of(point).kinds.has(each.key) ? LETTERS[static_cast<std::size_t>(each.key)] : '.';
  }
  return letters;
}

TEST(PointsTest, APointAdmitsOnlyWhatCanGoWrongThere) {
  EXPECT_EQ(admitted(Point::RADALT_READ), "nf...sgk");
  EXPECT_EQ(admitted(Point::RADALT_WRITE), "nf...s..");
  EXPECT_EQ(admitted(Point::GET_CHARGER_BATTERY_STATUS), "nfrltsgk");
  EXPECT_EQ(admitted(Point::SET_SYSTEM_LED_STATUS), "nf...s..");
  EXPECT_EQ(admitted(Point::PSDRIVER_REPLY), "n.......");
  EXPECT_EQ(admitted(Point::LOCKER_TAKE), "n....s..");
  EXPECT_EQ(admitted(Point::GUI_SHOW_DIALOG), "nfr..sg.");
  EXPECT_EQ(admitted(Point::GUI_SET_DIALOG_SIZE), "nfr..s..");
  EXPECT_EQ(admitted(Point::I2C_READ), "nfr..sgk");
  EXPECT_EQ(admitted(Point::DDS_WRITE), "nfr.ts..");
  EXPECT_EQ(admitted(Point::SHELL_IFCONFIG), "nfr..s..");
  EXPECT_EQ(admitted(Point::FILE_CELSIUS), "nf....gk");
  EXPECT_EQ(admitted(Point::FILE_BRIGHTNESS), "nf....g.");
  EXPECT_EQ(admitted(Point::FILE_MIC284), "nf......");
}

TEST(PointsTest, TheNumberOfAFailureDependsOnWhatIsCrossed) {
  EXPECT_EQ(number_of(Point::RADALT_READ, FaultKind::FAIL).meaning, "error number, 0 for EIO");
  EXPECT_EQ(number_of(Point::ORB_LOOKUP, FaultKind::FAIL).meaning, "minor code of the exception");
  EXPECT_EQ(number_of(Point::SHELL_MOUNT, FaultKind::FAIL).maximum, 255);
  EXPECT_EQ(number_of(Point::DDS_WRITE, FaultKind::FAIL).meaning, "");
  EXPECT_EQ(number_of(Point::FILE_CELSIUS, FaultKind::FAIL).meaning, "");
  EXPECT_EQ(number_of(Point::FILE_CELSIUS, FaultKind::GARBAGE).meaning, "the wrong value");
}

}  // namespace
