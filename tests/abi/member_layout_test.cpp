// Members, their order and their offsets, read from the built library's debug information.

#include <gmock/gmock.h>

#include <cstdlib>
#include <regex>

#include "tests/abi/tool_output.h"

namespace {

using testing::ElementsAre;

struct Member {
  std::string name;
  unsigned long offset;  // bytes
};

bool operator==(const Member& left, const Member& right) {
  return left.name == right.name && left.offset == right.offset;
}

void PrintTo(const Member& member, std::ostream* out) {
  *out << member.name << " at " << member.offset;
}

/// Text of an XML attribute with its angle brackets unescaped.
std::string attribute(const std::string& line, const std::string& name) {
  const std::string key = " " + name + "='";
  const std::size_t begin = line.find(key);
  if (begin == std::string::npos) {
    return "";
  }
  const std::size_t value = begin + key.size();
  const std::string text = line.substr(value, line.find('\'', value) - value);
  return std::regex_replace(std::regex_replace(text, std::regex("&lt;"), "<"), std::regex("&gt;"), ">");
}

const std::vector<std::string>& interface_dump() {
  static const auto dump = abi_test::lines_of(std::string("abidw --load-all-types ") + RADALT_HARDWARE_LIBRARY);
  return dump;
}

/// The lines between a class's tag and its end, without those of classes inside it.
std::vector<std::string> class_body(const std::string& name) {
  std::vector<std::string> body;
  std::size_t depth = 0;
  for (const std::string& line : interface_dump()) {
    const bool opens = line.find("<class-decl") != std::string::npos && line.find("/>") == std::string::npos;
    if (depth == 0 && !(opens && attribute(line, "name") == name)) {
      continue;
    }
    if (opens) {
      ++depth;
    }
    if (depth == 1) {
      body.push_back(line);
    }
    if (line.find("</class-decl>") != std::string::npos && --depth == 0) {
      return body;
    }
  }
  throw std::runtime_error("no class " + name + " in the debug information");
}

std::vector<Member> members(const std::string& name) {
  std::vector<Member> found;
  std::string offset;
  for (const std::string& line : class_body(name)) {
    if (line.find("<data-member") != std::string::npos) {
      offset = attribute(line, "layout-offset-in-bits");
    }
    if (line.find("<var-decl") == std::string::npos || offset.empty()) {
      continue;
    }
    found.push_back({attribute(line, "name"), std::strtoul(offset.c_str(), nullptr, 10) / 8});
    offset.clear();
  }
  return found;
}

std::vector<std::string> names(const std::string& name) {
  std::vector<std::string> found;
  for (const Member& member : members(name)) {
    found.push_back(member.name);
  }
  return found;
}

unsigned long size_of(const std::string& name) {
  return std::strtoul(attribute(class_body(name).front(), "size-in-bits").c_str(), nullptr, 10) / 8;
}

TEST(MemberLayout, TheInterfaceHoldsItsTableAndTheFanStates) {
  EXPECT_THAT(members("BASE_HARDWARE"), ElementsAre(Member{"fan_states", sizeof(void*)}));
  EXPECT_EQ(size_of("BASE_HARDWARE"), 4 * sizeof(void*));
}

TEST(MemberLayout, TheHandheldLayerHoldsItsMembersInOrder) {
  const unsigned long base = 4 * sizeof(void*);
  const auto found = members("Handheld_Hardware");
  ASSERT_EQ(found.size(), 11U);
  const unsigned long publisher = found[4].offset;
  const unsigned long after_publisher = found[5].offset;
  EXPECT_GT(publisher, base + 12);
  EXPECT_GT(after_publisher, publisher);
  EXPECT_THAT(
      found,
      ElementsAre(Member{"kelvin_offset_", base}, Member{"board_handle_", base + 4},
                  Member{"external_voltage_", base + 8}, Member{"ui_done_loading_", base + 2 * sizeof(void*)},
                  Member{"external_voltage_publisher_", publisher}, Member{"max_interfaces", after_publisher},
                  Member{"digital_board_scale_", after_publisher + 4}, Member{"mic284_celsius_", after_publisher + 8},
                  Member{"ps_temperature_valid_", after_publisher + 12},
                  Member{"battery_temperature_valid_", after_publisher + 13},
                  Member{"mic284_temperature_valid_", after_publisher + 14}));
}

TEST(MemberLayout, TheBoardAddsTheEventMessageAtTheEnd) {
  EXPECT_THAT(members("HARDWARE"), ElementsAre(Member{"event_message_", size_of("HARDWARE") - sizeof(void*)}));
}

TEST(MemberLayout, ThePublisherHoldsItsMembersInOrder) {
  EXPECT_THAT(names("DDS_Publisher<bool>"),
              ElementsAre("writer_", "publisher_", "topic_", "data_writer_", "topic_name_"));
}

TEST(MemberLayout, TheSubscriberHoldsItsMembersInOrder) {
  EXPECT_THAT(names("DDS_SubscriberBase<Varnok::DDS_VoidMessage, void(char const*)>"),
              ElementsAre("reader_", "topic_", "data_reader_", "topic_name_", "subscriber_", "listener_", "callback_",
                          "init_done_"));
}

TEST(MemberLayout, RecordsPutTheirValueFirst) {
  EXPECT_THAT(members("VERSIONSDATA"), ElementsAre(Member{"version", 0}, Member{"name", sizeof(std::string)}));
  EXPECT_THAT(members("TEMPERATUREDATA"), ElementsAre(Member{"temperature", 0}, Member{"name", sizeof(void*)}));
}

}  // namespace
