#include "tool/numbers.h"

#include <charconv>
#include <cstdio>

#include "tool/errors.h"
#include "tool/text.h"

namespace tool {

std::optional<std::int64_t> parse_number(const std::string& text) {
  const bool negative = !text.empty() && text[0] == '-';
  std::size_t start = negative || (!text.empty() && text[0] == '+') ? 1 : 0;
  const bool hexadecimal = text.compare(start, 2, "0x") == 0 || text.compare(start, 2, "0X") == 0;
  start += hexadecimal ? 2 : 0;
  // The digits are read without their sign, so that a second one is refused.
  std::uint64_t digits = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data() + start, end, digits, hexadecimal ? 16 : 10);
  if (error != std::errc() || rest != end || start == text.size() || digits > static_cast<std::uint64_t>(INT64_MAX)) {
    return std::nullopt;
  }
  const auto value = static_cast<std::int64_t>(digits);
  return negative ? -value : value;
}

std::int64_t number_in(const std::string& what, const std::string& text, std::int64_t minimum, std::int64_t maximum) {
  const std::optional<std::int64_t> value = parse_number(text);
  if (!value || *value < minimum || *value > maximum) {
    throw UsageError(what + ": must be a whole number from " + std::to_string(minimum) + " to " +
                     std::to_string(maximum) + " (decimal or 0x…), not \"" + printable(clipped(text, 40)) + "\"");
  }
  return *value;
}

std::int64_t number_of_32_bits(const std::string& what, const std::string& text) {
  const std::optional<std::int64_t> value = parse_number(text);
  if (!value || *value < INT32_MIN || *value > UINT32_MAX) {
    throw UsageError(what + ": must be a 32-bit integer such as 256 or 0x100, not \"" + printable(clipped(text, 40)) +
                     "\"");
  }
  return *value;
}

std::chrono::milliseconds seconds(const std::string& what, const std::string& text) {
  constexpr double A_DAY = 86400;
  double value = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, value, std::chars_format::fixed);
  if (error != std::errc() || rest != end || !(value >= 0.001) || value > A_DAY) {
    throw UsageError(what + ": must be seconds from 0.001 to 86400, not \"" + printable(clipped(text, 40)) + "\"");
  }
  return std::chrono::milliseconds(static_cast<std::int64_t>(value * 1000 + 0.5));
}

std::string in_seconds(std::chrono::milliseconds time) {
  char text[32];
  std::snprintf(text, sizeof text, "%.3g s", static_cast<double>(time.count()) / 1000);
  return text;
}

}  // namespace tool
