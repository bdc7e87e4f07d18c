#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// A library that cannot be loaded; what() is the loader's message.
class LoadError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Loads the library and runs its static initialisers on the calling thread. It stays loaded until the process ends.
/// Its symbols are local: another copy loaded later has its own. Throws LoadError, and any exception of the
/// initialisers.
void load_library(const std::string& path);

}  // namespace host
