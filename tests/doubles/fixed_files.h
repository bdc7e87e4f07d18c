#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

/// Files on the unit's fixed paths, for tests that run in a private root.
namespace doubles {

/// Replaces the file, and creates missing folders.
inline void put_file(const std::filesystem::path& path, const std::string& text) {
  std::filesystem::create_directories(path.parent_path());
  std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

inline void remove_file(const std::filesystem::path& path) {
  std::filesystem::remove_all(path);
}

/// The file's whole text; "(missing)" if there is no such file.
inline std::string file_text(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    return "(missing)";
  }
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace doubles
