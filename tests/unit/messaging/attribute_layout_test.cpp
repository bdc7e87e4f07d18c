#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "varnok_attributes.h"

// Other processes know only the layout of attribute samples: two words, a double word, the value.

namespace {

using Boolean = Varnok::DDS_Attribute<bool>::Sample;
using Void = Varnok::DDS_Attribute<Varnok::DDS_VoidMessage>::Sample;

template <typename Field, typename Integer>
constexpr bool is_signed_of = std::is_signed_v<Field> && sizeof(Field) == sizeof(Integer);

TEST(AttributeLayoutTest, ABooleanHasItsValueBehindTheThreeHeaderFields) {
  EXPECT_EQ(offsetof(Boolean, quality), 0U);
  EXPECT_EQ(offsetof(Boolean, source), 4U);
  EXPECT_EQ(offsetof(Boolean, timestamp), 8U);
  EXPECT_EQ(offsetof(Boolean, value), 16U);
  EXPECT_EQ(sizeof(Boolean::value), 1U);
}

TEST(AttributeLayoutTest, AVoidHasTheThreeHeaderFieldsOnly) {
  EXPECT_EQ(offsetof(Void, quality), 0U);
  EXPECT_EQ(offsetof(Void, source), 4U);
  EXPECT_EQ(offsetof(Void, timestamp), 8U);
  EXPECT_EQ(sizeof(Void), 16U);
}

TEST(AttributeLayoutTest, TheHeaderFieldsAreSignedWordsAndADoubleWord) {
  EXPECT_TRUE((is_signed_of<decltype(Boolean::quality), std::int32_t>));
  EXPECT_TRUE((is_signed_of<decltype(Boolean::source), std::int32_t>));
  EXPECT_TRUE((is_signed_of<decltype(Boolean::timestamp), std::int64_t>));
  EXPECT_TRUE((is_signed_of<decltype(Void::quality), std::int32_t>));
  EXPECT_TRUE((is_signed_of<decltype(Void::source), std::int32_t>));
  EXPECT_TRUE((is_signed_of<decltype(Void::timestamp), std::int64_t>));
}

}  // namespace
