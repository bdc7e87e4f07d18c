#include "simulator/settings/fault_text.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <set>
#include <sstream>
#include <stdexcept>

#include "simulator/settings/one_line.h"

namespace simulator::settings {
namespace {

using model::Fault;
using model::FaultKind;
using model::FaultNumber;
using model::Point;

constexpr std::int64_t MOST_CALLS = std::numeric_limits<std::uint32_t>::max();

/// A parameter that says which calls are hit.
struct CallParameter {
  std::string_view name;
  std::uint32_t Fault::*member;
  std::int64_t minimum;
  std::int64_t maximum;
};

constexpr CallParameter CALL_PARAMETERS[] = {{"nth", &Fault::nth, 1, MOST_CALLS},
                                             {"times", &Fault::times, 1, MOST_CALLS},
                                             {"every", &Fault::every, 1, MOST_CALLS},
                                             {"probability", &Fault::probability, 1, Fault::CERTAIN}};

/// The number in "name=number", decimal or hexadecimal (0x).
std::int64_t number_in(const std::string& parameter, std::int64_t minimum, std::int64_t maximum) {
  const std::size_t sign = std::min(parameter.find('='), parameter.size());
  const std::string digits = parameter.substr(std::min(sign + 1, parameter.size()));
  const bool is_hexadecimal = digits.compare(0, 2, "0x") == 0;
  const char* const begin = digits.data() + (is_hexadecimal ? 2 : 0);
  const char* const end = digits.data() + digits.size();
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(begin, end, number, is_hexadecimal ? 16 : 10);
  const bool is_signed = is_hexadecimal && begin != end && *begin == '-';
  if (error != std::errc{} || stop != end || is_signed || number < minimum || number > maximum) {
    throw std::invalid_argument(parameter.substr(0, sign) + " must be a whole number from " + std::to_string(minimum) +
                                " to " + std::to_string(maximum) + ", not in \"" + one_line(parameter) + "\"");
  }
  return number;
}

/// Reads the parameters of one fault.
class Reader {
public:
  Reader(Point point, FaultKind kind) : number_(number_of(point, kind)), row_(row_of(row_of(point).crossing)) {
    fault_.kind = kind;
  }

  void take(const std::string& parameter) {
    const std::string name = parameter.substr(0, parameter.find('='));
    if (!given_.insert(name).second) {
      throw std::invalid_argument("\"" + one_line(parameter) + "\" gives a parameter twice");
    }
    if (name == "value" && !number_.meaning.empty()) {
      fault_.value = static_cast<std::int32_t>(number_in(parameter, number_.minimum, number_.maximum));
    } else if (name == "seed" && takes_seed()) {
      fault_.seed = static_cast<std::uint32_t>(number_in(parameter, 0, MOST_CALLS));
    } else if (!take_call_parameter(name, parameter)) {
      throw std::invalid_argument("\"" + std::string(name_of(fault_.kind)) + "\"" +
                                  (row_.is_counted ? "" : " of a file") + " has no parameter \"" + one_line(name) +
                                  "\"");
    }
  }

  Fault fault() {
    fault_.draws = fault_.kind == FaultKind::GARBAGE && fault_.seed && given_.count("value") == 0;
    if (fault_.seed && !fault_.draws && fault_.probability == Fault::CERTAIN) {
      throw std::invalid_argument("\"seed\" needs \"probability\"" +
                                  std::string(fault_.kind == FaultKind::GARBAGE ? " or no \"value\"" : ""));
    }
    return fault_;
  }

private:
  bool takes_seed() const {
    return fault_.kind == FaultKind::GARBAGE || (fault_.kind != FaultKind::NONE && row_.is_counted);
  }

  /// False if the fault has no such parameter.
  bool take_call_parameter(const std::string& name, const std::string& parameter) {
    const auto* const at = std::find_if(std::begin(CALL_PARAMETERS), std::end(CALL_PARAMETERS),
                                        [&](const CallParameter& each) { return each.name == name; });
    if (at == std::end(CALL_PARAMETERS) || fault_.kind == FaultKind::NONE || !row_.is_counted) {
      return false;
    }
    fault_.*at->member = static_cast<std::uint32_t>(number_in(parameter, at->minimum, at->maximum));
    return true;
  }

  const FaultNumber& number_;
  const model::CrossingRow& row_;
  Fault fault_;
  std::set<std::string> given_;
};

}  // namespace

std::string text_of(const Fault& fault) {
  const Fault usual;
  std::string text(name_of(fault.kind));
  const auto add = [&text](std::string_view name, std::int64_t number) {
    text += " " + std::string(name) + "=" + std::to_string(number);
  };
  const bool replaces_draws = fault.kind == FaultKind::GARBAGE && fault.seed && !fault.draws;
  if (fault.value != usual.value || replaces_draws) {
    add("value", fault.value);
  }
  for (const CallParameter& each : CALL_PARAMETERS) {
    if (fault.*each.member != usual.*each.member) {
      add(each.name, fault.*each.member);
    }
  }
  if (fault.seed) {
    add("seed", *fault.seed);
  }
  return text;
}

std::string kind_in(const std::string& text) {
  std::string kind;
  std::istringstream(text) >> kind;
  return kind;
}

Fault fault_of(Point point, const std::string& text) {
  std::istringstream words(text);
  std::string word;
  words >> word;
  Reader reader(point, model::fault_kind_named(word).value());
  while (words >> word) {
    reader.take(word);
  }
  return reader.fault();
}

}  // namespace simulator::settings
