#include "oom/oom_rows.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <regex>
#include <string_view>

#include "dynamic_call.h"
#include "stand_in_host.h"
#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace zeltest::oom {
namespace {

using nlohmann::json;
using zelhost::hexOf;

// ---- what each family documents ------------------------------------------------------------

const std::string kBadAlloc = "Failed to allocate memory: std::bad_alloc";
// Fields in order: quiet, messages, empty text, any result when raised, text dropped.
const OnFailure kQuiet{true, {}, false, false, false};
const OnFailure kQuietText{true, {}, true, false, false};
const OnFailure kTranslated{false, {kBadAlloc}, false, false, false};
const OnFailure kTranslatedText{false, {kBadAlloc}, true, false, false};
const OnFailure kLineEndings{false, {"std::bad_alloc"}, true, false, false};
const OnFailure kCreateString{false, {"Failed to allocate memory\\."}, false, false, false};
const OnFailure kCounted{
    false, {"Failed to allocate -?[0-9]+ bytes of memory\\."}, true, false, false};
const OnFailure kComposition{
    false, {kBadAlloc, "Failed to allocate lookup table\\."}, true, false, false};
const OnFailure kMemoryBlock{
    true, {"Failed to allocate a memoryblock with [0-9]+ bytes in size\\."}, false, false, false};
const OnFailure kStyledTextRead{false, {kBadAlloc}, false, false, true};
const OnFailure kStyledTextWrite{false, {kBadAlloc}, false, true, false};

// ---- inputs --------------------------------------------------------------------------------

std::string repeated(std::string_view piece, std::size_t times) {
  std::string text;
  for (std::size_t i = 0; i < times; ++i) text += piece;
  return text;
}

// A text argument: its bytes, and how zelhost's ARG forms tag them.
struct Input {
  std::string label;
  std::string bytes;
  std::string form;  // "text:", "hex:" or "hex/ENC:"
  std::string arg() const { return form == "text:" ? form + bytes : form + hexOf(bytes); }
};

const std::string kShortAscii = "Hello, <b>World</b> & \"friends\"\r\nline two\t'x' %41=3D";
const std::string kShortUtf8 =
    "Gr\xC3\xBC\xC3\x9F"
    "e \xE2\x80\x93 caf\xC3\xA9 \xF0\x9F\x98\x80 <i>&eacute;</i>";
constexpr char kRawBytes[] = "\x00\x01\x7F\x80\xFF=ybegin \xC3(\x0D\x0A";
// Long enough to outgrow every fixed reservation and small-buffer path of the plug-in.
constexpr std::size_t kLongRepeats = 120;

constexpr std::size_t kUtf16Input = 4;

std::vector<Input> textInputs() {
  return {
      {"ascii", kShortAscii, "text:"},
      {"ascii_long", repeated(kShortAscii + " ", kLongRepeats), "text:"},
      {"utf8", kShortUtf8, "text:"},
      {"utf8_long", repeated(kShortUtf8 + "\n", kLongRepeats), "text:"},
      {"utf16", utf16Bytes(u"Gr\u00FC\u00DFe \u2013 caf\u00E9 \U0001F600 <i>&amp;</i>\r\n"),
       "hex/0x100:"},
      {"latin1",
       "Gr\xFC\xDF"
       "e caf\xE9 <b>&lt;</b>",
       "hex/0x201:"},
      {"bytes", std::string(kRawBytes, sizeof kRawBytes - 1), "hex:"},
  };
}

// Encoded text for the decoders, next to the plain inputs.
std::vector<Input> encodedInputs(std::string_view encoded, std::string_view encodedLong) {
  std::vector<Input> inputs = textInputs();
  inputs.push_back({"encoded", std::string(encoded), "text:"});
  inputs.push_back({"encoded_long", repeated(encodedLong, kLongRepeats), "text:"});
  return inputs;
}

// ---- the table -----------------------------------------------------------------------------

// In `args`, "$T" is the row's text input, "$M" a MemoryBlock of its bytes, "$P" and "$N" a Ptr
// to them and their count.
struct FunctionCase {
  std::string label;
  std::string function;
  std::vector<std::string> args;
  OnFailure onFailure;
  std::vector<Input> inputs = textInputs();
  bool randomResult = false;
};

std::vector<FunctionCase> functionCases() {
  const std::vector<Input> urlEncoded = encodedInputs("a%20b+%C3%A9%zz%", "%41%e2%80%93+x%2");
  const std::vector<Input> qpEncoded =
      encodedInputs("caf=C3=A9 =\r\nsoft=3D=ZZ", "=E2=80=93 ab=\r\n");
  const std::vector<Input> entityEncoded =
      encodedInputs("&lt;&#233;&#x1F600;&eacute;&bogus;&amp", "&amp;&quot;&#8211;&nbsp;x");
  const std::vector<Input> hexEncoded = encodedInputs("48656C6c6F7g", "00ff7F80c3A9");
  const std::vector<Input> yEncoded = encodedInputs("r\x8F\x96\x96\x99=}=J", "\x2A\x2B=@=n");
  const std::vector<Input> mysqlEscaped = encodedInputs("a\\'b\\\\c\\0\\n\\Z", "x\\\"\\r\\t");
  const std::vector<Input> rtfLike = encodedInputs("{\\rtf1 a}", "<p>text</p>");
  return {
      // Text search, comparison and line endings.
      {"ReplaceLineEndings",
       "ReplaceLineEndingsZEL",
       {"$T", "hex/0x08000100:0d0a", "false"},
       kLineEndings},
      {"HasPrefix", "HasPrefixZEL", {"$T", "text:Hel"}, kTranslatedText},
      {"HasPostfix", "HasPostfixZEL", {"$T", "text:ne two"}, kTranslatedText},
      {"ContainsWholeWord", "ContainsWholeWordZEL", {"$T", "text:World"}, kTranslatedText},
      {"GetStringsFromData_Ptr", "GetStringsFromDataZEL", {"$P", "$N", "3"}, kTranslated},
      {"GetStringsFromData_MemoryBlock", "GetStringsFromDataZEL", {"$M", "3"}, kTranslated},
      {"GetStringsFromData_String", "GetStringsFromDataZEL", {"$T", "0"}, kTranslated},
      {"CheckUTF8_Ptr", "CheckUTF8ZEL", {"$P", "$N", "text:\xE2\x80\xA2"}, kTranslatedText},
      {"CheckUTF8_MemoryBlock", "CheckUTF8ZEL", {"$M", "text:?"}, kTranslatedText},
      {"CheckUTF8_String", "CheckUTF8ZEL", {"$T", "hex/0x201:bf"}, kTranslatedText},
      {"StrCompCharacters",
       "StrCompCharactersZEL",
       {"$T",
        "text:Gr\xC3\xBC\xC3\x9F"
        "e"},
       kTranslatedText},
      {"CountOccurances", "CountOccurancesZEL", {"$T", "text:e"}, kTranslatedText},
      // Transfer encodings.
      {"EncodeEmailSubject", "EncodeEmailSubjectZEL", {"$T"}, kQuietText},
      {"EncodingToURL", "EncodingToURLZEL", {"$T"}, kQuietText},
      {"EncodingToURL_Options", "EncodingToURLZEL", {"$T", "3"}, kQuietText},
      {"DecodingFromURL", "DecodingFromURLZEL", {"$T"}, kQuietText, urlEncoded},
      {"DecodingFromURL_Options", "DecodingFromURLZEL", {"$T", "1"}, kQuietText, urlEncoded},
      {"EncodingToQuotedPrintable", "EncodingToQuotedPrintableZEL", {"$T", "20"}, kQuietText},
      {"DecodingFromQuotedPrintable",
       "DecodingFromQuotedPrintableZEL",
       {"$T"},
       kQuietText,
       qpEncoded},
      {"EncodingToHex", "EncodingToHexZEL", {"$T"}, kQuietText},
      {"DecodingFromHex", "DecodingFromHexZEL", {"$T"}, kQuietText, hexEncoded},
      // Single-byte code pages.
      {"EncodingToISO8859", "EncodingToISO8859ZEL", {"$T"}, kQuietText},
      {"DecodingFromISO8859", "DecodingFromISO8859ZEL", {"$T"}, kQuietText},
      {"EncodingToCP1252", "EncodingToCP1252ZEL", {"$T"}, kQuietText},
      {"DecodingFromCP1252", "DecodingFromCP1252ZEL", {"$T"}, kQuietText},
      // Number formatting and string distance.
      {"JaroWinklerDistance",
       "JaroWinklerDistanceZEL",
       {"$T", "text:Hello W\xC3\xB6rld"},
       kCounted},
      {"LevenshteinDistance",
       "LevenshteinDistanceZEL",
       {"$T", "text:Hello W\xC3\xB6rld"},
       kCounted},
      {"ScientificStr", "ScientificStrZEL", {"-1234.56789e300", "40"}, kCounted, {}},
      {"Str", "StrZEL", {"0.001234"}, kCounted, {}},
      // Byte-string operations.
      {"RandomBytesString", "RandomBytesStringZEL", {"300", "false"}, kQuiet, {}, true},
      {"RandomBytesString_ASCII", "RandomBytesStringZEL", {"300", "true"}, kQuiet, {}, true},
      {"CreateString", "CreateStringZEL", {"700", "$T"}, kCreateString},
      {"StrCompBytes", "StrCompBytesZEL", {"$T", "text:Hello"}, kQuiet},
      {"ClearStringContent", "ClearStringContentZEL", {"$T"}, kQuiet},
      {"DetectUnicodeMarkers", "DetectUnicodeMarkersZEL", {"$T"}, kQuiet},
      {"GetUnicodeMarkers_UTF8", "GetUnicodeMarkersZEL", {"1"}, kQuiet, {}},
      {"GetUnicodeMarkers_UTF32", "GetUnicodeMarkersZEL", {"7"}, kQuiet, {}},
      {"StringAND", "StringANDZEL", {"$T", "hex:f0f00f"}, kQuiet},
      {"StringOR", "StringORZEL", {"$T", "hex:0102"}, kQuiet},
      {"StringXOR", "StringXORZEL", {"$T", "hex:5a3c99", "1"}, kQuiet},
      {"StringXOR2", "StringXOR2ZEL", {"$T", "hex:a5", "0"}, kQuiet},
      {"UnicodeString", "UnicodeStringZEL", {"$T"}, kQuiet},
      {"NativeString", "NativeStringZEL", {"$T"}, kQuiet},
      {"ReplaceNonPrintableCharacters", "ReplaceNonPrintableCharactersZEL", {"$T", "95"}, kQuiet},
      {"IsASCIIString", "IsASCIIStringZEL", {"$T"}, kQuiet},
      {"IsASCIIString_Mode", "IsASCIIStringZEL", {"$T", "2"}, kQuiet},
      {"ConcatBinaryStrings_6",
       "ConcatBinaryStringsZEL",
       {"$T", "text:b", "nil", "hex/0x100:4100", "$T", "text:\xC3\xA9"},
       kQuiet},
      {"ConcatBinaryStrings_5",
       "ConcatBinaryStringsZEL",
       {"$T", "text:b", "nil", "text:d", "$T"},
       kQuiet},
      {"ConcatBinaryStrings_4",
       "ConcatBinaryStringsZEL",
       {"text:a", "$T", "text:c", "nil"},
       kQuiet},
      {"ConcatBinaryStrings_3", "ConcatBinaryStringsZEL", {"$T", "$T", "text:c"}, kQuiet},
      {"ConcatBinaryStrings_2", "ConcatBinaryStringsZEL", {"$T", "hex:00ff"}, kQuiet},
      {"InStrBytes", "InStrBytesZEL", {"$T", "text:WXYZ<"}, kQuiet},
      {"InStrByteRange_1", "InStrByteRangeZEL", {"$T", "128", "255"}, kQuiet},
      {"InStrByteRange_2", "InStrByteRangeZEL", {"$T", "0", "9", "60", "62"}, kQuiet},
      {"InStrByteRange_3", "InStrByteRangeZEL", {"$T", "0", "9", "200", "255", "38", "38"}, kQuiet},
      {"InStrByteRange_Find1", "InStrByteRangeZEL", {"$T", "text:<>", "128", "255"}, kQuiet},
      {"InStrByteRange_Find2",
       "InStrByteRangeZEL",
       {"$T", "text:&", "0", "9", "200", "255"},
       kQuiet},
      {"InStrByteRange_Find3",
       "InStrByteRangeZEL",
       {"$T", "hex:22", "0", "9", "200", "255", "1", "2"},
       kQuiet},
      // HTML and XML entities.
      {"StringIsHTMLready", "StringIsHTMLreadyZEL", {"$T"}, kTranslatedText},
      {"StringIsXMLready", "StringIsXMLreadyZEL", {"$T"}, kTranslatedText},
      {"EncodingToHTML", "EncodingToHTMLZEL", {"$T", "0"}, kTranslatedText},
      {"EncodingToHTML_Options", "EncodingToHTMLZEL", {"$T", "3"}, kTranslatedText},
      {"DecodingFromHTML", "DecodingFromHTMLZEL", {"$T"}, kTranslatedText, entityEncoded},
      {"EncodingToXML", "EncodingToXMLZEL", {"$T", "1"}, kTranslatedText},
      {"DecodingFromXML", "DecodingFromXMLZEL", {"$T"}, kTranslatedText, entityEncoded},
      // Tag stripping and SQL boolean rewriting.
      {"RemoveHTMLTags", "RemoveHTMLTagsZEL", {"$T"}, kTranslatedText, rtfLike},
      {"RemoveHTMLTagsWith", "RemoveHTMLTagsWithZEL", {"$T", "text:[\xC3\xA9]"}, kTranslatedText},
      {"SQLReplaceBoolean",
       "SQLReplaceBooleanZEL",
       {"$T"},
       kTranslatedText,
       encodedInputs("SELECT * WHERE a = TRUE AND 'TRUE' <> False", " or b=true")},
      // Unicode composition, decomposition and accent removal.
      {"CharacterComposition",
       "ConvertUnicodeToCharacterCompositionZEL",
       {"$T"},
       kComposition,
       encodedInputs("e\xCC\x81 A\xCC\x8A \xE1\x84\x80\xE1\x85\xA1", "o\xCC\x88\xCC\x81x")},
      {"CharacterDecomposition", "ConvertUnicodeToCharacterDecompositionZEL", {"$T"}, kComposition},
      {"RemoveAccents", "RemoveAccentsZEL", {"$T", "false"}, kTranslatedText},
      {"RemoveAccents_IgnoreCase", "RemoveAccentsZEL", {"$T", "true"}, kTranslatedText},
      // yEnc and MySQL decoding, hex dump.
      {"yDecodeMemory", "_yDecodeMemoryZEL", {"$M"}, kMemoryBlock, yEncoded},
      {"yDecodeString", "_yDecodeStringZEL", {"$T"}, kQuiet, yEncoded},
      {"DecodingFromMySQL", "DecodingFromMySQLZEL", {"$T"}, kQuiet, mysqlEscaped},
      {"Hexstring",
       "HexstringZEL",
       {"$T", "4", "16", "text:> ", "hex/0x600:0a", "text: ", "text:."},
       kQuiet},
  };
}

bool isTextArg(std::string_view arg) {
  return arg.starts_with("text:") || arg.starts_with("hex:") || arg.starts_with("hex/");
}

std::string emptied(std::string_view arg) {
  return std::string(arg.substr(0, arg.find(':') + 1));
}

std::vector<std::string> expandArgs(const std::vector<std::string>& args, const Input* input) {
  std::vector<std::string> expanded;
  for (const std::string& arg : args) {
    if (arg == "$T") {
      expanded.push_back(input->arg());
    } else if (arg == "$M") {
      expanded.push_back("mem:" + hexOf(input->bytes));
    } else if (arg == "$P") {
      expanded.push_back("ptr:" + hexOf(input->bytes));
    } else if (arg == "$N") {
      expanded.push_back(std::to_string(input->bytes.size()));
    } else {
      expanded.push_back(arg);
    }
  }
  return expanded;
}

// Random bytes compare by count and encoding only.
Outcome withoutRandomBytes(Outcome outcome) {
  if (outcome.result.is_object()) {
    const std::size_t count = outcome.result.at("hex").get<std::string>().size() / 2;
    outcome.result = {{"encoding", outcome.result.at("encoding")}, {"bytes", count}};
  }
  return outcome;
}

Row functionRow(const FunctionCase& functionCase, const Input* input) {
  Row row;
  row.name = input == nullptr ? functionCase.label : functionCase.label + "_" + input->label;
  row.onFailure = functionCase.onFailure;
  const std::vector<std::string> args = expandArgs(functionCase.args, input);
  const bool random = functionCase.randomResult;
  const auto caller = [name = functionCase.function, random](std::vector<std::string> callArgs) {
    return [name, random, callArgs = std::move(callArgs)] {
      const Outcome outcome = callRegistered(name, callArgs);
      return random ? withoutRandomBytes(outcome) : outcome;
    };
  };
  row.call = caller(args);
  if (row.onFailure.emptyText) {
    for (std::size_t i = 0; i < args.size(); ++i) {
      if (!isTextArg(args[i])) continue;
      std::vector<std::string> emptyArgs = args;
      emptyArgs[i] = emptied(args[i]);
      row.emptyTextCalls.push_back(caller(std::move(emptyArgs)));
    }
  }
  return row;
}

// ---- the class extension -------------------------------------------------------------------

json stringResult(REALstring s) {
  if (s == nullptr) return nullptr;
  return {{"encoding", zelhost::stringEncoding(s)}, {"hex", hexOf(zelhost::stringBytes(s))}};
}

json raisedException() {
  const auto raised = zelhost::takeRaisedException();
  if (!raised) return nullptr;
  return {{"class", raised->className}, {"message", raised->message}};
}

json styledTextContent(REALobject styledText) {
  json runs = json::array();
  for (const zelhost::StyledRun& run : zelhost::styledRuns(styledText)) {
    runs.push_back({hexOf(run.text), run.textEncoding, run.font ? json(hexOf(*run.font)) : json(),
                    run.size, run.bold, run.italic, run.underline, run.color});
  }
  json paragraphs = json::array();
  for (const zelhost::StyledParagraph& paragraph : zelhost::styledParagraphs(styledText)) {
    paragraphs.push_back({paragraph.start, paragraph.end, paragraph.alignment});
  }
  return {{"runs", runs}, {"paragraphs", paragraphs}};
}

zelhost::StyledRun styledRun(std::string text, std::optional<std::string> font, RBInteger size,
                             bool bold, RBColor color) {
  zelhost::StyledRun run;
  run.text = std::move(text);
  run.font = std::move(font);
  run.size = size;
  run.bold = bold;
  run.italic = !bold;
  run.color = color;
  return run;
}

std::vector<zelhost::StyledRun> styledRuns(bool long_) {
  std::vector<zelhost::StyledRun> runs = {
      styledRun("Plain {braces} \\ back\r", "Arial", 12, false, 0),
      styledRun("Gr\xC3\xBC\xC3\x9F"
                "e \xF0\x9F\x98\x80 caf\xC3\xA9\n",
                "Times New Roman", 14, true, 0xFF0000),
      styledRun("no font\ttab", std::nullopt, 9, false, 0x00FF7F),
  };
  if (long_) {
    for (std::size_t i = 0; i < kLongRepeats; ++i) {
      runs.push_back(styledRun(kShortUtf8 + "\r", "Font " + std::to_string(i % 7), 10 + i % 5,
                               i % 2 == 0, static_cast<RBColor>(i * 0x010203)));
    }
  }
  return runs;
}

const std::vector<RBInteger> kAlignments = {1, 2, 3};

Row rtfGetterRow(const std::string& label, bool long_, RBBoolean skipParagraphs) {
  return {"RTFDataZEL_get_" + label,
          [long_, skipParagraphs] {
            const HostObject styledText(zelhost::makeStyledText(styledRuns(long_), kAlignments));
            const HostString rtf(
                zelhost::call<REALstring>("RTFDataZEL", styledText.get(), skipParagraphs));
            return Outcome{stringResult(rtf.get()), raisedException()};
          },
          [] {},
          {},
          kStyledTextRead};
}

Row rtfSetterRow(const std::string& label, std::function<std::string()> makeRtf) {
  const auto rtf = std::make_shared<std::string>();
  return {"RTFDataZEL_set_" + label,
          [rtf] {
            const HostObject styledText(zelhost::makeStyledText({}));
            const HostString value(*rtf, encoding::kNone);
            // Registered in the module form under the host this suite runs.
            zelhost::call<void>("RTFDataZEL", styledText.get(), RBBoolean{0}, value.get());
            json exception = raisedException();
            return Outcome{styledTextContent(styledText.get()), std::move(exception)};
          },
          [rtf, makeRtf] { *rtf = makeRtf(); },
          {},
          kStyledTextWrite};
}

// RTF as the writer makes it, so the reader meets every group it knows.
std::function<std::string()> writtenRtf(bool long_) {
  return [long_] {
    const HostObject styledText(zelhost::makeStyledText(styledRuns(long_), kAlignments));
    const HostString rtf(zelhost::call<REALstring>("RTFDataZEL", styledText.get(), RBBoolean{0}));
    return rtf.bytes();
  };
}

const char* const kHandWrittenRtf =
    "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl{\\f0\\fswiss Helvetica;}{\\f1 Symbol;}}"
    "{\\colortbl;\\red255\\green0\\blue0;}\\pard\\qc\\f0\\fs24\\cf1 Caf\\'e9 \\u8211? "
    "{\\b bold\\par}{\\*\\ignored x}\\i\\uc2 \\u-3913?? end\\line\\tab}";

// `failed` is the string `normal` with one stretch of bytes cut out.
bool oneTextDropped(const json& failed, const json& normal) {
  if (!failed.is_object() || !normal.is_object()) return false;
  if (failed.at("encoding") != normal.at("encoding")) return false;
  const std::string kept = failed.at("hex");
  const std::string whole = normal.at("hex");
  if (kept.size() >= whole.size()) return false;
  std::size_t prefix = 0;
  while (prefix < kept.size() && kept[prefix] == whole[prefix]) ++prefix;
  prefix -= prefix % 2;  // whole bytes
  return std::string_view(whole).ends_with(std::string_view(kept).substr(prefix));
}

}  // namespace

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

std::vector<Row> allRows() {
  std::vector<Row> rows;
  for (const FunctionCase& functionCase : functionCases()) {
    const bool takesInput =
        std::any_of(functionCase.args.begin(), functionCase.args.end(),
                    [](const std::string& arg) { return arg.starts_with('$'); });
    if (!takesInput) {
      rows.push_back(functionRow(functionCase, nullptr));
      continue;
    }
    for (const Input& input : functionCase.inputs)
      rows.push_back(functionRow(functionCase, &input));
  }
  // The composition table is built by the first call of a process and rebuilt after a failure:
  // a fresh copy of the library, and UTF-16 text that needs no view of its own, reach it first.
  Row firstComposition = functionRow({"CharacterComposition_first_call",
                                      "ConvertUnicodeToCharacterCompositionZEL",
                                      {"$T"},
                                      kComposition},
                                     &textInputs()[kUtf16Input]);
  firstComposition.prepare = [] {
    zelhost::configure({});
    zelhost::loadPlugin(ZEL_FAILPOINT_PLUGIN_PATH);
  };
  firstComposition.reaches = "Failed to allocate lookup table.";
  rows.push_back(std::move(firstComposition));
  rows.push_back(rtfGetterRow("short", false, 0));
  rows.push_back(rtfGetterRow("long", true, 0));
  rows.push_back(rtfGetterRow("long_skip_paragraphs", true, 1));
  rows.push_back(rtfSetterRow("short", writtenRtf(false)));
  rows.push_back(rtfSetterRow("long", writtenRtf(true)));
  rows.push_back(rtfSetterRow("hand_written", [] { return std::string(kHandWrittenRtf); }));
  return rows;
}

std::vector<Row> rowsWithInput(const std::string& label) {
  std::vector<Row> rows = allRows();
  const std::vector<Input> inputs = textInputs();
  std::erase_if(rows, [&](const Row& row) {
    const bool otherInput = std::any_of(inputs.begin(), inputs.end(), [&](const Input& input) {
      return input.label != label && row.name.ends_with("_" + input.label);
    });
    const bool otherLongRow =
        !row.name.ends_with(label) && row.name.find("_long") != std::string::npos;
    return otherInput || otherLongRow;
  });
  return rows;
}

std::string judge(const OnFailure& onFailure, const Outcome& failed, const Outcome& normal,
                  const std::vector<Outcome>& emptyText) {
  if (failed == normal) return {};
  if (failed.exception.is_null()) {
    if (onFailure.quiet && isEmptyResult(failed.result)) return {};
    if (onFailure.emptyText &&
        std::find(emptyText.begin(), emptyText.end(), failed) != emptyText.end()) {
      return {};
    }
    if (onFailure.textDropped && oneTextDropped(failed.result, normal.result)) return {};
    return "a result that is neither the normal one nor a documented failure";
  }
  if (failed.exception.at("class") != "OutOfMemoryException") return "the wrong exception class";
  const std::string message = failed.exception.at("message");
  const bool documented = std::any_of(
      onFailure.messages.begin(), onFailure.messages.end(),
      [&](const std::string& pattern) { return std::regex_match(message, std::regex(pattern)); });
  if (!documented) return "an undocumented message";
  if (!isEmptyResult(failed.result) && !onFailure.anyResultWhenRaised) {
    return "a result beside the exception";
  }
  return {};
}

}  // namespace zeltest::oom
