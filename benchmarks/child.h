#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace benchmarks {

/// A fresh process of a program beside this one (in bin/benchmarks/), with one line per command and answer. It exits at
/// the end of its input. Failures end this process as well. One thread at a time.
class Child {
public:
  Child(const std::string& program, const std::vector<std::string>& arguments);
  /// Closes the child's input and waits until it exits.
  ~Child();
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// The next number that the child writes, one per line.
  double number() const;
  void say(const std::string& line) const;

private:
  pid_t process_ = -1;
  int input_ = -1;   ///< the child's
  int output_ = -1;  ///< the child's
};

}  // namespace benchmarks
