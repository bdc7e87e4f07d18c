#pragma once

#include <string>
#include <string_view>

namespace simulator::model {

/// The text as a JSON string, quotes included. Bytes that are not UTF-8 become replacement characters.
std::string json_text(std::string_view text);

}  // namespace simulator::model
