#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace tool {

/// Standard output. Each function throws CommandError if it cannot be written ("standard output: No space left on
/// device"). Main thread only.

/// Writes the text; it may stay buffered until flush_output().
void print(std::string_view text);
/// Writes one JSON document on a line of its own.
void print_json(const nlohmann::ordered_json& document);
void flush_output();
/// Writes all bytes to the descriptor; `name` stands in the error. Throws CommandError.
void write_all(int descriptor, std::string_view bytes, const char* name);

/// Writes one line to standard error, control characters escaped: "unit: " and the text. Errors are ignored.
void complain(const std::string& text);

}  // namespace tool
