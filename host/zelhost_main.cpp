// zelhost: the command-line face of the stand-in host.
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

#include "near_names.h"
#include "zelhost_commands.h"

namespace {

using zelhost::cli::Command;
using zelhost::cli::Invocation;
using zelhost::cli::UsageError;

using Words = std::vector<std::string>;

std::string defaultPluginPath() {
  std::error_code error;
  const auto executable = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) {
    for (const auto& folder : {executable.parent_path(), executable.parent_path().parent_path()}) {
      const auto candidate = folder / ZEL_DEFAULT_PLUGIN_NAME;
      if (std::filesystem::exists(candidate)) return candidate.string();
    }
  }
  return ZEL_BUILT_PLUGIN_PATH;
}

double hostVersion(const std::string& text) {
  double version = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), version);
  if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) {
    throw UsageError("--host-version wants a number, not " + text);
  }
  return version;
}

// "--help" and "--version" stand for their commands.
std::string commandWord(const std::string& word) {
  if (word == "--help" || word == "-h") return "help";
  if (word == "--version") return "version";
  return word;
}

// The options before the command; `at` is left on the command word.
Invocation hostOptions(const Words& words, std::size_t& at) {
  Invocation invocation;
  for (; at < words.size() && words[at].starts_with("-"); ++at) {
    const std::string& word = words[at];
    const bool hasValue = at + 1 < words.size();
    if (word == "--ide") {
      invocation.host.inRuntime = false;
    } else if (word == "--plugin" && hasValue) {
      invocation.pluginPath = words[++at];
    } else if (word == "--host-version" && hasValue) {
      invocation.host.version = hostVersion(words[++at]);
    } else if (word == "--plugin" || word == "--host-version") {
      throw UsageError(word + " wants a value");
    } else if (commandWord(word) != word) {
      return invocation;
    } else {
      throw UsageError("unknown option " + word + "; zelhost help lists the options");
    }
  }
  return invocation;
}

const Command& command(const std::string& word) {
  if (const Command* found = zelhost::cli::findCommand(word)) return *found;
  std::vector<std::string> names;
  for (const Command& each : zelhost::cli::commands()) names.emplace_back(each.name);
  const auto near = zelhost::nearNames(word, names);
  throw UsageError("unknown command " + word +
                   (near.empty() ? "; zelhost help lists the commands"
                                 : "; did you mean " + near.front() + "?"));
}

// The command's own options, then its words, checked against the table.
void commandWords(const Command& command, const Words& words, std::size_t at,
                  Invocation& invocation) {
  for (; at < words.size() && words[at].starts_with("--"); ++at) {
    if (std::find(command.options.begin(), command.options.end(), std::string_view(words[at])) ==
        command.options.end()) {
      throw UsageError(std::string(command.name) + " takes no option " + words[at]);
    }
    invocation.options.push_back(words[at]);
  }
  invocation.words.assign(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
  const std::size_t count = invocation.words.size();
  if (count < command.fewestWords || count > command.mostWords) {
    throw UsageError(std::string(command.name) + " wants " +
                     (command.operands.empty() ? "no more words" : std::string(command.operands)));
  }
}

int run(const Words& words) {
  std::size_t at = 0;
  Invocation invocation = hostOptions(words, at);
  if (at == words.size()) {
    throw UsageError("no command given\n" + std::string(zelhost::cli::usageLine()));
  }
  const Command& chosen = command(commandWord(words[at]));
  commandWords(chosen, words, at + 1, invocation);
  if (invocation.pluginPath.empty()) invocation.pluginPath = defaultPluginPath();
  return chosen.run(invocation);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv + 1, argv + argc});
  } catch (const std::invalid_argument& error) {
    std::cerr << "zelhost: " << error.what() << "\n";
    return zelhost::cli::kUsageFailed;
  } catch (const std::runtime_error& error) {
    std::cerr << "zelhost: " << error.what() << "\n";
    return zelhost::cli::kLoadFailed;
  }
}
