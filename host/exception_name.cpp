#include "host/exception_name.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <typeinfo>

namespace host {

std::string current_exception_name() {
  const std::type_info* type = abi::__cxa_current_exception_type();
  const std::unique_ptr<char, void (*)(void*)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, nullptr),
                                                    std::free);
  return name ? name.get() : type->name();
}

}  // namespace host
