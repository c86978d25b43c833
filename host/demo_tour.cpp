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
      {"LevenshteinDistanceZEL", {"kitten", "sitting"}},
      {"RemoveAccentsZEL", {"text:Crème brûlée"}},
      {"CountOccurancesZEL", {"banana", "an"}},
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
