#include "function_pages.h"

#include <strings.h>

#include <array>
#include <initializer_list>

namespace zelhost {
namespace {

struct Page {
  const char* name;
  std::initializer_list<const char*> functions;
};

const std::array<Page, 10>& pages() {
  static const std::array<Page, 10> table = {{
      {"byte_ops",
       {"ClearStringContentZEL", "ConcatBinaryStringsZEL", "CreateStringZEL",
        "DetectUnicodeMarkersZEL", "GetUnicodeMarkersZEL", "InStrByteRangeZEL", "InStrBytesZEL",
        "IsASCIIStringZEL", "NativeStringZEL", "RandomBytesStringZEL",
        "ReplaceNonPrintableCharactersZEL", "StrCompBytesZEL", "StringANDZEL", "StringORZEL",
        "StringXORZEL", "StringXOR2ZEL", "UnicodeStringZEL"}},
      {"code_pages",
       {"DecodingFromCP1252ZEL", "DecodingFromISO8859ZEL", "EncodingToCP1252ZEL",
        "EncodingToISO8859ZEL"}},
      {"entities",
       {"DecodingFromHTMLZEL", "DecodingFromXMLZEL", "EncodingToHTMLZEL", "EncodingToXMLZEL",
        "StringIsHTMLreadyZEL", "StringIsXMLreadyZEL"}},
      {"numbers_and_distance",
       {"JaroWinklerDistanceZEL", "LevenshteinDistanceZEL", "ScientificStrZEL", "StrZEL"}},
      {"rtf", {"RTFDataZEL"}},
      {"tag_stripping", {"RemoveHTMLTagsWithZEL", "RemoveHTMLTagsZEL", "SQLReplaceBooleanZEL"}},
      {"text_search",
       {"CheckUTF8ZEL", "ContainsWholeWordZEL", "CountOccurancesZEL", "GetStringsFromDataZEL",
        "HasPostfixZEL", "HasPrefixZEL", "ReplaceLineEndingsZEL", "StrCompCharactersZEL"}},
      {"transfer_encodings",
       {"DecodingFromHexZEL", "DecodingFromQuotedPrintableZEL", "DecodingFromURLZEL",
        "EncodeEmailSubjectZEL", "EncodingToHexZEL", "EncodingToQuotedPrintableZEL",
        "EncodingToURLZEL"}},
      {"unicode",
       {"ConvertUnicodeToCharacterCompositionZEL", "ConvertUnicodeToCharacterDecompositionZEL",
        "RemoveAccentsZEL"}},
      {"ydecode_mysql_hexdump",
       {"DecodingFromMySQLZEL", "HexstringZEL", "_yDecodeMemoryZEL", "_yDecodeStringZEL"}},
  }};
  return table;
}

}  // namespace

std::optional<std::string> functionPage(std::string_view name) {
  for (const Page& page : pages()) {
    for (const char* function : page.functions) {
      if (name.size() == std::string_view(function).size() &&
          strncasecmp(function, name.data(), name.size()) == 0) {
        return page.name;
      }
    }
  }
  return std::nullopt;
}

}  // namespace zelhost
