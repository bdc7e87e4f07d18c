#include "simulator/channel/document.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using namespace simulator::channel;
using namespace std::string_literals;
using nlohmann::json;

/// The reason why the text is refused; empty if it is not.
std::string refusal(const std::string& text, std::size_t deepest = DEEPEST) {
  try {
    parsed_document(text, deepest);
  } catch (const DocumentError& error) {
    return error.what();
  }
  return "";
}

TEST(DocumentTest, EveryKindOfValueIsKept) {
  const std::string text = R"({"a":[1,-2,2.5,18446744073709551615,true,null,"tör"],"b":{"c":{}}})";
  EXPECT_EQ(parsed_document(text), json::parse(text));
}

TEST(DocumentTest, TextAfterTheDocumentIsRefused) {
  EXPECT_EQ(refusal("{} x"), "byte 4: not valid JSON");
  EXPECT_EQ(refusal("{}{}"), "byte 3: not valid JSON");
}

TEST(DocumentTest, ANulByteIsRefusedWhereverItIs) {
  EXPECT_EQ(refusal("{}\0"s), "byte 3: NUL byte");
  EXPECT_EQ(refusal("{\"a\0\":1}"s), "byte 4: NUL byte");
}

TEST(DocumentTest, AnUnfinishedOrEmptyDocumentIsRefused) {
  EXPECT_EQ(refusal(""), "byte 1: not valid JSON");
  EXPECT_EQ(refusal("[1,"), "byte 4: not valid JSON");
}

TEST(DocumentTest, BytesThatAreNotUtf8AreRefused) {
  EXPECT_EQ(refusal("[\"\xff\"]"), "byte 3: not valid JSON");
}

TEST(DocumentTest, AKeyGivenTwiceIsRefused) {
  EXPECT_EQ(refusal(R"({"a":{"b":1},"c":2,"a":3})"), "key \"a\": given twice");
  EXPECT_EQ(refusal(R"([{"a":1},{"a":2}])"), "");
}

TEST(DocumentTest, NestingIsLimited) {
  EXPECT_EQ(refusal("[[1],{}]", 2), "");
  EXPECT_EQ(refusal("[[[1]]]", 2), "nested deeper than 2 levels");
  EXPECT_EQ(refusal(std::string(64, '[') + std::string(64, ']')), "");
  EXPECT_EQ(refusal(std::string(1'000'000, '[')), "nested deeper than 64 levels");
  std::string objects;
  for (int i = 0; i < 100'000; ++i) {
    objects += "{\"a\":";
  }
  EXPECT_EQ(refusal(objects), "nested deeper than 64 levels");
}

}  // namespace
