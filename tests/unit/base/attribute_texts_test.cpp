#include <gmock/gmock.h>

#include <memory>
#include <new>
#include <string>

#include "tests/doubles/failing_allocation.h"
#include "tests/unit/base/plain_hardware.h"

namespace {

using Text = std::unique_ptr<char[]>;

class AttributeTextsTest : public testing::Test {
protected:
  PlainHardware unit_ = quiet_unit();

  template <typename... Arguments>
  std::string text_of(Arguments... arguments) {
    const Text text(unit_.attrib_enum_str_helper(arguments...));
    return text.get();
  }

  /// The size of the text's buffer in bytes: the call fails if an allocation of this size fails. The arguments are
  /// short enough to need no allocation of their own.
  template <typename... Arguments>
  std::size_t buffer_size(Arguments... arguments) {
    for (std::size_t size = 1; size < 100; ++size) {
      try {
        const doubles::FailingAllocation failing(1, size);
        const Text text(unit_.attrib_enum_str_helper(arguments...));
      } catch (const std::bad_alloc&) {
        return size;
      }
    }
    return 0;
  }
};

TEST_F(AttributeTextsTest, LabelAndValueAreJoinedByColonAndBlank) {
  EXPECT_EQ(text_of(std::string("Mode"), std::string("Auto")), "Mode: Auto");
}

TEST_F(AttributeTextsTest, AnEmptyLabelGivesTheEmptyTextWhateverTheValue) {
  EXPECT_EQ(text_of(std::string(), std::string("a value that is longer than five bytes")), "");
}

TEST_F(AttributeTextsTest, AnEmptyValueLeavesTheLabelWithColonAndBlank) {
  EXPECT_EQ(text_of(std::string("Mode"), std::string()), "Mode: ");
}

TEST_F(AttributeTextsTest, PercentSignsOfLabelAndValueStayAsTheyAre) {
  EXPECT_EQ(text_of(std::string("%s"), std::string("100%%")), "%s: 100%%");
}

TEST_F(AttributeTextsTest, ANumberStandsInUpperCaseHexadecimalInEightPlaces) {
  EXPECT_EQ(text_of(std::string("Mode"), 255), "Mode:       FF");
}

TEST_F(AttributeTextsTest, ANegativeNumberFillsItsEightPlaces) {
  EXPECT_EQ(text_of(std::string("Mode"), -1), "Mode: FFFFFFFF");
}

TEST_F(AttributeTextsTest, NumberZeroIsPaddedWithBlanks) {
  EXPECT_EQ(text_of(std::string("Mode"), 0), "Mode:        0");
}

TEST_F(AttributeTextsTest, AnEmptyLabelDoesNotEmptyTheTextOfANumber) {
  EXPECT_EQ(text_of(std::string(), 0xAB), ":       AB");
}

TEST_F(AttributeTextsTest, APlainTextComesBackAsItIs) {
  EXPECT_EQ(text_of(std::string("Reference: external")), "Reference: external");
}

TEST_F(AttributeTextsTest, AnEmptyTextGivesTheEmptyText) {
  EXPECT_EQ(text_of(std::string()), "");
}

TEST_F(AttributeTextsTest, APercentSignOfTheSingleTextIsExpanded) {
  EXPECT_EQ(text_of(std::string("Duty 50%%")), "Duty 50%");
}

TEST_F(AttributeTextsTest, TheBufferOfLabelAndValueHasFourBytesMoreThanTheTwo) {
  EXPECT_EQ(buffer_size(std::string("Mode"), std::string("Auto 1")), 4U + 6U + 4U);
  EXPECT_EQ(buffer_size(std::string("Mode"), std::string()), 4U + 4U);
}

TEST_F(AttributeTextsTest, TheBufferOfAnEmptyLabelHasFiveBytes) {
  EXPECT_EQ(buffer_size(std::string(), std::string("Auto 1")), 5U);
}

TEST_F(AttributeTextsTest, TheBufferOfANumberHasNineteenBytesMoreThanItsLabel) {
  EXPECT_EQ(buffer_size(std::string("Mode"), 255), 4U + 19U);
  EXPECT_EQ(buffer_size(std::string(), -1), 19U);
}

TEST_F(AttributeTextsTest, TheBufferOfASingleTextHasOneByteMoreThanTheText) {
  EXPECT_EQ(buffer_size(std::string("Duty 50%%")), 9U + 1U);
}

TEST_F(AttributeTextsTest, TheBufferOfAnEmptyTextHasTwoBytes) {
  EXPECT_EQ(buffer_size(std::string()), 2U);
}

TEST_F(AttributeTextsTest, EveryCallGivesABufferOfItsOwn) {
  const Text first(unit_.attrib_enum_str_helper(std::string("Mode"), std::string("Auto")));
  const Text second(unit_.attrib_enum_str_helper(std::string("Mode"), std::string("Auto")));
  EXPECT_NE(first.get(), second.get());
}

}  // namespace
