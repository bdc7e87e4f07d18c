#pragma once

namespace dcps {

/// What becomes of a sample that a writer is given.
enum class WriteOrder { SEND, SEND_TWICE, LOSE, REFUSE };

using WriteGuard = WriteOrder (*)(const char* topic_name);

/// Does nothing: OpenDDS lets nobody decide before a write. Every sample is sent.
inline void set_write_guard(WriteGuard) noexcept {}

}  // namespace dcps
