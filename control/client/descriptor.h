#pragma once

#include <unistd.h>

#include <utility>

namespace control::client {

/// An open descriptor, or -1; closed by the destructor.
class Descriptor {
public:
  explicit Descriptor(int descriptor = -1) : descriptor_(descriptor) {}
  ~Descriptor() { reset(); }
  Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }

  int get() const { return descriptor_; }
  int release() { return std::exchange(descriptor_, -1); }
  void reset() {
    if (descriptor_ != -1) {
      ::close(release());
    }
  }

private:
  int descriptor_;
};

}  // namespace control::client
