#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace system_test {

/// The whole text of a file; none where there is no such file.
std::optional<std::string> text_of(const std::filesystem::path& path);
/// Writes all of it; false where it cannot.
bool write_all(int descriptor, const std::string& text);
/// A connection to the UNIX socket; -1 where nobody listens.
int connected(const std::filesystem::path& socket);
/// Whether somebody listens on the UNIX socket.
bool listens(const std::filesystem::path& socket);

}  // namespace system_test
