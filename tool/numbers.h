#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace tool {

/// A typed integer: decimal ("010" is 10) or hexadecimal with 0x, with an optional sign; none if the text is no such
/// number or exceeds 64 bits.
std::optional<std::int64_t> parse_number(const std::string& text);
/// A typed number that has 32 bits, signed or unsigned (-2147483648 to 4294967295). Throws UsageError naming `what`.
std::int64_t number_of_32_bits(const std::string& what, const std::string& text);
/// A typed number from `minimum` to `maximum`. Throws UsageError naming `what`.
std::int64_t number_in(const std::string& what, const std::string& text, std::int64_t minimum, std::int64_t maximum);
/// A time limit typed in seconds ("3", "0.5"), more than 0 and at most a day. Throws UsageError naming `what`.
std::chrono::milliseconds seconds(const std::string& what, const std::string& text);
/// Milliseconds as text in seconds: "3 s", "0.5 s".
std::string in_seconds(std::chrono::milliseconds time);

}  // namespace tool
