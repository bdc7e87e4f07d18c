#include "tests/doubles/captured_output.h"

#include <engine/diagnostics.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <iostream>

namespace doubles {

CapturedOutput::CapturedOutput() : out_(redirect(STDOUT_FILENO)), err_(redirect(STDERR_FILENO)) {}

CapturedOutput::~CapturedOutput() {
  restore(out_);
  restore(err_);
}

std::string CapturedOutput::out() const {
  return written(out_);
}

std::string CapturedOutput::err() const {
  return without_engine_lines(written(err_));
}

CapturedOutput::Stream CapturedOutput::redirect(int number) {
  std::cout.flush();
  std::fflush(nullptr);
  const Stream stream{number, dup(number), memfd_create("captured", MFD_CLOEXEC)};
  dup2(stream.taken, number);
  return stream;
}

void CapturedOutput::restore(const Stream& stream) {
  std::cout.flush();
  std::fflush(nullptr);
  dup2(stream.kept, stream.number);
  close(stream.kept);
  close(stream.taken);
}

std::string CapturedOutput::written(const Stream& stream) {
  std::string text;
  std::array<char, 4096> part{};
  ssize_t length = 0;
  while ((length = pread(stream.taken, part.data(), part.size(), static_cast<off_t>(text.size()))) > 0) {
    text.append(part.data(), static_cast<std::size_t>(length));
  }
  return text;
}

}  // namespace doubles
