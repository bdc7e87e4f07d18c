#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>

/// The error types of the engine framework. All derive from std::runtime_error, whose what() is the message text.
namespace Varnok {

namespace Connection_errors {

/// A DDS entity could not be made.
class __attribute__((visibility("default"))) Not_Connected : public std::runtime_error {
public:
  explicit Not_Connected(const std::string& text);
  ~Not_Connected() override;
};

/// A DDS write was rejected.
class __attribute__((visibility("default"))) Communications_failure : public std::runtime_error {
public:
  explicit Communications_failure(const std::string& text);
  ~Communications_failure() override;
};

}  // namespace Connection_errors

namespace Runtime_errors {

/// An error without a more specific type.
class __attribute__((visibility("default"))) Generic : public std::runtime_error {
public:
  explicit Generic(const std::string& text);
  ~Generic() override;
};

}  // namespace Runtime_errors

namespace Operation_errors {

/// One number of a range record: a union of an integer and a real, selected by its kind.
struct RangeValue {
  enum Kind { INTEGER, REAL };
  static RangeValue of(std::int32_t number);
  static RangeValue of(double number);

  Kind kind;
  union {
    std::int32_t integer;
    double real;
  };
};

/// A description of the range error, the bounds (both inside the valid range) and the offending value.
struct RangeRecord {
  std::string description;
  RangeValue minimum;
  RangeValue maximum;
  RangeValue value;
};

/// An argument lies outside the range that the operation accepts; what() is the record's description.
class __attribute__((visibility("default"))) DataOutOfRangeException : public std::runtime_error {
public:
  explicit DataOutOfRangeException(const RangeRecord& record);
  ~DataOutOfRangeException() override;

  RangeRecord range;
};

}  // namespace Operation_errors

}  // namespace Varnok
