// What the built library registers on each kind of host.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "stand_in_host.h"
#include "support/plugin_fixture.h"

namespace {

using Kind = zelhost::RegisteredMember::Kind;
using ::testing::ElementsAreArray;

const std::vector<std::string> kGlobalDeclarations = {
    "ReplaceLineEndingsZEL(Text as String, NewLine as String, yield as boolean = false) as String",
    "HasPrefixZEL(Text as String, Prefix as String) as boolean",
    "HasPostfixZEL(Text as String, Prefix as String) as boolean",
    "ContainsWholeWordZEL(Text as String, Word as String) as boolean",
    "GetStringsFromDataZEL(data as ptr, size as Integer, MinLength as Integer = 0) as string()",
    "GetStringsFromDataZEL(data as MemoryBlock, MinLength as Integer = 0) as string()",
    "GetStringsFromDataZEL(data as String, MinLength as Integer = 0) as string()",
    "CheckUTF8ZEL(data as ptr, size as Integer, Placeholder as string) as string",
    "CheckUTF8ZEL(mem as MemoryBlock, Placeholder as string) as string",
    "CheckUTF8ZEL(data as string, Placeholder as string) as string",
    "EncodeEmailSubjectZEL(s as string) as string",
    "_yDecodeMemoryZEL(data as memoryblock) as memoryblock",
    "_yDecodeStringZEL(data as string) as string",
    "JaroWinklerDistanceZEL(a as string, b as string) as double",
    "LevenshteinDistanceZEL(a as string, b as string) as double",
    "ScientificStrZEL(d as double, digits as integer) as string",
    "StrZEL(d as double) as string",
    "RandomBytesStringZEL(Length as integer, ASCII as boolean=false) as string",
    "CreateStringZEL(Length as integer, Content as String) as string",
    "StrCompBytesZEL(a as string, b as string) as integer",
    "StrCompCharactersZEL(a as string, b as string) as integer",
    "CountOccurancesZEL(s as string, find as string) as integer",
    "ClearStringContentZEL(s as String) as Boolean",
    "DetectUnicodeMarkersZEL(s as string) as integer",
    "GetUnicodeMarkersZEL(kind as integer) as string",
    "StringIsHTMLreadyZEL(s as string) as boolean",
    "StringIsXMLreadyZEL(s as string) as boolean",
    "StringANDZEL(a as string,b as string) as string",
    "StringORZEL(a as string,b as string) as string",
    "StringXORZEL(data as string, XorMask as string, MaskOffset as integer = 0) as string",
    "StringXOR2ZEL(data as string, XorMask as string, MaskOffset as integer = 0) as string",
    "UnicodeStringZEL(s as string) as string",
    "NativeStringZEL(s as string) as string",
    "DecodingFromMySQLZEL(s as string) as string",
    "EncodingToHTMLZEL(s as string, options as integer = 0) as string",
    "DecodingFromHTMLZEL(s as string) as string",
    "EncodingToXMLZEL(s as string, options as integer = 0) as string",
    "DecodingFromXMLZEL(s as string) as string",
    "EncodingToURLZEL(s as string) as string",
    "EncodingToURLZEL(s as string, options as integer) as string",
    "DecodingFromURLZEL(s as string) as string",
    "DecodingFromURLZEL(s as string, options as integer) as string",
    "EncodingToQuotedPrintableZEL(s as string, LineLen as integer = 72) as string",
    "DecodingFromQuotedPrintableZEL(s as string) as string",
    "HexstringZEL(input as string, hexlen as integer, linelen as integer, linestart as string, "
    "lineend as string, spacer as string,filler as string) as string",
    "EncodingToISO8859ZEL(s as string) as string",
    "DecodingFromISO8859ZEL(s as string) as string",
    "EncodingToCP1252ZEL(s as string) as string",
    "DecodingFromCP1252ZEL(s as string) as string",
    "EncodingToHexZEL(s as string) as string",
    "DecodingFromHexZEL(s as string) as string",
    "ReplaceNonPrintableCharactersZEL(s as string, replacevalue as integer=46) as string",
    "IsASCIIStringZEL(s as string) as boolean",
    "IsASCIIStringZEL(s as string, mode as integer) as boolean",
    "RemoveHTMLTagsZEL(AsciiTextWithTags as string) as string",
    "RemoveHTMLTagsWithZEL(AsciiTextWithTags as string, Replacement as string) as string",
    "ConcatBinaryStringsZEL(a as string, b as string, c as string, d as string, e as string, f as "
    "string) as string",
    "ConcatBinaryStringsZEL(a as string, b as string, c as string, d as string, e as string) as "
    "string",
    "ConcatBinaryStringsZEL(a as string, b as string, c as string, d as string) as string",
    "ConcatBinaryStringsZEL(a as string, b as string, c as string) as string",
    "ConcatBinaryStringsZEL(a as string, b as string) as string",
    "SQLReplaceBooleanZEL(SQL as string) as string",
    "InStrBytesZEL(target as string, find as string) as integer",
    "InStrByteRangeZEL(target as string, StartValue as integer, EndValue as integer) as integer",
    "InStrByteRangeZEL(target as string, StartValue as integer, EndValue as integer, StartValue2 "
    "as integer, EndValue2 as integer) as integer",
    "InStrByteRangeZEL(target as string, StartValue as integer, EndValue as integer, StartValue2 "
    "as integer, EndValue2 as integer, StartValue3 as integer, EndValue3 as integer) as integer",
    "InStrByteRangeZEL(target as string, find as string, StartValue as integer, EndValue as "
    "integer) as integer",
    "InStrByteRangeZEL(target as string, find as string, StartValue as integer, EndValue as "
    "integer, StartValue2 as integer, EndValue2 as integer) as integer",
    "InStrByteRangeZEL(target as string, find as string, StartValue as integer, EndValue as "
    "integer, StartValue2 as integer, EndValue2 as integer, StartValue3 as integer, EndValue3 as "
    "integer) as integer",
    "ConvertUnicodeToCharacterCompositionZEL(text as string) as string",
    "ConvertUnicodeToCharacterDecompositionZEL(text as string) as string",
    "RemoveAccentsZEL(text as string, IgnoreCase as boolean = false) as string",
};

constexpr const char* kRtfDeclaration = "RTFDataZEL(SkipParagraphs as boolean = false) as string";
constexpr const char* kRtfGetter =
    "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false) as string";
constexpr const char* kRtfSetter =
    "RTFDataZEL(extends ref as StyledText, SkipParagraphs as boolean = false, assigns value as "
    "string)";

std::vector<std::string> declarationsOf(const zelhost::Registration& registration, Kind kind) {
  std::vector<std::string> out;
  for (const auto& member : registration.members)
    if (member.kind == kind) out.push_back(member.declaration);
  return out;
}

std::vector<std::uint32_t> flagsOf(const zelhost::Registration& registration, Kind kind) {
  std::vector<std::uint32_t> out;
  for (const auto& member : registration.members)
    if (member.kind == kind) out.push_back(member.flags);
  return out;
}

TEST(Registration, ModuleHostsGetEverythingInOneModule) {
  const struct {
    double version;
    std::uint32_t rtfFlags;
  } cases[] = {{2013.0, 0x14}, {2019.0, 0x14}, {2020.02, 0x318}, {2025.03, 0x318}, {2999.0, 0x318}};
  for (const auto& c : cases) {
    zelhost::configure({.version = c.version});
    const auto& registration = zelhost::loadPlugin(ZEL_PLUGIN_PATH);
    EXPECT_TRUE(registration.classExtensions.empty());
    EXPECT_TRUE(declarationsOf(registration, Kind::Method).empty());
    EXPECT_THAT(registration.modules, ElementsAreArray({"StringGlobalsZEL"}));

    std::vector<std::string> expected = {kRtfGetter, kRtfSetter};
    expected.insert(expected.end(), kGlobalDeclarations.begin(), kGlobalDeclarations.end());
    EXPECT_THAT(declarationsOf(registration, Kind::ModuleMethod), ElementsAreArray(expected))
        << c.version;
    std::vector<std::uint32_t> flags(74, 0x14);
    flags[0] = flags[1] = c.rtfFlags;
    EXPECT_THAT(flagsOf(registration, Kind::ModuleMethod), ElementsAreArray(flags)) << c.version;
    EXPECT_THAT(declarationsOf(registration, Kind::ModuleProperty),
                ElementsAreArray({"Debugging as Boolean"}));
    EXPECT_THAT(flagsOf(registration, Kind::ModuleProperty), ElementsAreArray({0x26u}));
  }
}

TEST(Registration, OtherHostsGetTheClassExtensionAndLooseMethods) {
  const struct {
    double version;
    std::uint32_t rtfFlags;
  } cases[] = {{2012.5, 4}, {3000.0, 0x308}};
  for (const auto& c : cases) {
    zelhost::configure({.version = c.version});
    const auto& registration = zelhost::loadPlugin(ZEL_PLUGIN_PATH);
    EXPECT_TRUE(registration.modules.empty()) << c.version;
    EXPECT_THAT(registration.classExtensions, ElementsAreArray({"StyledText"}));
    EXPECT_THAT(declarationsOf(registration, Kind::ClassExtensionMethod),
                ElementsAreArray({kRtfDeclaration}));
    EXPECT_THAT(flagsOf(registration, Kind::ClassExtensionMethod), ElementsAreArray({c.rtfFlags}));
    EXPECT_THAT(declarationsOf(registration, Kind::Method), ElementsAreArray(kGlobalDeclarations));
    EXPECT_THAT(flagsOf(registration, Kind::Method),
                ElementsAreArray(std::vector<std::uint32_t>(72, 4)));
  }
}

TEST(Registration, DebuggingPropertySwitchesTheLog) {
  zelhost::configure({.version = 2019.0});
  const auto& registration = zelhost::loadPlugin(ZEL_PLUGIN_PATH);
  const zelhost::RegisteredMember* debugging = nullptr;
  for (const auto& member : registration.members)
    if (member.kind == Kind::ModuleProperty) debugging = &member;
  ASSERT_NE(debugging, nullptr);
  const auto get = reinterpret_cast<RBBoolean (*)()>(debugging->function);
  const auto set = reinterpret_cast<void (*)(RBBoolean)>(debugging->setter);

  zelhost::captureLog(true);
  set(0);
  EXPECT_EQ(get(), 0);
  EXPECT_TRUE(zelhost::capturedLog().empty());
  set(7);
  EXPECT_EQ(get(), 1);
  EXPECT_THAT(zelhost::capturedLog(), ElementsAreArray({"ZEL Debug: ZEL debug logging enabled."}));
  set(0);
  zelhost::captureLog(false);
}

}  // namespace
