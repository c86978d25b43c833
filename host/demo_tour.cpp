#include "demo_tour.h"

#include <array>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

#include "dynamic_call.h"
#include "encodings.h"
#include "stand_in_host.h"

namespace zelhost {
namespace {

constexpr const char* kIndent = "     ";  // under the text after "  -> "

struct TourStop {
  const char* function;
  std::vector<std::string> args;
  // Where the text looks the same before and after, the code points show the change.
  bool showCodePoints = false;
};

// Stops whose function (or overload) is not registered are passed over.
const std::vector<TourStop>& tour() {
  static const std::vector<TourStop> stops = {
      {"HasPrefixZEL", {"text:Hello world", "text:Hello"}},
      {"EncodingToURLZEL", {"text:a b&c=d"}},
      {"EncodingToHexZEL", {"text:Zürich"}},
      {"EncodeEmailSubjectZEL", {"text:Grüße aus Köln"}},
      {"DecodingFromQuotedPrintableZEL", {"text:x=3D1 & y=3D2"}},
      {"HexstringZEL", {"text:Hello, world", "2", "4", "text:[", "text:]", "text: ", "text:."}},
      {"StringORZEL", {"text:HELLO WORLD", "hex:20"}},
      {"CreateStringZEL", {"7", "text:ab"}},
      {"LevenshteinDistanceZEL", {"kitten", "sitting"}},
      {"JaroWinklerDistanceZEL", {"MARTHA", "MARHTA"}},
      {"StrZEL", {"0.1"}},
      {"EncodingToCP1252ZEL", {"text:€uro"}},
      {"RemoveAccentsZEL", {"text:Crème brûlée"}},
      {"RemoveAccentsZEL", {"text:Æsop ½", "true"}},
      {"ConvertUnicodeToCharacterDecompositionZEL", {"text:é"}, true},
      {"ConvertUnicodeToCharacterCompositionZEL", {"text:e\u0301"}, true},
      {"CountOccurancesZEL", {"banana", "an"}},
      {"ContainsWholeWordZEL", {"text:Hello, World!", "text:world"}},
      {"ReplaceLineEndingsZEL", {"hex/0x08000100:610d0a620a0d63", "text:|"}},
      {"CheckUTF8ZEL", {"hex:41c3284280", "text:?"}},
      {"GetStringsFromDataZEL", {"mem:00414243007f446566000a", "1"}},
      {"EncodingToHTMLZEL", {"text:Tom & Jerry's café"}},
      {"DecodingFromXMLZEL", {"text:&lt;p&gt;caf&eacute;&#x21;"}},
      {"RemoveHTMLTagsZEL", {"text:<p>Hello <b>World</b></p>"}},
      {"SQLReplaceBooleanZEL", {"text:UPDATE t SET a = true WHERE b = FALSE;"}},
  };
  return stops;
}

std::string shown(const std::vector<std::string>& args) {
  std::string text;
  for (const std::string& arg : args) text += (text.empty() ? "" : ", ") + arg;
  return text;
}

// Lines after the first (array elements, an exception) line up under the first.
std::string indented(const std::string& text) {
  std::string out;
  for (const char c : text) out += c == '\n' ? std::string("\n") + kIndent : std::string(1, c);
  return out;
}

std::string codePoints(std::string_view utf8) {
  std::string text;
  for (const char32_t c : detail::decodeText(utf8, encoding::kUTF8)) {
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "U+%04X", static_cast<unsigned>(c));
    if (!text.empty()) text += ' ';
    text += name.data();
  }
  return text;
}

// The code points of the first argument (a text: one) and of the result's text.
std::string codePointChange(const TourStop& stop, const CallOutcome& outcome) {
  constexpr std::string_view kTextForm = "text:";
  const std::string_view before = std::string_view(stop.args.front()).substr(kTextForm.size());
  const bool hasText = outcome.result.is_object() && outcome.result.contains("text");
  return codePoints(before) + " -> " +
         (hasText ? codePoints(outcome.result.at("text").get<std::string>()) : "nil");
}

}  // namespace

int runDemoTour(std::ostream& out) {
  int ran = 0;
  for (const TourStop& stop : tour()) {
    if (findMethod(stop.function) == nullptr) continue;
    try {
      const CallOutcome outcome = callDynamic(stop.function, stop.args);
      out << stop.function << "(" << shown(stop.args) << ")\n  -> "
          << indented(outcomeText(outcome)) << "\n";
      if (stop.showCodePoints) out << kIndent << codePointChange(stop, outcome) << "\n";
      ++ran;
    } catch (const std::invalid_argument&) {
      continue;
    }
  }
  return ran;
}

}  // namespace zelhost
