#pragma once

#include <string>

namespace messaging {

/// Reports on standard error that a DDS entity could not be made, and throws Varnok::Connection_errors::Not_Connected
/// with the same text.
[[noreturn]] void fail_to_connect(const std::string& text);

}  // namespace messaging
