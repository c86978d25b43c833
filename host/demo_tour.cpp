#include "demo_tour.h"

#include <stdexcept>
#include <string>
#include <vector>

#include "dynamic_call.h"
#include "stand_in_host.h"

namespace zelhost {
namespace {

struct TourStop {
  const char* function;
  std::vector<std::string> args;
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
      {"ConvertUnicodeToCharacterDecompositionZEL", {"text:é"}},
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

}  // namespace

int runDemoTour(std::ostream& out) {
  int ran = 0;
  for (const TourStop& stop : tour()) {
    if (findMethod(stop.function) == nullptr) continue;
    try {
      const CallOutcome outcome = callDynamic(stop.function, stop.args);
      out << stop.function << "(" << shown(stop.args) << ")\n  -> " << outcomeText(outcome) << "\n";
      ++ran;
    } catch (const std::invalid_argument&) {
      continue;
    }
  }
  return ran;
}

}  // namespace zelhost
