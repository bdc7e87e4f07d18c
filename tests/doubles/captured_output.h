#pragma once

#include <string>

namespace doubles {

/// Captures the process's standard output and standard error separately during its lifetime. Does not flush the
/// streams: text still in a buffer is missing. One at a time.
class CapturedOutput {
public:
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  std::string out() const;
  /// Without the engine's own lines.
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
