// Removing HTML tags, and rewriting the SQL words TRUE and FALSE outside quoted literals.
#pragma once

#include <string>
#include <string_view>

namespace zel::strings {

// Both results are read back as zero-terminated text, so they end before their first NUL.

// Every byte that would be emitted inside a tag is replaced by the replacement (read up to its
// first NUL; empty for none), so a tag yields one replacement per emitted byte, not one per tag.
std::string removeHtmlTags(std::string_view text, std::string_view replacement);

// TRUE and FALSE, in any case, standing as whole words outside '...' and "..." become 1 and 0,
// provided the text goes on for at least six bytes from the word's start.
std::string replaceSqlBooleans(std::string_view sql);

}  // namespace zel::strings
