// Substring search whose time stays linear in text plus pattern for every input (a matcher that
// never re-reads text: Knuth-Morris-Pratt), exact or with ASCII case folded.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zel::strings {

struct ExactBytes {
  static constexpr unsigned char fold(unsigned char c) { return c; }
  // The first position from `from` on whose byte folds to `folded`, else text.size().
  static std::size_t next(std::string_view text, std::size_t from, unsigned char folded) {
    const std::size_t at = text.find(static_cast<char>(folded), from);
    return at == std::string_view::npos ? text.size() : at;
  }
};

struct AsciiCaseFolded {
  static constexpr unsigned char fold(unsigned char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<unsigned char>(c + ('a' - 'A')) : c;
  }
  static std::size_t next(std::string_view text, std::size_t from, unsigned char folded) {
    while (from < text.size() && fold(static_cast<unsigned char>(text[from])) != folded) ++from;
    return from;
  }
};

template <class Fold>
class LinearSearcher {
 public:
  // `pattern` is not empty and outlives the searcher.
  explicit LinearSearcher(std::string_view pattern) : pattern_(pattern), border_(pattern.size()) {
    std::size_t length = 0;
    for (std::size_t k = 1; k < pattern_.size(); ++k) {
      while (length > 0 && at(k) != at(length)) length = border_[length - 1];
      if (at(k) == at(length)) ++length;
      border_[k] = length;
    }
  }

  // The first occurrence that starts at `from` or later, else npos.
  std::size_t find(std::string_view text, std::size_t from) const {
    std::size_t matched = 0;
    for (std::size_t i = from; i < text.size(); ++i) {
      if (matched == 0) {
        i = Fold::next(text, i, at(0));
        if (i == text.size()) break;
      }
      const unsigned char c = Fold::fold(static_cast<unsigned char>(text[i]));
      while (matched > 0 && c != at(matched)) matched = border_[matched - 1];
      if (c == at(matched)) ++matched;
      if (matched == pattern_.size()) return i + 1 - matched;
    }
    return std::string_view::npos;
  }

 private:
  unsigned char at(std::size_t k) const {
    return Fold::fold(static_cast<unsigned char>(pattern_[k]));
  }

  std::string_view pattern_;
  // border_[k]: length of the longest proper prefix of pattern_[0..k] that is also its suffix.
  std::vector<std::size_t> border_;
};

}  // namespace zel::strings
