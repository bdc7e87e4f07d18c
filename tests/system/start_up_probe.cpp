// A host that prints what the library calls first when it is loaded, one word per line and in order:
//   streams   the standard streams' initialiser
//   poa       TAO's POA initializer
//   monitor   OpenDDS's monitor-factory initialisation
//   mutex     a mutex is made
//   object    the hardware object opens the board
//
//   start_up_probe LIBRARY
//
// This program's own functions replace those of the shared libraries and call them. While a library is being loaded,
// only the loading thread can look up symbols: calls of other threads are ignored, and the replaced functions are
// looked up before the load.

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

/// The library whose calls on this thread are recorded; null: none are.
thread_local const char* library = nullptr;

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

/// The library function with that name that this program's own replaces.
template <typename Function>
Function* the_real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

auto real_streams() {
  static auto* const real = the_real<void(std::ios_base::Init*)>("_ZNSt8ios_base4InitC1Ev");
  return real;
}
auto real_poa() {
  static auto* const real = the_real<int()>("_ZN19TAO_POA_Initializer4initEv");
  return real;
}
auto real_monitor() {
  static auto* const real = the_real<int()>("_ZN7OpenDDS4DCPS14MonitorFactory18service_initializeEv");
  return real;
}
auto real_mutex() {
  static auto* const real = the_real<int(pthread_mutex_t*, const pthread_mutexattr_t*)>("pthread_mutex_init");
  return real;
}
auto real_object() {
  static auto* const real = the_real<int()>("Radalt_Init");
  return real;
}

}  // namespace

std::ios_base::Init::Init() {
  note("streams", __builtin_return_address(0));
  real_streams()(this);
}

int TAO_POA_Initializer::init() {
  note("poa", __builtin_return_address(0));
  return real_poa()();
}

int OpenDDS::DCPS::MonitorFactory::service_initialize() {
  note("monitor", __builtin_return_address(0));
  return real_monitor()();
}

extern "C" __attribute__((visibility("default"))) int pthread_mutex_init(
    pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept {
  note("mutex", __builtin_return_address(0));
  return real_mutex()(mutex, attributes);
}

extern "C" __attribute__((visibility("default"))) int Radalt_Init() {
  note("object", __builtin_return_address(0));
  return real_object()();
}

int main(int, char** argv) {
  const bool all_found = real_streams() && real_poa() && real_monitor() && real_mutex() && real_object();
  if (!all_found) {
    std::cerr << "start_up_probe: a function is missing" << std::endl;
    return 2;
  }
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
