#include "near_names.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace zelhost {
namespace {

constexpr std::size_t kMostSuggestions = 5;
constexpr std::size_t kShortestUsefulPart = 3;  // shorter fragments are contained in everything
constexpr std::size_t kLettersPerAllowedEdit = 6;

char folded(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

std::string foldedText(std::string_view text) {
  std::string out(text);
  std::transform(out.begin(), out.end(), out.begin(), folded);
  return out;
}

}  // namespace

std::size_t editDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t substitution = diagonal + (folded(a[i - 1]) == folded(b[j - 1]) ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, substitution});
    }
  }
  return row[b.size()];
}

std::vector<std::string> nearNames(std::string_view wanted, const std::vector<std::string>& known) {
  const std::string needle = foldedText(wanted);
  const std::size_t allowedEdits = std::max<std::size_t>(1, wanted.size() / kLettersPerAllowedEdit);
  std::vector<std::pair<std::size_t, std::string>> found;
  for (const std::string& name : known) {
    const std::string hay = foldedText(name);
    const bool contains =
        needle.size() >= kShortestUsefulPart &&
        (hay.find(needle) != std::string::npos ||
         (hay.size() >= kShortestUsefulPart && needle.find(hay) != std::string::npos));
    const std::size_t distance = editDistance(needle, hay);
    if (contains || distance <= allowedEdits) found.emplace_back(distance, name);
  }
  std::sort(found.begin(), found.end());
  found.erase(std::unique(found.begin(), found.end()), found.end());
  std::vector<std::string> names;
  for (const auto& [distance, name] : found) {
    if (names.size() == kMostSuggestions) break;
    if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
  }
  return names;
}

}  // namespace zelhost
