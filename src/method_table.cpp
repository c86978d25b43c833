// The composition root: every registered function, in registration order.
#include <iterator>

#include "framework/definitions.h"
#include "strings/accent_map.h"
#include "strings/byte_ops_adapters.h"
#include "strings/entities_adapters.h"
#include "strings/tag_stripping_adapters.h"
#include "strings/text_search_adapters.h"
#include "strings/transfer_encodings_adapters.h"
#include "strings/unicode_text_adapters.h"
#include "strings/utf8_repair_adapters.h"
#include "strings/ydecode_mysql_hexdump_adapters.h"
#include "styledtext/rtf_adapters.h"

namespace zel {
namespace {

template <auto Function>
constexpr REALmethodDefinition row(const char* declaration) {
  return {
      reinterpret_cast<REALproc>(Function), nullptr, declaration, flags::kConsoleSafe, 0, nullptr};
}

// Flag adjustment rewrites the flags in place at start-up, so the table is not const. Rows are
// listed in registration order, each with its number as a trailing comment.
REALmethodDefinition gGlobalMethods[] = {
    row<&adapters::ReplaceLineEndingsZEL>("ReplaceLineEndingsZEL(Text as String, NewLine as "
                                          "String, yield as boolean = false) as String"),       // 1
    row<&adapters::HasPrefixZEL>("HasPrefixZEL(Text as String, Prefix as String) as boolean"),  // 2
    row<&adapters::HasPostfixZEL>(
        "HasPostfixZEL(Text as String, Prefix as String) as boolean"),  // 3
    row<&adapters::ContainsWholeWordZEL>(
        "ContainsWholeWordZEL(Text as String, Word as String) as boolean"),  // 4
    row<&adapters::GetStringsFromDataZEL_Ptr>("GetStringsFromDataZEL(data as ptr, size as Integer, "
                                              "MinLength as Integer = 0) as string()"),  // 5
    row<&adapters::GetStringsFromDataZEL_MemoryBlock>(
        "GetStringsFromDataZEL(data as MemoryBlock, MinLength as Integer = 0) as string()"),  // 6
    row<&adapters::GetStringsFromDataZEL_String>(
        "GetStringsFromDataZEL(data as String, MinLength as Integer = 0) as string()"),  // 7
    row<&adapters::CheckUTF8ZEL_Ptr>(
        "CheckUTF8ZEL(data as ptr, size as Integer, Placeholder as string) as string"),  // 8
    row<&adapters::CheckUTF8ZEL_MemoryBlock>(
        "CheckUTF8ZEL(mem as MemoryBlock, Placeholder as string) as string"),  // 9
    row<&adapters::CheckUTF8ZEL_String>(
        "CheckUTF8ZEL(data as string, Placeholder as string) as string"),                   // 10
    row<&adapters::EncodeEmailSubjectZEL>("EncodeEmailSubjectZEL(s as string) as string"),  // 11
    row<&adapters::yDecodeMemoryZEL>(
        "_yDecodeMemoryZEL(data as memoryblock) as memoryblock"),                     // 12
    row<&adapters::yDecodeStringZEL>("_yDecodeStringZEL(data as string) as string"),  // 13
    row<&adapters::JaroWinklerDistanceZEL>(
        "JaroWinklerDistanceZEL(a as string, b as string) as double"),  // 14
    row<&adapters::LevenshteinDistanceZEL>(
        "LevenshteinDistanceZEL(a as string, b as string) as double"),  // 15
    row<&adapters::ScientificStrZEL>(
        "ScientificStrZEL(d as double, digits as integer) as string"),  // 16
    row<&adapters::StrZEL>("StrZEL(d as double) as string"),            // 17
    row<&adapters::RandomBytesStringZEL>(
        "RandomBytesStringZEL(Length as integer, ASCII as boolean=false) as string"),  // 18
    row<&adapters::CreateStringZEL>(
        "CreateStringZEL(Length as integer, Content as String) as string"),                   // 19
    row<&adapters::StrCompBytesZEL>("StrCompBytesZEL(a as string, b as string) as integer"),  // 20
    row<&adapters::StrCompCharactersZEL>(
        "StrCompCharactersZEL(a as string, b as string) as integer"),  // 21
    row<&adapters::CountOccurancesZEL>(
        "CountOccurancesZEL(s as string, find as string) as integer"),                       // 22
    row<&adapters::ClearStringContentZEL>("ClearStringContentZEL(s as String) as Boolean"),  // 23
    row<&adapters::DetectUnicodeMarkersZEL>(
        "DetectUnicodeMarkersZEL(s as string) as integer"),                                   // 24
    row<&adapters::GetUnicodeMarkersZEL>("GetUnicodeMarkersZEL(kind as integer) as string"),  // 25
    row<&adapters::StringIsHTMLreadyZEL>("StringIsHTMLreadyZEL(s as string) as boolean"),     // 26
    row<&adapters::StringIsXMLreadyZEL>("StringIsXMLreadyZEL(s as string) as boolean"),       // 27
    row<&adapters::StringANDZEL>("StringANDZEL(a as string,b as string) as string"),          // 28
    row<&adapters::StringORZEL>("StringORZEL(a as string,b as string) as string"),            // 29
    row<&adapters::StringXORZEL>("StringXORZEL(data as string, XorMask as string, MaskOffset as "
                                 "integer = 0) as string"),  // 30
    row<&adapters::StringXOR2ZEL>("StringXOR2ZEL(data as string, XorMask as string, MaskOffset as "
                                  "integer = 0) as string"),                              // 31
    row<&adapters::UnicodeStringZEL>("UnicodeStringZEL(s as string) as string"),          // 32
    row<&adapters::NativeStringZEL>("NativeStringZEL(s as string) as string"),            // 33
    row<&adapters::DecodingFromMySQLZEL>("DecodingFromMySQLZEL(s as string) as string"),  // 34
    row<&adapters::EncodingToHTMLZEL>(
        "EncodingToHTMLZEL(s as string, options as integer = 0) as string"),            // 35
    row<&adapters::DecodingFromHTMLZEL>("DecodingFromHTMLZEL(s as string) as string"),  // 36
    row<&adapters::EncodingToXMLZEL>(
        "EncodingToXMLZEL(s as string, options as integer = 0) as string"),           // 37
    row<&adapters::DecodingFromXMLZEL>("DecodingFromXMLZEL(s as string) as string"),  // 38
    row<&adapters::EncodingToURLZEL>("EncodingToURLZEL(s as string) as string"),      // 39
    row<&adapters::EncodingToURLZEL_Options>(
        "EncodingToURLZEL(s as string, options as integer) as string"),               // 40
    row<&adapters::DecodingFromURLZEL>("DecodingFromURLZEL(s as string) as string"),  // 41
    row<&adapters::DecodingFromURLZEL_Options>(
        "DecodingFromURLZEL(s as string, options as integer) as string"),  // 42
    row<&adapters::EncodingToQuotedPrintableZEL>(
        "EncodingToQuotedPrintableZEL(s as string, LineLen as integer = 72) as string"),  // 43
    row<&adapters::DecodingFromQuotedPrintableZEL>(
        "DecodingFromQuotedPrintableZEL(s as string) as string"),  // 44
    row<&adapters::HexstringZEL>(
        "HexstringZEL(input as string, hexlen as integer, linelen as integer, linestart as string, "
        "lineend as string, spacer as string,filler as string) as string"),                   // 45
    row<&adapters::EncodingToISO8859ZEL>("EncodingToISO8859ZEL(s as string) as string"),      // 46
    row<&adapters::DecodingFromISO8859ZEL>("DecodingFromISO8859ZEL(s as string) as string"),  // 47
    row<&adapters::EncodingToCP1252ZEL>("EncodingToCP1252ZEL(s as string) as string"),        // 48
    row<&adapters::DecodingFromCP1252ZEL>("DecodingFromCP1252ZEL(s as string) as string"),    // 49
    row<&adapters::EncodingToHexZEL>("EncodingToHexZEL(s as string) as string"),              // 50
    row<&adapters::DecodingFromHexZEL>("DecodingFromHexZEL(s as string) as string"),          // 51
    row<&adapters::ReplaceNonPrintableCharactersZEL>(
        "ReplaceNonPrintableCharactersZEL(s as string, "
        "replacevalue as integer=46) as string"),                                  // 52
    row<&adapters::IsASCIIStringZEL>("IsASCIIStringZEL(s as string) as boolean"),  // 53
    row<&adapters::IsASCIIStringZEL_Mode>(
        "IsASCIIStringZEL(s as string, mode as integer) as boolean"),  // 54
    row<&adapters::RemoveHTMLTagsZEL>(
        "RemoveHTMLTagsZEL(AsciiTextWithTags as string) as string"),  // 55
    row<&adapters::RemoveHTMLTagsWithZEL>("RemoveHTMLTagsWithZEL(AsciiTextWithTags as string, "
                                          "Replacement as string) as string"),  // 56
    row<&adapters::ConcatBinaryStringsZEL_6Strings>(
        "ConcatBinaryStringsZEL(a as string, b as string, c as string, d as string, e as string, f "
        "as string) as string"),  // 57
    row<&adapters::ConcatBinaryStringsZEL_5Strings>(
        "ConcatBinaryStringsZEL(a as string, b as string, c as "
        "string, d as string, e as string) as string"),  // 58
    row<&adapters::ConcatBinaryStringsZEL_4Strings>(
        "ConcatBinaryStringsZEL(a as string, b as string, c as "
        "string, d as string) as string"),  // 59
    row<&adapters::ConcatBinaryStringsZEL_3Strings>(
        "ConcatBinaryStringsZEL(a as string, b as string, c as string) as string"),  // 60
    row<&adapters::ConcatBinaryStringsZEL_2Strings>(
        "ConcatBinaryStringsZEL(a as string, b as string) as string"),                      // 61
    row<&adapters::SQLReplaceBooleanZEL>("SQLReplaceBooleanZEL(SQL as string) as string"),  // 62
    row<&adapters::InStrBytesZEL>(
        "InStrBytesZEL(target as string, find as string) as integer"),  // 63
    row<&adapters::InStrByteRangeZEL_1Range>(
        "InStrByteRangeZEL(target as string, StartValue as integer, "
        "EndValue as integer) as integer"),  // 64
    row<&adapters::InStrByteRangeZEL_2Ranges>(
        "InStrByteRangeZEL(target as string, StartValue as integer, EndValue as integer, "
        "StartValue2 as integer, EndValue2 as integer) as integer"),  // 65
    row<&adapters::InStrByteRangeZEL_3Ranges>(
        "InStrByteRangeZEL(target as string, StartValue as integer, EndValue as integer, "
        "StartValue2 as integer, EndValue2 as integer, StartValue3 as integer, EndValue3 as "
        "integer) as integer"),  // 66
    row<&adapters::InStrByteRangeZEL_Find1Range>(
        "InStrByteRangeZEL(target as string, find as string, StartValue as integer, EndValue as "
        "integer) as integer"),  // 67
    row<&adapters::InStrByteRangeZEL_Find2Ranges>(
        "InStrByteRangeZEL(target as string, find as string, StartValue as integer, EndValue as "
        "integer, StartValue2 as integer, EndValue2 as integer) as integer"),  // 68
    row<&adapters::InStrByteRangeZEL_Find3Ranges>(
        "InStrByteRangeZEL(target as string, find as string, StartValue as integer, EndValue as "
        "integer, StartValue2 as integer, EndValue2 as integer, StartValue3 as integer, EndValue3 "
        "as integer) as integer"),  // 69
    row<&adapters::ConvertUnicodeToCharacterCompositionZEL>(
        "ConvertUnicodeToCharacterCompositionZEL(text as string) as string"),  // 70
    row<&adapters::ConvertUnicodeToCharacterDecompositionZEL>(
        "ConvertUnicodeToCharacterDecompositionZEL(text as string) as string"),  // 71
    row<&adapters::RemoveAccentsZEL>(
        "RemoveAccentsZEL(text as string, IgnoreCase as boolean = false) as string"),  // 72
};

static_assert(std::size(gGlobalMethods) == 72);

// Flag adjustment rewrites these flags in place at start-up too.
REALmethodDefinition gStyledTextMethods[] = {
    {reinterpret_cast<REALproc>(&adapters::RTFDataZEL_Getter),
     reinterpret_cast<REALproc>(&adapters::RTFDataZEL_Setter),
     "RTFDataZEL(SkipParagraphs as boolean = false) as string", flags::kConsoleWebDesktop, 0,
     nullptr},
};

REALclassDefinition gStyledTextExtension = [] {
  REALclassDefinition extension{};
  extension.version = kCurrentREALControlVersion;
  extension.name = "StyledText";
  extension.methods = gStyledTextMethods;
  extension.methodCount = std::size(gStyledTextMethods);
  extension.mFlags = flags::kConsoleWebDesktop;
  return extension;
}();

}  // namespace

PluginDefinitions pluginDefinitions() noexcept {
  return {&gStyledTextExtension, gGlobalMethods, &strings::buildAccentMap};
}

}  // namespace zel
