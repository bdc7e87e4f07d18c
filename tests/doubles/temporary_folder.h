#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include <stdlib.h>

namespace doubles {

/// A temporary folder for one test, removed with its contents.
class TemporaryFolder {
public:
  TemporaryFolder() {
    std::string name = "/tmp/unit-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
      throw std::runtime_error(name);
    }
    path_ = name;
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }

private:
  std::filesystem::path path_;
};

inline std::string text_of(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

inline std::vector<std::string> lines_of(const std::string& file) {
  std::ifstream in(file);
  std::vector<std::string> lines;
  for (std::string line; std::getline(in, line);) {
    lines.push_back(line);
  }
  return lines;
}

inline void write_text(const std::string& file, const std::string& text) {
  std::ofstream(file, std::ios::binary) << text;
}

}  // namespace doubles
