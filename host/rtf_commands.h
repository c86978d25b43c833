// zelhost's rtf-read and rtf-write: the StyledText class extension RTFDataZEL driven from files,
// with styled texts described in the runs JSON.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

#include "sdk/host_types.h"

namespace zelhost {

// The registered getter and setter of RTFDataZEL, in whichever form the plug-in registered them
// (class extension, or module methods on hosts that take no class extensions).
struct RtfDataAccess {
  REALstring (*get)(REALobject styledText, RBBoolean skipParagraphs) = nullptr;
  void (*set)(REALobject styledText, RBBoolean skipParagraphs, REALstring rtf) = nullptr;
};
// Throws std::runtime_error when the plug-in registered neither.
RtfDataAccess rtfDataAccess();

// {"runs": [...], "paragraphs": [...]} for a StyledText.
std::string runsJson(REALobject styledText);
// A new StyledText (+1) from the runs JSON; throws std::invalid_argument for malformed input.
REALobject styledTextFromJson(std::string_view json);

// The commands themselves; both answer the process exit status. They throw std::invalid_argument
// for an unreadable file or malformed JSON, std::runtime_error when RTFDataZEL is not registered.
int rtfRead(const std::string& file, bool asJson, std::ostream& out);
int rtfWrite(const std::string& file, bool skipParagraphs, std::ostream& out);

}  // namespace zelhost
