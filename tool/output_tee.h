#pragma once

#include <atomic>
#include <deque>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace tool {

/// A pipe whose output is copied to a log file and a descriptor as it arrives. Keeps the last lines.
class OutputTee {
public:
  static constexpr std::size_t LINES_KEPT = 6;

  /// `target`: descriptor that also receives the output, -1: none.
  OutputTee(std::filesystem::path log, int target);
  ~OutputTee();
  OutputTee(const OutputTee&) = delete;
  OutputTee& operator=(const OutputTee&) = delete;

  /// The write end, for a child process.
  int writing_end() const noexcept { return write_; }
  /// Closes the write end and starts copying on a new thread. Call after starting the child.
  void start();
  /// Waits until all writers have closed the pipe and everything has been copied.
  void finish();

  /// Copies only to the log from now on. Any thread.
  void mute() { target_ = -1; }

  /// The last complete lines, oldest first. Any thread.
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
