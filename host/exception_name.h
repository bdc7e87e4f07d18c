#pragma once

#include <string>

namespace host {

/// The type of the exception that is being handled, as it is written in C++. Only inside a handler.
std::string current_exception_name();

}  // namespace host
