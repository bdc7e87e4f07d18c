#include "tool/nearest.h"

#include <algorithm>
#include <utility>

#include "tool/text.h"

namespace tool {
namespace {

constexpr std::size_t MOST_NAMES = 3;
/// Longer words are compared up to here: the time grows with the product of both lengths.
constexpr std::size_t LONGEST_WORD = 100;

/// Distance of a word from a name or from its last dotted part, whichever is smaller.
std::size_t distance_of(const std::string& word, const std::string& name) {
  const std::size_t whole = edit_distance(word, name);
  const std::size_t dot = name.rfind('.');
  if (dot == std::string::npos || word.find('.') != std::string::npos) {
    return whole;
  }
  return std::min(whole, edit_distance(word, name.substr(dot + 1)));
}

}  // namespace

std::size_t edit_distance(const std::string& one, const std::string& other) {
  const std::string a = lower_case(one.substr(0, LONGEST_WORD));
  const std::string b = lower_case(other.substr(0, LONGEST_WORD));
  // Rows of the table of distances between beginnings: two above, above, this one.
  std::vector<std::size_t> older(b.size() + 1);
  std::vector<std::size_t> old(b.size() + 1);
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) {
    row[j] = j;
  }
  for (std::size_t i = 1; i <= a.size(); ++i) {
    older.swap(old);
    old.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      row[j] = std::min({old[j] + 1, row[j - 1] + 1, old[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1)});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        row[j] = std::min(row[j], older[j - 2] + 1);
      }
    }
  }
  return row[b.size()];
}

std::vector<std::string> nearest(const std::string& word, const std::vector<std::string>& names) {
  const std::size_t limit = std::max<std::size_t>(1, std::min(word.size(), LONGEST_WORD) / 3);
  std::vector<std::pair<std::size_t, std::string>> found;
  for (const std::string& name : names) {
    const std::size_t distance = distance_of(word, name);
    if (distance <= limit) {
      found.emplace_back(distance, name);
    } else if (word.size() > 2 && lower_case(name).find(lower_case(word)) != std::string::npos) {
      found.emplace_back(limit + 1, name);
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> best;
  for (const auto& [distance, name] : found) {
    if (best.size() < MOST_NAMES && distance <= found.front().first + 1) {
      best.push_back(name);
    }
  }
  return best;
}

std::string did_you_mean(const std::string& word, const std::vector<std::string>& names) {
  const std::vector<std::string> best = nearest(word, names);
  std::string text;
  for (std::size_t i = 0; i < best.size(); ++i) {
    text += i == 0 ? "; did you mean " : i + 1 == best.size() ? " or " : ", ";
    text += best[i];
  }
  return best.empty() ? text : text + "?";
}

}  // namespace tool
