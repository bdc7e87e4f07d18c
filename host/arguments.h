#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/records.h"

namespace host {

/// A rejected request; what() names the error, its place and the expected form.
class RequestError : public std::runtime_error {
public:
  using std::runtime_error::runtime_error;
};

/// The arguments of one call, checked on access. Every accessor throws RequestError if an argument is missing, has the
/// wrong type or is out of range. Not shared between threads.
class Arguments {
public:
  /// `values`: the request's array, owned by the caller.
  Arguments(const std::string& call, const nlohmann::json& values) : call_(call), values_(values) {}

  std::size_t count() const noexcept { return values_.size(); }
  /// Rejects more than `most` arguments.
  void at_most(std::size_t most) const;

  /// The argument at `index`, counted from 0; `name` is its name in errors.
  int number(std::size_t index, const char* name) const;
  unsigned int word(std::size_t index, const char* name) const;
  double real(std::size_t index, const char* name) const;
  bool flag(std::size_t index, const char* name) const;
  std::string text(std::size_t index, const char* name) const;
  void null(std::size_t index, const char* name) const;

  /// Initial values of lists and texts that an operation may change; empty if omitted.
  std::string text_before(std::size_t index, const char* name) const;
  std::vector<VERSIONSDATA> versions_before(std::size_t index) const;
  std::vector<TEMPERATUREDATA> temperatures_before(std::size_t index) const;
  std::vector<FANDATA> fans_before(std::size_t index) const;

private:
  const nlohmann::json& at(std::size_t index, const char* name, const char* expected) const;
  const nlohmann::json* rows(std::size_t index, const char* expected) const;
  [[noreturn]] void refuse(std::size_t index, const char* name, const char* expected) const;

  const std::string& call_;
  const nlohmann::json& values_;
};

/// Lists in the form used in answers.
nlohmann::json as_json(const std::vector<VERSIONSDATA>& list);
nlohmann::json as_json(const std::vector<TEMPERATUREDATA>& list);
nlohmann::json as_json(const std::vector<FANDATA>& list);
nlohmann::json as_json(const TEMPERATUREDATA& row);

/// A single-precision number as its shortest decimal: 25.3, not 25.299999. Infinities and NaN, which JSON lacks, become
/// null.
nlohmann::json shortest(float value);

}  // namespace host
