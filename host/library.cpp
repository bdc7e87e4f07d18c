#include "host/library.h"

#include <dlfcn.h>

namespace host {

void load_library(const std::string& path) {
  // The C library declares dlopen as non-throwing, but exceptions of initialisers propagate through it. A call through
  // this pointer allows catching them.
  void* (*volatile open_library)(const char*, int) = dlopen;
  if (open_library(path.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
    throw LoadError(dlerror());
  }
}

}  // namespace host
