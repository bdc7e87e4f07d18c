#pragma once

#include <string_view>

namespace control::service {

/// The OpenAPI document of the interface, control/openapi.json.
std::string_view openapi_text();

}  // namespace control::service
