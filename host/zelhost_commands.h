// zelhost's commands: one table of what each takes and does, from which the help is written.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "stand_in_host.h"

namespace zelhost::cli {

constexpr int kDone = 0;
constexpr int kLoadFailed = 1;
constexpr int kUsageFailed = 2;

// A mistake on the command line: exit status 2 with the message.
struct UsageError : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};
// The plug-in or a file it needs cannot be loaded: exit status 1 with the message.
struct LoadError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Invocation {
  std::string pluginPath;
  HostConfig host;
  std::vector<std::string> options;  // the command's own options, as given
  std::vector<std::string> words;    // the words after them
  bool has(std::string_view option) const;
};

struct Command {
  std::string_view name;
  std::vector<std::string_view> options;
  std::string_view operands;  // for the help: "NAME ARG..."
  std::string_view summary;
  std::size_t fewestWords;
  std::size_t mostWords;
  int (*run)(const Invocation&);
};

const std::vector<Command>& commands();
// Null for a name no command has.
const Command* findCommand(std::string_view name);

// The full help: commands, options, argument forms, exit status.
std::string helpText();
// One line that says how zelhost is used, for messages.
std::string_view usageLine();

}  // namespace zelhost::cli
