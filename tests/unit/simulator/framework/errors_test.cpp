#include <gtest/gtest.h>
#include <varnok_errors.h>

namespace {

using Varnok::Operation_errors::DataOutOfRangeException;
using Varnok::Operation_errors::RangeRecord;
using Varnok::Operation_errors::RangeValue;

template <typename Error>
std::string text_of_thrown() {
  try {
    throw Error("some text");
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

TEST(FrameworkErrorsTest, EachErrorCarriesItsText) {
  EXPECT_EQ(text_of_thrown<Varnok::Connection_errors::Not_Connected>(), "some text");
  EXPECT_EQ(text_of_thrown<Varnok::Connection_errors::Communications_failure>(), "some text");
  EXPECT_EQ(text_of_thrown<Varnok::Runtime_errors::Generic>(), "some text");
}

TEST(FrameworkErrorsTest, ARangeErrorCarriesItsRecord) {
  const RangeRecord record{"Attribute", RangeValue::of(128), RangeValue::of(248), RangeValue::of(-1)};
  try {
    throw DataOutOfRangeException(record);
  } catch (const DataOutOfRangeException& error) {
    EXPECT_STREQ(error.what(), "Attribute");
    EXPECT_EQ(error.range.minimum.integer, 128);
    EXPECT_EQ(error.range.maximum.integer, 248);
    EXPECT_EQ(error.range.value.integer, -1);
  }
}

TEST(FrameworkErrorsTest, ARangeValueKnowsItsKind) {
  EXPECT_EQ(RangeValue::of(7).kind, RangeValue::INTEGER);
  EXPECT_EQ(RangeValue::of(7).integer, 7);
  EXPECT_EQ(RangeValue::of(7.5).kind, RangeValue::REAL);
  EXPECT_EQ(RangeValue::of(7.5).real, 7.5);
}

}  // namespace
