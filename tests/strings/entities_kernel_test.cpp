#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "strings/entities.h"

namespace zel::strings {
namespace {

using namespace std::literals;

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
  }
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
