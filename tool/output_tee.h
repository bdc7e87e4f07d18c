#pragma once

#include <atomic>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tool {

/// A pipe whose readable end is copied, as it comes, into a log file and to a descriptor; keeps the last lines too.
class OutputTee {
public:
  static constexpr std::size_t LINES_KEPT = 6;

  /// `target`: where the bytes go beside the log, -1: nowhere.
  OutputTee(std::filesystem::path log, int target);
  ~OutputTee();
  OutputTee(const OutputTee&) = delete;
  OutputTee& operator=(const OutputTee&) = delete;

  /// The end to write to, for a child process.
  int writing_end() const noexcept { return write_; }
  /// Lets go of the writing end and starts to copy, on a thread of its own. Call once the child has been started.
  void start();
  /// Waits until the last writer has closed its end and everything has been copied.
  void finish();

  /// Copies into the log only from now on. Any thread.
  void mute() { target_ = -1; }

  /// The last whole lines, oldest first. Any thread.
  std::vector<std::string> last_lines() const;

private:
  void copy();
  void keep(const char* bytes, std::size_t size);

  std::filesystem::path log_;
  std::atomic<int> target_;
  int read_ = -1;
  int write_ = -1;
  std::thread copying_;
  mutable std::mutex mutex_;
  std::deque<std::string> lines_;
  std::string unfinished_;
};

}  // namespace tool
