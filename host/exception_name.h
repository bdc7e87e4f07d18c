#pragma once

#include <string>

namespace host {

/// The C++ type of the exception being handled. Only inside a handler.
std::string current_exception_name();

}  // namespace host
