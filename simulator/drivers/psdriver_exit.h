#pragma once

namespace simulator::drivers {

/// Something that calls back on a thread of its own and can be told to stop doing so.
class Caller {
public:
  /// No call-back begins after this; one that runs may go on for a moment.
  virtual void fall_silent() noexcept = 0;

protected:
  ~Caller() = default;
};

/// Makes the caller fall silent when the process exits, before the file-scope objects made earlier are destroyed:
/// whoever owns the driver need not delete it. Thread-safe.
void silence_at_exit(Caller& caller);
/// Takes that back; to be called before the caller is destroyed. Thread-safe.
void forget_at_exit(Caller& caller);

}  // namespace simulator::drivers
