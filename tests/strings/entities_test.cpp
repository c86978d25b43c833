// HTML and XML escaping, entity decoding and the readiness test through the built plug-in.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>

#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

// GCC 12 from -O2 on claims the strings in these tables of cases may be used uninitialized: a
// false positive on arrays of aggregates that hold std::string.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

namespace {

using namespace zeltest;
namespace enc = encoding;

constexpr const char* kToHtml = "EncodingToHTMLZEL(s as string, options as integer = 0) as string";
constexpr const char* kToXml = "EncodingToXMLZEL(s as string, options as integer = 0) as string";
constexpr const char* kFromHtml = "DecodingFromHTMLZEL(s as string) as string";
constexpr const char* kFromXml = "DecodingFromXMLZEL(s as string) as string";
constexpr const char* kHtmlReady = "StringIsHTMLreadyZEL(s as string) as boolean";
constexpr const char* kXmlReady = "StringIsXMLreadyZEL(s as string) as boolean";

REALstring callText(const char* declaration, REALstring s, RBInteger options) {
  const bool encoder = declaration == kToHtml || declaration == kToXml;
  return encoder ? zelhost::call<REALstring>(declaration, s, options)
                 : zelhost::call<REALstring>(declaration, s);
}

class EntitiesTest : public PluginFixture {};

TEST_F(EntitiesTest, HtmlComesBackAsciiAndXmlAndDecodedTextAsUtf8) {
  struct Case {
    const char* declaration;
    Text input;
    std::optional<std::string> expected;  // nullopt: the nil string
    RBInteger options = 0;
  };
  const Case cases[] = {
      {kToHtml, {"Tom & Jerry's <b>"}, "Tom &amp; Jerry&#39;s &lt;b&gt;"},
      {kToHtml, utf16(u"\u00E9\u4E2D"), "&eacute;&#20013;"},
      {kToHtml, {"caf\xE9", enc::kNone}, "caf&eacute;"},
      {kToHtml, utf16(u"\uFEFF"), std::nullopt},
      {kToHtml, {""}, std::nullopt},
      {kToHtml, kNil, std::nullopt},
      {kToXml, {"'"}, "&apos;", 1},
      {kToXml, utf16(u"\u00E9<"), "\u00E9&lt;"},
      {kToXml, {"\uFEFF\"\u00E9\""}, "&quot;\u00E9&quot;"},
      {kToXml, {""}, std::nullopt},
      {kToXml, kNil, std::nullopt},
      {kFromHtml, utf16(u"&hearts;&sigma;"), "\u2665\u03C2"},
      {kFromHtml, {"&#128512;"}, "\U0001F600"},
      {kFromHtml, utf16(u"\uFEFF"), std::nullopt},
      {kFromHtml, {""}, std::nullopt},
      {kFromHtml, kNil, std::nullopt},
      {kFromXml, {"&eacute;&nosuch;"}, "\u00E9&nosuch;"},
      {kFromXml, kNil, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.declaration << " " << testing::PrintToString(c.input.bytes)
                                    << " options " << c.options);
    const HostString argument(makeArgument(c.input));
    const REALstring result = callText(c.declaration, argument.get(), c.options);
    if (c.expected) {
      EXPECT_NE(result, argument.get());
    }
    expectString(result, c.expected, c.declaration == kToHtml ? enc::kASCII : enc::kUTF8);
  }
}

TEST_F(EntitiesTest, EncodersHandBackTheCallersOwnStringWhenNothingNeedsEscaping) {
  struct Case {
    const char* declaration;
    Text input;
    RBInteger options = 0;
  };
  const Case cases[] = {
      {kToHtml, {"plain text"}},  {kToHtml, {"abc\f"}},      {kToHtml, {std::string("ab\0<", 4)}},
      {kToHtml, utf16(u"plain")}, {kToXml, {"caf\u00E9\f"}}, {kToXml, {"plain"}, 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << c.declaration << " " << testing::PrintToString(c.input.bytes));
    const HostString argument(makeArgument(c.input));
    expectOwnString(zelhost::call<REALstring>(c.declaration, argument.get(), c.options), argument);
  }
}

TEST_F(EntitiesTest, ReadinessLooksAtTheStoredBytesOfByteEncodingsOnly) {
  struct Case {
    Text input;
    bool ready;
  };
  const Case cases[] = {
      {kNil, true},
      {{""}, true},
      {{"a\tb"}, true},
      {{"ab", enc::kMacRoman}, true},
      {{"ab", enc::kWindowsLatin1}, true},
      {{"ab", enc::kASCII}, true},
      {{"caf\u00E9"}, false},
      {{"a<b"}, false},
      {{"it's"}, false},
      {{std::string("a\0b", 3)}, false},
      {{"ab", enc::kISOLatin1}, false},
      {{"ab", enc::kNone}, false},
      {utf16(u"ab"), false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << testing::PrintToString(c.input.bytes) << " in " << c.input.encoding);
    const HostString argument(makeArgument(c.input));
    for (const char* declaration : {kHtmlReady, kXmlReady}) {
      EXPECT_EQ(zelhost::call<RBBoolean>(declaration, argument.get()) != 0, c.ready) << declaration;
    }
  }
}

}  // namespace
