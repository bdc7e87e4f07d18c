#pragma once

namespace dcps {

/// What becomes of a sample that a writer is given.
enum class WriteOrder {
  SEND,
  SEND_TWICE,
  LOSE,   ///< not sent; the writer is told that it was
  REFUSE  ///< not sent; the writer gets RETCODE_ERROR
};

/// Decides before each write of the process, on the writing thread. Throws nothing.
using WriteGuard = WriteOrder (*)(const char* topic_name);

/// Sets the process's guard; null, as at first: every sample is sent. Any thread; applies to writes that start
/// afterwards.
__attribute__((visibility("default"))) void set_write_guard(WriteGuard guard) noexcept;

}  // namespace dcps
