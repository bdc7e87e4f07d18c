#include "benchmarks/the_unit.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <iostream>

BASE_HARDWARE* Hardware = nullptr;

namespace benchmarks {
namespace {

int open_or_end(const char* path, int flags) {
  const int file = open(path, flags | O_CLOEXEC, 0666);
  if (file == -1) {
    std::cerr << path << ": " << std::strerror(errno) << std::endl;
    std::_Exit(1);
  }
  return file;
}

}  // namespace

HARDWARE& the_hardware() {
  static HARDWARE& hardware = *new HARDWARE;
  Hardware = &hardware;
  return hardware;
}

void read_file(const char* path) {
  const int file = open_or_end(path, O_RDONLY);
  char text[256];
  while (read(file, text, sizeof text) > 0) {
  }
  close(file);
}

void write_file(const char* path, const char* text) {
  const int file = open_or_end(path, O_WRONLY | O_CREAT | O_TRUNC);
  if (write(file, text, std::strlen(text)) == -1) {
    std::_Exit(1);
  }
  close(file);
}

}  // namespace benchmarks
