// The record of calls and the event log: files that every program of the unit can write.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "simulator/agent/refusal.h"
#include "simulator/agent/verbs.h"
#include "simulator/channel/document.h"

namespace simulator::agent {
namespace {

using model::UnitModel;

constexpr std::int64_t MOST_LINES = 100'000;
constexpr std::size_t MOST_BYTES = channel::LARGEST_FROM_AGENT / 2;
constexpr std::size_t DEEPEST_LINE = 48;

/// A regular file, read by lines; empty if there is none.
class Lines {
public:
  explicit Lines(const std::string& path)
      : descriptor_(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC)) {
    struct stat status {};
    if (descriptor_ != -1 && (::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode))) {
      ::close(descriptor_);
      throw Refusal(FAILED, "not a regular file", path);
    }
  }
  ~Lines() {
    if (descriptor_ != -1) {
      ::close(descriptor_);
    }
  }
  Lines(const Lines&) = delete;
  Lines& operator=(const Lines&) = delete;

  /// The next complete line, shortened to MOST_BYTES; false at the end.
  bool next(std::string& line) {
    line.clear();
    for (;;) {
      const std::size_t end = block_.find('\n', at_);
      line.append(block_, at_, end == std::string::npos ? end : end - at_);
      if (line.size() > MOST_BYTES) {
        line.resize(MOST_BYTES);
      }
      if (end != std::string::npos) {
        at_ = end + 1;
        return true;
      }
      if (!fill()) {
        return false;
      }
    }
  }

private:
  bool fill() {
    block_.resize(65536);
    at_ = 0;
    const ssize_t size = descriptor_ == -1 ? 0 : ::read(descriptor_, block_.data(), block_.size());
    block_.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
    return size > 0;
  }

  int descriptor_;
  std::string block_;
  std::size_t at_ = 0;
};

Json parsed(const std::string& line) {
  try {
    return channel::parsed_document(line, DEEPEST_LINE);
  } catch (const channel::DocumentError& error) {
    return {{"invalid", error.what()}, {"text", line}};
  }
}

/// The file's lines from number `from` on, as documents under `key`, and the number of the next line.
Json read_lines(const std::string& path, const Arguments& with, const char* key) {
  const std::int64_t from = with.number("from", 0, INT64_MAX, 0);
  const std::int64_t limit = with.number("limit", 1, MOST_LINES, MOST_LINES);
  Lines lines(path);
  Json rows = Json::array();
  std::int64_t number = 0;
  std::size_t bytes = 0;
  for (std::string line; static_cast<std::int64_t>(rows.size()) < limit && bytes < MOST_BYTES && lines.next(line);) {
    if (number++ >= from) {
      bytes += line.size();
      rows.push_back(parsed(line));
    }
  }
  return {{"next", number}, {key, rows}};
}

Json read_record(const Arguments& with, UnitModel& unit) {
  Json answer = {{"on", unit.record().on()}};
  answer.update(read_lines(unit.run_folder() + "/calls.jsonl", with, "calls"));
  return answer;
}

Json switch_record(const Arguments& with, UnitModel& unit) {
  const bool on = with.flag("on");
  if (on) {
    unit.record().start();
  } else {
    unit.record().stop();
  }
  return {{"on", on}};
}

}  // namespace

void add_record_verbs(Verbs& verbs, UnitModel& unit) {
  verbs["record.read"] = [&unit](const Arguments& with) { return read_record(with, unit); };
  verbs["record.set"] = [&unit](const Arguments& with) { return switch_record(with, unit); };
  verbs["eventlog.read"] = [&unit](const Arguments& with) {
    return read_lines(unit.run_folder() + "/events.jsonl", with, "events");
  };
}

}  // namespace simulator::agent
