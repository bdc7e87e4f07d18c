#include <gmock/gmock.h>

#include <cstddef>
#include <type_traits>

#include "base/base_hardware.h"

namespace {

template <typename Record>
constexpr bool is_plain = std::is_aggregate_v<Record>&& std::is_copy_constructible_v<Record>&&
    std::is_copy_assignable_v<Record>&& std::is_nothrow_move_constructible_v<Record>;

// Copied, assigned and destroyed member by member; moved when their list grows.
TEST(RecordsTest, TheRecordsAreAggregatesThatListsMove) {
  EXPECT_TRUE(is_plain<VERSIONSDATA>);
  EXPECT_TRUE(is_plain<TEMPERATUREDATA>);
  EXPECT_TRUE(is_plain<FANDATA>);
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
