#include <varnok_errors.h>

namespace Varnok {

namespace Connection_errors {

Not_Connected::Not_Connected(const std::string& text) : std::runtime_error(text) {}
Not_Connected::~Not_Connected() = default;

Communications_failure::Communications_failure(const std::string& text) : std::runtime_error(text) {}
Communications_failure::~Communications_failure() = default;

}  // namespace Connection_errors

namespace Runtime_errors {

Generic::Generic(const std::string& text) : std::runtime_error(text) {}
Generic::~Generic() = default;

}  // namespace Runtime_errors

namespace Operation_errors {

RangeValue RangeValue::of(std::int32_t number) {
  RangeValue value{};
  value.kind = INTEGER;
  value.integer = number;
  return value;
}

RangeValue RangeValue::of(double number) {
  RangeValue value{};
  value.kind = REAL;
  value.real = number;
  return value;
}

DataOutOfRangeException::DataOutOfRangeException(const RangeRecord& record)
    : std::runtime_error(record.description), range(record) {}
DataOutOfRangeException::~DataOutOfRangeException() = default;

}  // namespace Operation_errors

}  // namespace Varnok
