#include "simulator/settings/nearest_names.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string_view>
#include <utility>

#include "simulator/settings/settings.h"

namespace simulator::settings {
namespace {

constexpr std::size_t NAMES_AT_MOST = 3;
constexpr std::size_t DIFFERENCES_AT_MOST = 3;
/// Shorter and longer names are like no setting's.
constexpr std::size_t SHORTEST_NAME = 3;
constexpr std::size_t LONGEST_NAME = 100;

std::string lower_case(std::string text) {
  for (char& each : text) {
    each = static_cast<char>(std::tolower(static_cast<unsigned char>(each)));
  }
  return text;
}

/// The number of letters to insert, remove or replace to make one text of the other.
std::size_t distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

/// The last parts of a dotted name, as many as `parts`.
std::string_view last_parts(std::string_view name, std::ptrdiff_t parts) {
  std::size_t begin = name.size();
  while (parts > 0 && begin != 0) {
    begin = name.rfind('.', begin - 1);
    if (begin == std::string_view::npos) {
      return name;
    }
    --parts;
  }
  return begin == name.size() ? name : name.substr(begin + 1);
}

/// The register's name with its numbers in the one spelling that is accepted; empty for another name.
std::string without_leading_zeros(const std::string& name) {
  std::string shorter;
  for (const char each : name) {
    const bool leads = shorter.size() > 1 && shorter.back() == '0' && shorter[shorter.size() - 2] == '.';
    if (leads && std::isdigit(static_cast<unsigned char>(each)) != 0) {
      shorter.pop_back();
    }
    shorter += each;
  }
  return shorter != name && find_setting(shorter) ? shorter : "";
}

}  // namespace

std::vector<std::string> nearest_names(const std::string& name) {
  if (name.size() < SHORTEST_NAME || name.size() > LONGEST_NAME) {
    return {};
  }
  if (std::string spelled = without_leading_zeros(name); !spelled.empty()) {
    return {std::move(spelled)};
  }
  const std::string wanted = lower_case(name);
  const auto parts = std::count(name.begin(), name.end(), '.') + 1;
  const std::size_t limit = std::min(DIFFERENCES_AT_MOST, name.size() / 4);
  std::vector<std::pair<std::size_t, std::string>> near;
  for (const Setting& each : settings()) {
    const std::string candidate = lower_case(each.name);
    const std::size_t differences =
        std::min(distance(wanted, candidate), distance(wanted, last_parts(candidate, parts)));
    if (differences <= limit) {
      near.emplace_back(differences, each.name);
    }
  }
  std::stable_sort(near.begin(), near.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> names;
  for (std::size_t at = 0; at < std::min(near.size(), NAMES_AT_MOST); ++at) {
    names.push_back(near[at].second);
  }
  return names;
}

std::string suggestion_for(const std::string& name) {
  const std::vector<std::string> names = nearest_names(name);
  std::string suggestion;
  for (std::size_t at = 0; at < names.size(); ++at) {
    suggestion += (at == 0 ? "; did you mean " : at + 1 < names.size() ? ", " : " or ") + ("\"" + names[at] + "\"");
  }
  return suggestion.empty() ? "" : suggestion + "?";
}

}  // namespace simulator::settings
