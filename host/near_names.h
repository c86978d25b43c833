// Suggestions for a mistyped name.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelhost {

// Levenshtein distance, ignoring ASCII case.
std::size_t editDistance(std::string_view a, std::string_view b);

// The known names that contain `wanted` or are a few edits from it (ignoring case), closest
// first, each once, at most a handful.
std::vector<std::string> nearNames(std::string_view wanted, const std::vector<std::string>& known);

}  // namespace zelhost
