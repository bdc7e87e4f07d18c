#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "simulator/agent/link.h"

namespace simulator::agent {

/// The arguments of one request, checked on access: every accessor throws Refusal (BAD_REQUEST, naming the argument) if
/// it is missing, of another type or out of range. One thread at a time.
class Arguments {
public:
  /// `with`: an object, owned by the caller.
  explicit Arguments(const Json& with) : with_(with) {}

  bool has(const char* name) const { return with_.contains(name) && !with_[name].is_null(); }
  const Json& any(const char* name) const;
  std::string text(const char* name) const;
  std::string text(const char* name, const std::string& otherwise) const;
  bool flag(const char* name) const;
  bool flag(const char* name, bool otherwise) const;
  std::int64_t number(const char* name, std::int64_t minimum, std::int64_t maximum) const;
  std::int64_t number(const char* name, std::int64_t minimum, std::int64_t maximum, std::int64_t otherwise) const;
  std::vector<std::string> texts(const char* name) const;
  /// Text variables by name; none if the argument is missing.
  std::vector<std::pair<std::string, std::string>> variables(const char* name) const;
  /// The argument timeout_ms, 1 ms to a day; none if it is missing: no limit.
  std::optional<std::chrono::milliseconds> timeout() const;

private:
  const Json& with_;
};

}  // namespace simulator::agent
