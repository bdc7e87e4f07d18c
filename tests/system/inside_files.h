#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace system_test {

/// The whole text of a file; none if there is no such file.
std::optional<std::string> text_of(const std::filesystem::path& path);
/// Writes all of it; false on failure.
bool write_all(int descriptor, const std::string& text);
/// A connection to the UNIX socket; -1 if no process listens on it.
int connected(const std::filesystem::path& socket);
/// Whether a process listens on the UNIX socket.
bool listens(const std::filesystem::path& socket);

}  // namespace system_test
