// The stand-in host as every end-to-end fuzz target uses it: the built plug-in loaded once, and
// the checks run after each call. A failed check prints what went wrong and aborts, which is how
// libFuzzer (and the standalone runner) learn of a finding.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "stand_in_host.h"

namespace zeltest {

// Configures the host and loads the plug-in built beside the targets; call once per process.
void loadPlugin();

// Prints the message and aborts the process.
[[noreturn]] void fail(std::string_view what, std::string_view detail = {});

// One exception the plug-in may raise: its host class and its message, either whole or as a
// prefix when `prefixOnly` (for messages that carry a number or a library's description).
struct DocumentedException {
  std::string_view className;
  std::string_view message;
  bool prefixOnly = false;
};

// Every string, object and string-data record the call made is gone again, the host saw no
// misuse, and the exception raised (if any) is one of `documented`. Call after the host has
// released the result and the arguments.
void checkAfterCall(std::string_view call, const std::optional<zelhost::RaisedException>& raised,
                    std::span<const DocumentedException> documented);

}  // namespace zeltest
