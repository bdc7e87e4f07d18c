#include <gtest/gtest.h>

#include <string>

#include "control/service/http_text.h"
#include "control/service/member_text.h"

namespace {

using control::service::Answer;
using control::service::error_answer;
using control::service::header_of;
using control::service::member_text;
using control::service::RequestError;
using control::service::split_target;

TEST(MemberTextTest, TheValueIsFoundAsWritten) {
  EXPECT_EQ(member_text(R"({"id":1,"ok":{"b":1,"a":[2,{"x":"}"}]}})", "ok"), R"({"b":1,"a":[2,{"x":"}"}]})");
  EXPECT_EQ(member_text(" {\n\"ok\" :  {\"a\": 1} ,\"id\":1}", "ok"), "{\"a\": 1}");
  EXPECT_EQ(member_text(R"({"x":"ok","y":{"ok":1},"ok":true})", "ok"), "true");
  EXPECT_EQ(member_text(R"({"a\"ok":"\\","ok":"\"}"})", "ok"), R"("\"}")");
  EXPECT_EQ(member_text(R"({"ok":1.5e3})", "ok"), "1.5e3");
}

TEST(MemberTextTest, AMissingMemberIsEmpty) {
  EXPECT_EQ(member_text("{}", "ok"), "");
  EXPECT_EQ(member_text(R"({"id":[1,{"ok":2}]})", "ok"), "");
  EXPECT_EQ(member_text(R"({"o\u006b":1})", "ok"), "");
}

TEST(HttpTextTest, ATargetIsSplitAndDecoded) {
  const auto target = split_target("/v1/settings/a%2Fb?x=%201&y&z=a=b");
  EXPECT_EQ(target.path, (std::vector<std::string>{"v1", "settings", "a/b"}));
  EXPECT_EQ(target.query, (std::vector<std::pair<std::string, std::string>>{{"x", " 1"}, {"y", ""}, {"z", "a=b"}}));
  EXPECT_TRUE(split_target("/v1?").query.empty());
  for (const char* bad : {"", "v1", "/%", "/%4", "/%4g", "/?%00", "/?a=%C3"}) {
    EXPECT_THROW(split_target(bad), RequestError) << bad;
  }
}

TEST(HttpTextTest, AnErrorIsOneDocument) {
  EXPECT_EQ(error_answer({404, "no such setting", "a\x1b", std::nullopt}).body,
            "{\"error\":{\"what\":\"no such setting\",\"where\":\"a\\u001b\",\"expected\":null}}");
  EXPECT_EQ(error_answer({400, "\xff"}).body,
            "{\"error\":{\"what\":\"\xef\xbf\xbd\",\"where\":null,\"expected\":null}}");
  const std::string text = error_answer({400, std::string(399, 'x') + "°°"}).body;
  EXPECT_EQ(text, "{\"error\":{\"what\":\"" + std::string(399, 'x') + "…\",\"where\":null,\"expected\":null}}");
}

TEST(HttpTextTest, AHeaderEndsWithAnEmptyLine) {
  Answer answer;
  answer.status = 405;
  answer.fields = {{"Allow", "GET"}};
  EXPECT_EQ(header_of(answer, 12, false),
            "HTTP/1.1 405 Method Not Allowed\r\nContent-Type: application/json\r\nCache-Control: no-store\r\n"
            "X-Content-Type-Options: nosniff\r\nContent-Length: 12\r\nConnection: close\r\nAllow: GET\r\n\r\n");
}

}  // namespace
