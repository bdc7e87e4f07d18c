#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace abi_test {

/// The lines that a command writes on standard output. Throws std::runtime_error if the command fails.
inline std::vector<std::string> lines_of(const std::string& command) {
  FILE* const pipe = popen(command.c_str(), "r");
  if (!pipe) {
    throw std::runtime_error("cannot run " + command);
  }
  std::string text;
  char buffer[4096];
  for (std::size_t size = 0; (size = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    text.append(buffer, size);
  }
  if (pclose(pipe) != 0) {
    throw std::runtime_error(command + " failed");
  }
  std::vector<std::string> lines;
  for (std::size_t begin = 0, end = 0; (end = text.find('\n', begin)) != std::string::npos; begin = end + 1) {
    lines.push_back(text.substr(begin, end - begin));
  }
  return lines;
}

}  // namespace abi_test
