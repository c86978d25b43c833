#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "strings/entities.h"
#include "text/simd_path.h"
#include "text/utf8.h"

namespace zel::strings {
namespace {

using namespace std::literals;

// The UTF-8 form of a text that the decoder reads back as the same code points, if there is one.
std::optional<std::string> decodableUtf8(std::u32string_view text) {
  const auto lost = [](char32_t c) {
    return c == 0xFEFF || c == 0xFFFE || (c >= 0xD800 && c <= 0xDFFF) || c > 0x10FFFF;
  };
  if (std::ranges::any_of(text, lost)) return std::nullopt;
  return text::encodeUtf8(text);
}

std::optional<std::string> asUtf8(const std::optional<std::u32string_view>& text) {
  return text ? std::optional(text::encodeUtf8(*text)) : std::nullopt;
}

TEST(EntitiesKernel, TablesHoldTheRowsInOrder) {
  struct Row {
    std::size_t index;
    char32_t code;
    std::string_view name;
  };
  for (const Row& r : std::vector<Row>{{0, 34, "quot"},
                                       {2, 39, "apos"},
                                       {4, 62, "gt"},
                                       {5, 160, "nbsp"},
                                       {100, 255, "yuml"},
                                       {101, 338, "OElig"},
                                       {125, 929, "Rho"},
                                       {126, 931, "Sigma"},
                                       {150, 962, "sigmaf"},
                                       {151, 963, "sigma"},
                                       {252, 9830, "diams"}}) {
    EXPECT_EQ(kHtmlEntities[r.index].code, r.code) << r.index;
    EXPECT_EQ(kHtmlEntities[r.index].name, r.name) << r.index;
  }
  for (std::size_t i = 0; i < kXmlEntities.size(); ++i) {
    EXPECT_EQ(kXmlEntities[i].code, kHtmlEntities[i].code);
    EXPECT_EQ(kXmlEntities[i].name, kHtmlEntities[i].name);
  }
}

// The linear searches that the indexes must agree with.
const EntityEntry* linearByCode(char32_t code, bool nonAsciiOnly) {
  bool started = !nonAsciiOnly;
  for (const auto& entry : kHtmlEntities) {
    started = started || entry.code >= 128;
    if (started && entry.code == code) return &entry;
  }
  return nullptr;
}

const EntityEntry* linearByNamePrefix(std::u32string_view name) {
  for (const auto& entry : kHtmlEntities) {
    bool equal = true;
    for (std::size_t k = 0; k < name.size() && equal; ++k) {
      equal = name[k] == (k < entry.name.size() ? char32_t(entry.name[k]) : 0);  // then its NUL
    }
    if (equal) return &entry;
  }
  return nullptr;
}

TEST(EntitiesKernel, CodeIndexAgreesWithLinearSearch) {
  for (char32_t c = 0; c < 0x2800; ++c) {
    for (const bool nonAsciiOnly : {false, true}) {
      ASSERT_EQ(findHtmlEntityByCode(c, nonAsciiOnly), linearByCode(c, nonAsciiOnly))
          << static_cast<std::uint32_t>(c);
    }
  }
  EXPECT_EQ(findHtmlEntityByCode(0x10FFFF, false), nullptr);
}

TEST(EntitiesKernel, NameIndexAgreesWithLinearSearch) {
  std::vector<std::u32string> names{U"\0"s,    U"lt\0"s, U"sup\0"s,   U"sup\0\0"s,     U"lt\0x"s,
                                    U"\u00E9", U"Z",     U"thetasyx", U"lang\0\0\0\0"s};
  for (const auto& entry : kHtmlEntities) {
    for (std::size_t length = 1; length <= entry.name.size(); ++length) {
      std::u32string prefix(entry.name.begin(), entry.name.begin() + length);
      names.push_back(prefix);
      names.push_back(prefix + U'\0');
      names.push_back(prefix + U'q');
      names.push_back(prefix + U"\u0100");
    }
  }
  for (const auto& name : names) {
    if (name.size() > kLongestEntityName) continue;
    ASSERT_EQ(findHtmlEntityByNamePrefix(name), linearByNamePrefix(name)) << name.size();
  }
}

TEST(EntitiesKernel, HtmlEncoder) {
  struct Case {
    std::u32string_view text;
    std::int64_t options;
    std::optional<std::string_view> expected;  // nullopt: the caller's own string
  };
  for (const Case& c :
       std::vector<Case>{{U"Tom & Jerry's <b>", 0, "Tom &amp; Jerry&#39;s &lt;b&gt;"},
                         {U"Tom & Jerry's <b>", 1, "Tom & Jerry's <b>"},
                         {U"Tom & Jerry's <b>", 2, "Tom &amp; Jerry&#39;s &lt;b&gt;"},
                         {U"\"", 0, "&quot;"},
                         {U"\u00E9", 0, "&eacute;"},
                         {U"\u00E9", 1, "&eacute;"},
                         {U"\u00A0\u03C3\u03C2\u2666", 0, "&nbsp;&sigma;&sigmaf;&diams;"},
                         {U"\u4E2D", 0, "&#20013;"},
                         {U"\U0001F600\u0080", 0, "&#128512;&#128;"},
                         {U"\xFFFFFFFF\x80000000", 0, "&#-1;&#-2147483648;"},
                         {U"plain text", 0, std::nullopt},
                         {U"abc\f", 0, std::nullopt},  // controls alone do not force the pass
                         {U"a<\f", 0, "a&lt;"},        // ... but the pass drops them
                         {U"\t\n\r\x01\x1F\x7F<", 0, "\t\n\r\x7F&lt;"},
                         {U"ab\0<"sv, 0, std::nullopt},  // the quick test stops at NUL
                         {U"<\0x"sv, 0, "&lt;x"},
                         {U"\uFEFFa<", 0, "a&lt;"},
                         {U"\uFEFFabc", 0, "abc"},
                         {U"\uFFFE\uFEFF", 0, "&#65279;"},
                         {U"\uFEFF", 0, ""},  // nil
                         {U"", 0, ""}}) {
    EXPECT_EQ(encodeHtmlEntities(c.text, c.options), c.expected) << c.text.size();
    if (const auto utf8 = decodableUtf8(c.text)) {
      EXPECT_EQ(encodeHtmlEntities(std::string_view(*utf8), c.options), c.expected) << *utf8;
    }
  }
}

TEST(EntitiesKernel, XmlEncoder) {
  struct Case {
    std::u32string_view text;
    std::int64_t options;
    std::optional<std::u32string_view> expected;
  };
  for (const Case& c : std::vector<Case>{{U"'", 0, U"&#39;"},
                                         {U"'", 1, U"&apos;"},
                                         {U"\"&<>", 0, U"&quot;&amp;&lt;&gt;"},
                                         {U"\u00E9", 0, std::nullopt},
                                         {U"\u00E9<", 1, U"\u00E9&lt;"},
                                         {U"abc\f", 0, std::nullopt},
                                         {U"a<\f\t", 0, U"a&lt;\t"},
                                         {U"ab\0<"sv, 0, std::nullopt},
                                         {U"\uFEFF<", 0, U"&lt;"},
                                         {U"\uFEFFabc", 0, std::nullopt},
                                         {U"", 0, U""}}) {
    EXPECT_EQ(encodeXmlEntities(c.text, c.options), c.expected) << c.text.size();
    if (const auto utf8 = decodableUtf8(c.text)) {
      EXPECT_EQ(encodeXmlEntities(std::string_view(*utf8), c.options), asUtf8(c.expected)) << *utf8;
    }
  }
}

// What only UTF-8 input has: decoding ends at a malformed sequence and drops byte order marks.
TEST(EntitiesKernel, Utf8EncodersReadTheTextAsTheDecoderDoes) {
  struct Case {
    std::string_view utf8;
    std::optional<std::string_view> html, xml;
  };
  for (const Case& c :
       std::vector<Case>{{"a<\xFF<", "a&lt;", "a&lt;"},
                         {"\xFF<", "", ""},  // nil: nothing decoded
                         {"\xC3\xA9\xC3<", "&eacute;", std::nullopt},
                         {"a\xEF\xBB\xBF<", "a&lt;", "a&lt;"},
                         {"abc\xEF\xBB\xBF", std::nullopt, std::nullopt},
                         {"\xEF\xBB\xBF\xEF\xBF\xBE", "", ""},
                         {"\xC3\xA9\xEF\xBF\xBE<\xEF\xBF\xBD", "&eacute;&lt;&#65533;",
                          "\xC3\xA9&lt;\xEF\xBF\xBD"},
                         {"ab\0<\xC3\xA9"sv, std::nullopt, std::nullopt},
                         {"x\xF0\x9F\x98\x80'\x01", "x&#128512;&#39;", "x\xF0\x9F\x98\x80&#39;"}}) {
    EXPECT_EQ(encodeHtmlEntities(c.utf8, 0), c.html) << c.utf8;
    EXPECT_EQ(encodeXmlEntities(c.utf8, 0), c.xml) << c.utf8;
  }
}

// Random texts of markup, controls, entity characters, byte order marks and now and then a NUL
// or a malformed sequence, on every vector path, against the code point encoders.
TEST(EntitiesKernel, Utf8EncodersAgreeWithTheCodePointEncodersOnEveryPath) {
  constexpr std::string_view kCommon[] = {"a",
                                          "plain text that spans more than one vector block ",
                                          "\"",
                                          "&",
                                          "'",
                                          "<",
                                          ">",
                                          "\t",
                                          "\n",
                                          "\r",
                                          "\x01",
                                          "\x1F",
                                          "\x7F",
                                          "\xC2\xA0",
                                          "\xC3\xA9",
                                          "\xCF\x82",
                                          "\xE2\x99\xA6",
                                          "\xE4\xB8\xAD",
                                          "\xEF\xBB\xBF",
                                          "\xEF\xBF\xBE",
                                          "\xEF\xBF\xBD",
                                          "\xF0\x9F\x98\x80"};
  constexpr std::string_view kRare[] = {"\0"sv, "\x80", "\xC3", "\xED\xA0\x80", "\xF5\x80\x80\x80"};
  constexpr int kRareOneIn = 60;
  for (const text::SimdPath path : text::supportedSimdPaths()) {
    text::forceSimdPath(path);
    std::mt19937 random(11);
    for (int sample = 0; sample < 3000; ++sample) {
      std::string utf8;
      for (std::size_t length = random() % 300; utf8.size() < length;) {
        utf8 += random() % kRareOneIn == 0 ? kRare[random() % std::size(kRare)]
                                           : kCommon[random() % std::size(kCommon)];
      }
      std::vector<char32_t> decoded(utf8.size() + 1);
      const auto units = text::decodeUtf8(
          std::span(reinterpret_cast<const std::uint8_t*>(utf8.data()), utf8.size()),
          decoded.data());
      const std::u32string_view codePoints(decoded.data(), units.units);
      for (const std::int64_t options : {0, 1}) {
        ASSERT_EQ(encodeHtmlEntities(std::string_view(utf8), options),
                  encodeHtmlEntities(codePoints, options))
            << text::simdPathName(path) << ' ' << sample;
        const auto xml = encodeXmlEntities(codePoints, options);
        ASSERT_EQ(encodeXmlEntities(std::string_view(utf8), options),
                  asUtf8(xml ? std::optional<std::u32string_view>(*xml) : std::nullopt))
            << text::simdPathName(path) << ' ' << sample;
      }
    }
  }
  text::forceSimdPath(text::supportedSimdPaths().back());
}

TEST(EntitiesKernel, DecoderPrefixMatchAndNumericReferences) {
  struct Case {
    std::u32string_view text, expected;
  };
  for (const Case& c :
       std::vector<Case>{{U"&amp;lt;", U"&lt;"},
                         {U"&eacute;&Alpha;&alpha;&thetasym;", U"\u00E9\u0391\u03B1\u03D1"},
                         {U"&sigma;", U"\u03C2"},  // "sigmaf" comes first
                         {U"&sup;", U"\u00B2"},    // "sup2"
                         {U"&or;", U"\u00AA"},     // "ordf"
                         {U"&l;&a;", U"<&"},
                         {U"a&amp", U"a&"},  // ";" may be missing at the end
                         {U"&amp x;", U"&amp x;"},
                         {U"&nosuch;&verylongname;&;&", U"&nosuch;&verylongname;&;&"},
                         {U"&&amp;", U"&&"},
                         {U"&\u00E9;", U"&\u00E9;"},
                         {U"&lt\0;x"sv, U"<x"},  // a NUL where the name ends
                         {U"&sup\0;"sv, U"\u2283"},
                         {U"&lt\0x;"sv, U"&lt\0x;"sv},
                         {U"&#65;&#x41;&#65zz;", U"AAA"},
                         {U"&#X41;&#x;&#;", U"&#X41;&#x;&#;"},
                         {U"&#0;&#-65;&#6-5;&#x-41;", U"&#0;&#-65;&#6-5;&#x-41;"},
                         {U"&#9999999;", U"\x0098967F"},    // 8 characters, no range check
                         {U"&#10000000;", U"&#10000000;"},  // 9 characters
                         {U"&#x10FFFF;&#x110000;", U"\U0010FFFF\x00110000"},
                         {U"&#x1000000;", U"&#x1000000;"},
                         {U"&#\u0136\u0135;", U"A"},  // decimal digits by their low 8 bits
                         {U"&#x\x00010041;", U"\n"},  // hex digits by their low 16 bits
                         {U"\uFEFF&lt;", U"<"},
                         {U"\uFEFF", U""},
                         {U"", U""}}) {
    EXPECT_EQ(decodeEntities(c.text), c.expected) << c.text.size();
  }
}

TEST(EntitiesKernel, MarkupReadiness) {
  EXPECT_TRUE(isMarkupReady(""));
  EXPECT_TRUE(isMarkupReady("a\tb\x01\x7F plain text of more than eight bytes"));
  for (const char c : "\"&'<>\xC3") {  // and the terminating NUL
    EXPECT_FALSE(isMarkupReady(std::string("more than eight bytes ") + c)) << int(c);
    EXPECT_FALSE(isMarkupReady(std::string(1, c)));
  }
}

}  // namespace
}  // namespace zel::strings
