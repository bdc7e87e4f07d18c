#pragma once

#include <string>
#include <vector>

namespace tool {

/// Number of insertions, deletions, replacements and swaps of neighbours that turn one word into the other, ignoring
/// case.
std::size_t edit_distance(const std::string& one, const std::string& other);

/// The names that were probably meant by `word`, best first, at most three; empty if none is near. A name whose last
/// dotted part is near counts as near.
std::vector<std::string> nearest(const std::string& word, const std::vector<std::string>& names);

/// "; did you mean a, b or c?" for the nearest names; empty if none is near.
std::string did_you_mean(const std::string& word, const std::vector<std::string>& names);

}  // namespace tool
