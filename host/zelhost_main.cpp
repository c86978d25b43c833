// zelhost: the command-line face of the stand-in host.
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "demo_tour.h"
#include "dynamic_call.h"
#include "json.h"
#include "rtf_commands.h"
#include "stand_in_host.h"

namespace {

constexpr int kUsageError = 2;
constexpr int kLoadError = 1;

constexpr const char* kUsage =
    "usage: zelhost [--plugin PATH] [--host-version V] [--ide] "
    "(list [--json] | call [--json] NAME ARG... | batch | rtf-read [--json] FILE | "
    "rtf-write [--skip-paragraphs] FILE | demo)";

struct UsageError : std::invalid_argument {
  using std::invalid_argument::invalid_argument;
};

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

const char* kindName(zelhost::RegisteredMember::Kind kind) {
  switch (kind) {
    case zelhost::RegisteredMember::Kind::Method:
      return "method";
    case zelhost::RegisteredMember::Kind::ClassExtensionMethod:
      return "class-extension-method";
    case zelhost::RegisteredMember::Kind::ModuleMethod:
      return "module-method";
    case zelhost::RegisteredMember::Kind::ModuleProperty:
      return "module-property";
  }
  return "?";
}

int list(bool asJson) {
  const auto& members = zelhost::registration().members;
  if (asJson) {
    std::cout << "[";
    for (std::size_t i = 0; i < members.size(); ++i) {
      const auto& member = members[i];
      std::cout << (i ? ",\n " : "") << "{\"kind\": \"" << kindName(member.kind)
                << "\", \"owner\": "
                << (member.owner.empty() ? "null" : zelhost::json::quote(member.owner))
                << ", \"declaration\": " << zelhost::json::quote(member.declaration)
                << ", \"flags\": " << member.flags
                << ", \"setter\": " << (member.setter ? "true" : "false") << "}";
    }
    std::cout << "]\n";
    return 0;
  }
  for (const auto& member : members) {
    std::printf("%-22s %s%s%s  [flags 0x%X]%s\n", kindName(member.kind), member.owner.c_str(),
                member.owner.empty() ? "" : ".", member.declaration.c_str(), member.flags,
                member.setter ? " with setter" : "");
  }
  return 0;
}

int call(bool asJson, const std::string& name, const std::vector<std::string>& args) {
  const zelhost::CallOutcome outcome = zelhost::callDynamic(name, args);
  std::cout << (asJson ? zelhost::outcomeJson(outcome) : zelhost::outcomeText(outcome)) << "\n";
  if (!asJson && (outcome.leaked.strings != 0 || outcome.leaked.objects != 0)) {
    std::cerr << "zelhost: leaked " << outcome.leaked.strings << " strings and "
              << outcome.leaked.objects << " objects\n";
  }
  return 0;
}

std::string argumentText(const zelhost::json::Value& value) {
  if (const auto* text = std::get_if<std::string>(&value.data)) return *text;
  if (const auto* flag = std::get_if<bool>(&value.data)) return *flag ? "true" : "false";
  if (std::holds_alternative<std::nullptr_t>(value.data)) return "nil";
  if (const auto* number = std::get_if<double>(&value.data)) {
    char text[40];
    const auto written = std::to_chars(text, text + sizeof text, *number);
    return std::string(text, written.ptr);
  }
  throw std::invalid_argument("an argument must be a string, number, boolean or null");
}

int batch() {
  int status = 0;
  std::string line;
  while (std::getline(std::cin, line)) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    try {
      const zelhost::json::Value request = zelhost::json::parse(line);
      const auto* object = std::get_if<std::shared_ptr<zelhost::json::Object>>(&request.data);
      if (object == nullptr) throw std::invalid_argument("a request is a JSON object");
      const auto name = (*object)->find("name");
      if (name == (*object)->end() || !std::holds_alternative<std::string>(name->second.data)) {
        throw std::invalid_argument("a request needs a \"name\" string");
      }
      std::vector<std::string> args;
      if (const auto list = (*object)->find("args"); list != (*object)->end()) {
        const auto* items = std::get_if<std::shared_ptr<zelhost::json::Array>>(&list->second.data);
        if (items == nullptr) throw std::invalid_argument("\"args\" must be an array");
        for (const auto& item : **items) args.push_back(argumentText(item));
      }
      std::cout << zelhost::callJson(std::get<std::string>(name->second.data), args) << std::endl;
    } catch (const std::invalid_argument& error) {
      std::cout << "{\"error\": " << zelhost::json::quote(error.what()) << "}" << std::endl;
      status = kUsageError;
    }
  }
  return status;
}

int run(std::vector<std::string> words) {
  std::string pluginPath;
  zelhost::HostConfig hostConfig;
  std::size_t at = 0;
  for (; at < words.size() && words[at].starts_with("--"); ++at) {
    if (words[at] == "--ide") {
      hostConfig.inRuntime = false;
    } else if (words[at] == "--plugin" && at + 1 < words.size()) {
      pluginPath = words[++at];
    } else if (words[at] == "--host-version" && at + 1 < words.size()) {
      const std::string& text = words[++at];
      const auto parsed =
          std::from_chars(text.data(), text.data() + text.size(), hostConfig.version);
      if (parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) {
        throw UsageError("--host-version wants a number, not " + text);
      }
    } else {
      throw UsageError("unknown option " + words[at]);
    }
  }
  if (at == words.size()) throw UsageError(kUsage);
  const std::string command = words[at++];
  const std::vector<std::string> rest(words.begin() + static_cast<std::ptrdiff_t>(at), words.end());
  const bool asJson = !rest.empty() && rest.front() == "--json";
  const bool rtfCommand = command == "rtf-read" || command == "rtf-write";
  const std::string rtfOption = command == "rtf-read" ? "--json" : "--skip-paragraphs";
  const bool rtfOptionGiven = rtfCommand && !rest.empty() && rest.front() == rtfOption;
  if (rtfCommand && rest.size() != (rtfOptionGiven ? 2U : 1U)) {
    throw UsageError(command + " wants [" + rtfOption + "] FILE");
  }
  if (!rtfCommand && command != "list" && command != "call" && command != "batch" &&
      command != "demo") {
    throw UsageError("unknown command " + command);
  }
  zelhost::configure(hostConfig);
  try {
    zelhost::loadPlugin(pluginPath.empty() ? defaultPluginPath() : pluginPath);
  } catch (const std::runtime_error& error) {
    std::cerr << "zelhost: " << error.what() << "\n";
    return kLoadError;
  }
  if (command == "list") return list(asJson);
  if (rtfCommand) {
    try {
      return command == "rtf-read" ? zelhost::rtfRead(rest.back(), rtfOptionGiven, std::cout)
                                   : zelhost::rtfWrite(rest.back(), rtfOptionGiven, std::cout);
    } catch (const std::runtime_error& error) {
      std::cerr << "zelhost: " << error.what() << "\n";
      return kLoadError;
    }
  }
  if (command == "batch") return batch();
  if (command == "demo") {
    if (zelhost::runDemoTour(std::cout) == 0) std::cout << "nothing to show yet\n";
    return 0;
  }
  const std::size_t nameAt = asJson ? 1 : 0;
  if (rest.size() <= nameAt) throw UsageError("call needs a function name");
  return call(asJson, rest[nameAt],
              {rest.begin() + static_cast<std::ptrdiff_t>(nameAt) + 1, rest.end()});
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv + 1, argv + argc});
  } catch (const std::invalid_argument& error) {
    std::cerr << "zelhost: " << error.what() << "\n";
    return kUsageError;
  }
}
