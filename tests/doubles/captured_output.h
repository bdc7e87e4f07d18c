#pragma once

#include <string>

namespace doubles {

/// Takes what the process writes to standard output and standard error while it lives, each by itself. Nothing is
/// flushed on the writer's behalf: text that still stands in a buffer is not there yet. One at a time.
class CapturedOutput {
public:
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  std::string out() const;
  std::string err() const;

private:
  struct Stream {
    int number;
    int kept;
    int taken;
  };
  static Stream redirect(int number);
  static void restore(const Stream& stream);
  static std::string written(const Stream& stream);

  Stream out_;
  Stream err_;
};

}  // namespace doubles
