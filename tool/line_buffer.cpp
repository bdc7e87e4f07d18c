#include "tool/line_buffer.h"

#include <utility>

namespace tool {

std::vector<std::string> LineBuffer::add(std::string_view bytes) {
  std::vector<std::string> lines;
  for (const char byte : bytes) {
    if (byte != '\n') {
      line_ += byte;
    }
    if (byte == '\n' || line_.size() == LONGEST_LINE) {
      lines.push_back(std::exchange(line_, {}));
    }
  }
  return lines;
}

std::string LineBuffer::rest() {
  return std::exchange(line_, {});
}

}  // namespace tool
