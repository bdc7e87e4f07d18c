#pragma once

#include <stdexcept>
#include <string>

namespace host {

/// A library that cannot be loaded; what() is the loader's own message.
class LoadError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// Loads the library and runs its static initialisers on the calling thread; it stays loaded until the process ends.
/// Its names stay its own: another copy of it, loaded later, has its own. Throws LoadError, and what the initialisers
/// throw.
void load_library(const std::string& path);

}  // namespace host
