#include "simulator/model/json_text.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using simulator::model::json_text;

namespace {

constexpr const char* REPLACEMENT = "\xEF\xBF\xBD";

TEST(JsonTextTest, QuotesWhatJsonQuotes) {
  EXPECT_EQ(json_text("a\"b\\\n\x01"), R"("a\"b\\\n\u0001")");
  EXPECT_EQ(json_text(""), R"("")");
}

TEST(JsonTextTest, EveryByteReadsBackAsItself) {
  for (char byte = 0; byte >= 0 && byte < 127; ++byte) {
    const std::string text(1, byte);
    EXPECT_EQ(nlohmann::json::parse(json_text(text)), text) << static_cast<int>(byte);
  }
}

TEST(JsonTextTest, KeepsCharactersOfEveryLength) {
  const std::string text = "\x7F\xC2\x80\xC3\xA9\xE0\xA0\x80\xED\x9F\xBF\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
  EXPECT_EQ(json_text(text), '"' + text + '"');
}

TEST(JsonTextTest, ReplacesWhatIsNoUtf8) {
  for (const char* bytes : {"\xFF", "\x80", "\xC3", "\xE2\x82", "\xF0\x9F\x98"}) {
    EXPECT_EQ(json_text(bytes), '"' + std::string(REPLACEMENT) + '"') << json_text(bytes);
    EXPECT_EQ(json_text(bytes + std::string("x")), '"' + std::string(REPLACEMENT) + "x\"") << json_text(bytes);
  }
}

/// Overlong forms, surrogates and code points that do not exist.
TEST(JsonTextTest, AnswersAsTheJsonLibraryDoes) {
  for (const char* bytes : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "a\xE2\x28\xA1z", "\xC3\xC3\xA9"}) {
    using nlohmann::json;
    EXPECT_EQ(json_text(bytes), json(bytes).dump(-1, ' ', false, json::error_handler_t::replace));
  }
}

}  // namespace
