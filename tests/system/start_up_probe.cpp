// A host that prints what the library calls first when it is loaded, one word per line and in order:
//   streams   the standard streams' initialiser
//   poa       TAO's POA initializer
//   monitor   OpenDDS's monitor-factory initialisation
//   mutex     a mutex is made
//   object    the hardware object opens the board
//
//   start_up_probe LIBRARY
//
// The functions are this program's own, which come before those of the shared libraries and call them.

#include <dlfcn.h>
#include <pthread.h>

#include <cstring>
#include <iostream>
#include <vector>

#include <tao/PortableServer/PortableServer.h>

#include <dds/DCPS/MonitorFactory.h>

#include "base/base_hardware.h"
#include "radalt.h"

__attribute__((visibility("default"))) BASE_HARDWARE* Hardware = nullptr;

namespace {

/// The library whose calls are noted; null before it is loaded.
const char* library = nullptr;

std::vector<const char*>& steps() {
  static auto& noted = *new std::vector<const char*>;
  return noted;
}

void note(const char* step, const void* caller) {
  Dl_info from{};
  if (library && dladdr(caller, &from) != 0 && std::strcmp(from.dli_fname, library) == 0) {
    steps().push_back(step);
  }
}

/// The function of that name behind this program's own.
template <typename Function>
Function* the_real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

std::ios_base::Init::Init() {
  note("streams", __builtin_return_address(0));
  the_real<void(std::ios_base::Init*)>("_ZNSt8ios_base4InitC1Ev")(this);
}

int TAO_POA_Initializer::init() {
  note("poa", __builtin_return_address(0));
  return the_real<int()>("_ZN19TAO_POA_Initializer4initEv")();
}

int OpenDDS::DCPS::MonitorFactory::service_initialize() {
  note("monitor", __builtin_return_address(0));
  return the_real<int()>("_ZN7OpenDDS4DCPS14MonitorFactory18service_initializeEv")();
}

extern "C" __attribute__((visibility("default"))) int pthread_mutex_init(
    pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
  note("mutex", __builtin_return_address(0));
  return the_real<int(pthread_mutex_t*, const pthread_mutexattr_t*)>("pthread_mutex_init")(mutex, attributes);
}

extern "C" __attribute__((visibility("default"))) int Radalt_Init() {
  note("object", __builtin_return_address(0));
  return the_real<int()>("Radalt_Init")();
}

int main(int, char** argv) {
  library = argv[1];
  if (!dlopen(library, RTLD_NOW | RTLD_LOCAL)) {
    std::cerr << dlerror() << std::endl;
    return 1;
  }
  library = nullptr;
  for (const char* step : steps()) {
    std::cout << step << "\n";
  }
  return 0;
}
