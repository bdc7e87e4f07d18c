#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <limits>
#include <type_traits>

#include "base/base_hardware.h"

namespace {

std::uint32_t bits_of(float number) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

TEST(RecordsTest, CopyingATemperatureKeepsTheFloatBitForBit) {
  float odd_nan = 0;
  const std::uint32_t odd_bits = 0x7FC12345U;
  std::memcpy(&odd_nan, &odd_bits, sizeof odd_nan);
  for (const float number : {25.3F, -0.0F, std::numeric_limits<float>::denorm_min(), odd_nan}) {
    const TEMPERATUREDATA original{number, "Battery Temperature"};
    const TEMPERATUREDATA copy = original;
    EXPECT_EQ(bits_of(copy.temperature), bits_of(number));
    EXPECT_EQ(copy.name, "Battery Temperature");
  }
}

TEST(RecordsTest, CopyingAFanKeepsBothWordsAndTheName) {
  const FANDATA original{0xFFFFFFFFU, 0x80000000U, "left"};
  FANDATA copy{};
  copy = original;
  EXPECT_EQ(copy.word1, 0xFFFFFFFFU);
  EXPECT_EQ(copy.word2, 0x80000000U);
  EXPECT_EQ(copy.name, "left");
}

TEST(RecordsTest, CopyingAVersionKeepsValueAndLabelApart) {
  const VERSIONSDATA original{"42 (5300)", "RF Card ID"};
  const VERSIONSDATA copy = original;
  EXPECT_EQ(copy.version, "42 (5300)");
  EXPECT_EQ(copy.name, "RF Card ID");
}

TEST(RecordsTest, TheFieldsStandInTheirOrder) {
  EXPECT_EQ(offsetof(VERSIONSDATA, version), 0U);
  EXPECT_EQ(offsetof(VERSIONSDATA, name), sizeof(std::string));
  EXPECT_EQ(offsetof(TEMPERATUREDATA, temperature), 0U);
  EXPECT_EQ(offsetof(TEMPERATUREDATA, name), alignof(std::string));
  EXPECT_EQ(offsetof(FANDATA, word1), 0U);
  EXPECT_EQ(offsetof(FANDATA, word2), 4U);
  EXPECT_EQ(offsetof(FANDATA, name), 8U);
}

TEST(RecordsTest, TheUnknownFanStateIsFourInThirtyTwoBits) {
  EXPECT_EQ(static_cast<int>(BASE_HARDWARE::FAN_UNKNOWN), 4);
  EXPECT_EQ(sizeof(BASE_HARDWARE::FAN_STATES), 4U);
}

TEST(RecordsTest, TheDestructorOfTheInterfaceIsNotVirtual) {
  EXPECT_FALSE(std::has_virtual_destructor_v<BASE_HARDWARE>);
}

}  // namespace
