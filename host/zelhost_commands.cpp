#include "zelhost_commands.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include <iostream>

#include "calls.h"
#include "demo_tour.h"
#include "dynamic_call.h"
#include "file_bytes.h"
#include "function_pages.h"
#include "json_text.h"
#include "near_names.h"
#include "rtf_commands.h"
#include "strings/decomposition_table.h"

namespace zelhost::cli {
namespace {

constexpr std::size_t kAnyNumber = static_cast<std::size_t>(-1);
constexpr std::string_view kBannerStart = "$$ Plugin version:";
constexpr std::string_view kBannerEnd = " $$";

const char* kindName(RegisteredMember::Kind kind) {
  switch (kind) {
    case RegisteredMember::Kind::Method:
      return "method";
    case RegisteredMember::Kind::ClassExtensionMethod:
      return "class-extension-method";
    case RegisteredMember::Kind::ModuleMethod:
      return "module-method";
    case RegisteredMember::Kind::ModuleProperty:
      return "module-property";
  }
  return "?";
}

std::string qualifiedDeclaration(const RegisteredMember& member) {
  return member.owner.empty() ? member.declaration : member.owner + "." + member.declaration;
}

std::string memberLine(const RegisteredMember& member) {
  std::array<char, 64> kind{};
  std::snprintf(kind.data(), kind.size(), "%-22s ", kindName(member.kind));
  std::array<char, 32> flags{};
  std::snprintf(flags.data(), flags.size(), "  [flags 0x%X]", member.flags);
  return kind.data() + qualifiedDeclaration(member) + flags.data() +
         (member.setter ? " with setter" : "");
}

bool containsIgnoringCase(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(), [](char a, char b) {
           return std::tolower(static_cast<unsigned char>(a)) ==
                  std::tolower(static_cast<unsigned char>(b));
         }) != text.end();
}

// The loader's messages name the file (or its private copy) before the reason.
std::string loadReason(const std::string& message, const std::string& path) {
  if (message.starts_with(path + " ")) return message.substr(path.size() + 1);
  const std::size_t colon = message.rfind(": ");
  return colon == std::string::npos ? message : message.substr(colon + 2);
}

void load(const Invocation& invocation) {
  configure(invocation.host);
  const std::string& path = invocation.pluginPath;
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) {
    throw LoadError("cannot load the plug-in " + path + ": " +
                    (std::filesystem::exists(path, error) ? "not a file" : "no such file"));
  }
  try {
    loadPlugin(path);
  } catch (const std::runtime_error& failure) {
    throw LoadError("cannot load the plug-in " + path + ": " + loadReason(failure.what(), path));
  }
}

int list(const Invocation& invocation) {
  load(invocation);
  const std::string filter = invocation.words.empty() ? "" : invocation.words.front();
  std::vector<const RegisteredMember*> shown;
  for (const RegisteredMember& member : registration().members) {
    if (containsIgnoringCase(qualifiedDeclaration(member), filter)) shown.push_back(&member);
  }
  if (!invocation.has("--json")) {
    for (const RegisteredMember* member : shown) std::cout << memberLine(*member) << "\n";
    return kDone;
  }
  Json members = Json::array();
  for (const RegisteredMember* member : shown) {
    members.push_back({{"kind", kindName(member->kind)},
                       {"owner", member->owner.empty() ? Json(nullptr) : Json(member->owner)},
                       {"declaration", member->declaration},
                       {"flags", member->flags},
                       {"setter", member->setter != nullptr}});
  }
  std::cout << jsonText(members, {""}) << "\n";
  return kDone;
}

int call(const Invocation& invocation) {
  load(invocation);
  const std::vector<std::string> args(invocation.words.begin() + 1, invocation.words.end());
  const CallOutcome outcome = callDynamic(invocation.words.front(), args);
  const bool asJson = invocation.has("--json");
  std::cout << (asJson ? outcomeJson(outcome) : outcomeText(outcome)) << "\n";
  if (!asJson && (outcome.leaked.strings != 0 || outcome.leaked.objects != 0)) {
    std::cerr << "zelhost: leaked " << outcome.leaked.strings << " strings and "
              << outcome.leaked.objects << " objects\n";
  }
  return kDone;
}

// A batch argument in ARG form: JSON strings as they are, other scalars as they are written.
std::string argumentText(const Json& value) {
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>() ? "true" : "false";
  if (value.is_null()) return "nil";
  if (value.is_number_float()) {
    std::array<char, 40> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value.get<double>());
    return std::string(text.data(), written.ptr);
  }
  if (value.is_number()) return value.dump();
  throw std::invalid_argument("an argument must be a string, number, boolean or null");
}

std::string batchLine(const std::string& line) {
  const Json request = parseJson(line);
  if (!request.is_object()) throw std::invalid_argument("a request is a JSON object");
  if (!request.contains("name") || !request.at("name").is_string()) {
    throw std::invalid_argument("a request needs a \"name\" string");
  }
  std::vector<std::string> args;
  if (request.contains("args")) {
    const Json& list = request.at("args");
    if (!list.is_array()) throw std::invalid_argument("\"args\" must be an array");
    std::transform(list.begin(), list.end(), std::back_inserter(args), argumentText);
  }
  return outcomeJson(callDynamic(request.at("name").get<std::string>(), args));
}

int batch(const Invocation& invocation) {
  load(invocation);
  int status = kDone;
  std::string line;
  while (std::getline(std::cin, line)) {
    if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
    try {
      std::cout << batchLine(line) << std::endl;
    } catch (const std::invalid_argument& error) {
      std::cout << jsonText({{"error", error.what()}}) << std::endl;
      status = kUsageFailed;
    }
  }
  return status;
}

int rtfRead(const Invocation& invocation) {
  load(invocation);
  return zelhost::rtfRead(invocation.words.front(), invocation.has("--json"), std::cout);
}

int rtfWrite(const Invocation& invocation) {
  load(invocation);
  return zelhost::rtfWrite(invocation.words.front(), invocation.has("--skip-paragraphs"),
                           std::cout);
}

int demo(const Invocation& invocation) {
  load(invocation);
  if (runDemoTour(std::cout) == 0) std::cout << "nothing to show yet\n";
  return kDone;
}

[[noreturn]] void unknownMember(const std::string& name) {
  std::vector<std::string> known;
  for (const RegisteredMember& member : registration().members) known.push_back(member.parsed.name);
  std::string message = "nothing named " + name + " is registered";
  const auto near = nearNames(name, known);
  for (std::size_t i = 0; i < near.size(); ++i) {
    message += (i == 0 ? "; did you mean " : i + 1 == near.size() ? " or " : ", ") + near[i];
  }
  throw UsageError(near.empty() ? message : message + "?");
}

int help(const Invocation& invocation) {
  if (invocation.words.empty()) {
    std::cout << helpText();
    return kDone;
  }
  load(invocation);
  const std::string& name = invocation.words.front();
  const auto members = detail::membersNamed(name);
  if (members.empty()) unknownMember(name);
  for (const RegisteredMember* member : members) std::cout << memberLine(*member) << "\n";
  if (const auto page = functionPage(members.front()->parsed.name)) {
    std::cout << "reference: docs/functions/" << *page << ".md\n";
  }
  return kDone;
}

// The banner the plug-in keeps in its file so that the version can be read without loading it.
std::string versionBanner(const std::string& path) {
  const std::string bytes = fileBytes(path);
  const std::size_t start = bytes.find(kBannerStart);
  const std::size_t end = bytes.find(kBannerEnd, start + kBannerStart.size());
  if (start == std::string::npos || end == std::string::npos) return "no version banner";
  return bytes.substr(start, end + kBannerEnd.size() - start);
}

int version(const Invocation& invocation) {
  load(invocation);
  std::cout << "plug-in: " << versionBanner(invocation.pluginPath);
  if (const auto& levels = registration().pluginVersions; !levels.empty()) {
    std::cout << ", SDK level " << levels.back();
  }
  std::array<char, 32> hostVersion{};
  const auto written = std::to_chars(hostVersion.data(), hostVersion.data() + hostVersion.size(),
                                     invocation.host.version);
  // The tables come from the same sources as the plug-in built beside zelhost.
  std::cout << "\nUnicode data: " << zel::strings::decompositionUnicodeVersion;
  std::cout << "\nhost: " << std::string_view(hostVersion.data(), written.ptr) << ", "
            << (invocation.host.inRuntime ? "built application" : "development environment")
            << "\n";
  return kDone;
}

}  // namespace

bool Invocation::has(std::string_view option) const {
  return std::find(options.begin(), options.end(), option) != options.end();
}

const std::vector<Command>& commands() {
  static const std::vector<Command> table = {
      {"list",
       {"--json"},
       "[FILTER]",
       "registered members in registration order; FILTER keeps those whose declaration holds it "
       "(any case)",
       0,
       1,
       list},
      {"call",
       {"--json"},
       "NAME ARG...",
       "call one registered global function",
       1,
       kAnyNumber,
       call},
      {"batch",
       {},
       "",
       "read JSON lines {\"name\": NAME, \"args\": [ARG...]} from stdin, write one --json result "
       "line each",
       0,
       0,
       batch},
      {"rtf-read",
       {"--json"},
       "FILE",
       "assign FILE's bytes to RTFDataZEL of a new StyledText, print its runs",
       1,
       1,
       rtfRead},
      {"rtf-write",
       {"--skip-paragraphs"},
       "FILE",
       "build a StyledText from the runs JSON in FILE, write its RTFDataZEL bytes to stdout",
       1,
       1,
       rtfWrite},
      {"demo", {}, "", "a short tour of what the plug-in offers", 0, 0, demo},
      {"help",
       {},
       "[NAME]",
       "this text, or every overload of NAME and its reference page",
       0,
       1,
       help},
      {"version",
       {},
       "",
       "the plug-in's version banner and the host version played",
       0,
       0,
       version},
  };
  return table;
}

const Command* findCommand(std::string_view name) {
  const auto& table = commands();
  const auto found = std::find_if(table.begin(), table.end(),
                                  [&](const Command& command) { return command.name == name; });
  return found == table.end() ? nullptr : &*found;
}

std::string_view usageLine() {
  return "usage: zelhost [--plugin PATH] [--host-version V] [--ide] COMMAND [OPTION...] "
         "[WORD...]; zelhost help lists the commands";
}

}  // namespace zelhost::cli
