#include "simulator/settings/fault_text.h"

#include <charconv>
#include <limits>
#include <set>
#include <sstream>
#include <stdexcept>

namespace simulator::settings {
namespace {

using model::Fault;
using model::KindRow;

constexpr std::int64_t MOST_CALLS = std::numeric_limits<std::uint32_t>::max();

/// The number in "name=number", decimal or hexadecimal (0x).
std::int64_t number_in(const std::string& parameter, std::int64_t minimum, std::int64_t maximum) {
  const std::size_t sign = parameter.find('=');
  const bool is_hexadecimal = parameter.compare(sign + 1, 2, "0x") == 0;
  const char* const begin = parameter.data() + sign + (is_hexadecimal ? 3 : 1);
  const char* const end = parameter.data() + parameter.size();
  std::int64_t number = 0;
  const auto [stop, error] = std::from_chars(begin, end, number, is_hexadecimal ? 16 : 10);
  if (sign == std::string::npos || error != std::errc{} || stop != end || number < minimum || number > maximum) {
    throw std::invalid_argument(parameter.substr(0, sign) + " must be a whole number from " + std::to_string(minimum) +
                                " to " + std::to_string(maximum) + ", not in \"" + parameter + "\"");
  }
  return number;
}

void take(Fault& fault, const std::string& parameter) {
  const KindRow& kind = row_of(fault.kind);
  const std::string name = parameter.substr(0, parameter.find('='));
  if (name == "value" && !kind.value.empty()) {
    fault.value = static_cast<std::int32_t>(number_in(parameter, kind.minimum, kind.maximum));
  } else if (name == "nth" && fault.kind != model::FaultKind::NONE) {
    fault.nth = static_cast<std::uint32_t>(number_in(parameter, 1, MOST_CALLS));
  } else if (name == "times" && fault.kind != model::FaultKind::NONE) {
    fault.times = static_cast<std::uint32_t>(number_in(parameter, 1, MOST_CALLS));
  } else {
    throw std::invalid_argument("\"" + std::string(kind.name) + "\" has no parameter \"" + name + "\"");
  }
}

}  // namespace

std::string text_of(const Fault& fault) {
  constexpr Fault USUAL;
  std::string text(name_of(fault.kind));
  if (fault.value != USUAL.value) {
    text += " value=" + std::to_string(fault.value);
  }
  if (fault.nth != USUAL.nth) {
    text += " nth=" + std::to_string(fault.nth);
  }
  if (fault.times != USUAL.times) {
    text += " times=" + std::to_string(fault.times);
  }
  return text;
}

std::string kind_in(const std::string& text) {
  std::string kind;
  std::istringstream(text) >> kind;
  return kind;
}

Fault fault_of(const std::string& text) {
  std::istringstream words(text);
  std::string word;
  words >> word;
  Fault fault;
  fault.kind = model::fault_kind_named(word).value();
  std::set<std::string> given;
  while (words >> word) {
    if (!given.insert(word.substr(0, word.find('='))).second) {
      throw std::invalid_argument("\"" + word + "\" gives a parameter twice");
    }
    take(fault, word);
  }
  return fault;
}

}  // namespace simulator::settings
