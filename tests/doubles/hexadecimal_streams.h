#pragma once

#include <iostream>

namespace doubles {

/// During its lifetime, sets the standard streams to hexadecimal with base and plus sign, as a host might.
class HexadecimalStreams {
public:
  HexadecimalStreams() : out_(std::cout.flags()), err_(std::cerr.flags()) {
    std::cout << std::hex << std::showbase << std::showpos;
    std::cerr << std::hex << std::showbase << std::showpos;
  }
  ~HexadecimalStreams() {
    std::cout.flags(out_);
    std::cerr.flags(err_);
  }
  HexadecimalStreams(const HexadecimalStreams&) = delete;
  HexadecimalStreams& operator=(const HexadecimalStreams&) = delete;

private:
  std::ios_base::fmtflags out_;
  std::ios_base::fmtflags err_;
};

}  // namespace doubles
