#include "library.h"

#include <dlfcn.h>

namespace host {

void load_library(const std::string& path) {
  if (dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
    throw LoadError(dlerror());
  }
}

}  // namespace host
