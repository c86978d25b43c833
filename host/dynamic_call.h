// The dynamic call behind zelhost: chooses an overload from text arguments, builds the C call with
// libffi and describes the result as JSON and for a person.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "json_text.h"
#include "stand_in_host.h"

namespace zelhost {

struct CallOutcome {
  std::string declaration;
  Json result;             // the VALUE of the result
  std::string resultText;  // the same for a person
  std::optional<RaisedException> exception;
  LiveCounts leaked;  // alive after the host released result and arguments
};

// Throws std::invalid_argument on usage errors (unknown name, no overload fits, malformed
// argument).
CallOutcome callDynamic(std::string_view name, const std::vector<std::string>& args);
std::string outcomeJson(const CallOutcome& outcome);
std::string outcomeText(const CallOutcome& outcome);

// Lower-case hex of the bytes.
std::string hexOf(std::string_view bytes);

}  // namespace zelhost
