#pragma once

#include <string>
#include <string_view>

namespace control::service {

/// The text of a member's value in a JSON object, as written; empty if the object has no such member. `document`: valid
/// JSON, an object; `name`: without characters that JSON escapes.
std::string_view member_text(std::string_view document, std::string_view name);

}  // namespace control::service
