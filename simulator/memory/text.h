#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace simulator::memory {

/// A short text in shared memory of at most `Size` - 1 bytes; longer texts are truncated. Guarded by its owner.
template <std::size_t Size>
class Text {
public:
  void operator=(const std::string& text) noexcept {
    length_ = std::min(text.size(), Size - 1);
    std::copy_n(text.data(), length_, bytes_.data());
  }
  std::string str() const { return {bytes_.data(), length_}; }

private:
  std::size_t length_ = 0;
  std::array<char, Size> bytes_{};
};

}  // namespace simulator::memory
