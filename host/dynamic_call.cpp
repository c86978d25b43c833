#include "dynamic_call.h"

#include <strings.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <stdexcept>

#include "calls.h"
#include "encodings.h"
#include "ffi_types.h"
#include "host_strings.h"
#include "json_text.h"
#include "near_names.h"
#include "objects.h"

namespace zelhost {
namespace {

using detail::CType;

// What is wrong with HEX, empty when nothing is.
std::string hexFault(std::string_view hex) {
  const auto bad = std::find_if_not(
      hex.begin(), hex.end(), [](char c) { return std::isxdigit(static_cast<unsigned char>(c)); });
  if (bad != hex.end()) return std::string("bad hex digit '") + *bad + "'";
  if (hex.size() % 2 != 0) return "odd number of hex digits (" + std::to_string(hex.size()) + ")";
  return {};
}

// The bytes of valid HEX (see hexFault).
std::string parseHex(std::string_view hex) {
  std::string bytes;
  for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
    unsigned value = 0;
    std::from_chars(hex.data() + i, hex.data() + i + 2, value, 16);
    bytes.push_back(static_cast<char>(value));
  }
  return bytes;
}

template <class Number>
std::optional<Number> parseNumber(std::string_view text, int base = 10) {
  Number value{};
  const char* end = text.data() + text.size();
  std::from_chars_result parsed{};
  if constexpr (std::is_floating_point_v<Number>) {
    parsed = std::from_chars(text.data(), end, value);
  } else {
    parsed = std::from_chars(text.data(), end, value, base);
  }
  if (text.empty() || parsed.ec != std::errc() || parsed.ptr != end) return std::nullopt;
  return value;
}

bool hasPrefix(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

constexpr std::string_view kTextForm = "text:";
constexpr std::string_view kHexForm = "hex:";
constexpr std::string_view kTaggedHexForm = "hex/";
constexpr std::string_view kMemoryForm = "mem:";
constexpr std::string_view kPointerForm = "ptr:";

struct StringForm {
  std::optional<std::string> bytes;  // none: the nil string
  std::uint32_t encoding = encoding::kNone;
};

std::optional<std::uint32_t> encodingTag(std::string_view tag) {
  return hasPrefix(tag, "0x") ? parseNumber<std::uint32_t>(tag.substr(2), 16)
                              : parseNumber<std::uint32_t>(tag);
}

// What keeps `arg` from being a string argument, empty when nothing does.
std::string stringFault(std::string_view arg) {
  if (arg.starts_with(kHexForm)) return hexFault(arg.substr(kHexForm.size()));
  if (!arg.starts_with(kTaggedHexForm)) return {};
  const std::size_t colon = arg.find(':');
  if (colon == std::string_view::npos) return "hex/ENC:HEX wants a colon after the encoding";
  const std::string_view tag = arg.substr(kTaggedHexForm.size(), colon - kTaggedHexForm.size());
  if (!encodingTag(tag)) {
    return "bad encoding '" + std::string(tag) + "' (decimal or 0x-prefixed hex)";
  }
  return hexFault(arg.substr(colon + 1));
}

// A string argument that stringFault accepts.
StringForm stringForm(std::string_view arg) {
  if (arg == "nil") return {};
  if (arg.starts_with(kTextForm))
    return {std::string(arg.substr(kTextForm.size())), encoding::kUTF8};
  if (arg.starts_with(kHexForm)) return {parseHex(arg.substr(kHexForm.size())), encoding::kNone};
  if (arg.starts_with(kTaggedHexForm)) {
    const std::size_t colon = arg.find(':');
    return {parseHex(arg.substr(colon + 1)),
            *encodingTag(arg.substr(kTaggedHexForm.size(), colon - kTaggedHexForm.size()))};
  }
  return {std::string(arg), encoding::kUTF8};
}

// What keeps a byte-form argument (mem:, ptr:) from being read, empty when nothing does.
std::string byteFormFault(std::string_view arg, std::string_view form) {
  if (!arg.starts_with(form)) return "wants " + std::string(form) + "HEX";
  return hexFault(arg.substr(form.size()));
}

// How well a text argument fits a parameter: a fault when it cannot be read as that type; else
// a score, 1 when its form names the parameter's type (mem:, ptr:), else 0.
struct Fit {
  int score = 0;
  std::string fault;
};

Fit fit(const Parameter& parameter, std::string_view arg) {
  const auto type = detail::cTypeOfDeclared(parameter.type);
  if (!type) return {0, parameter.type + " cannot be given on the command line"};
  switch (*type) {
    case CType::String:
      return {0, stringFault(arg)};
    case CType::Integer:
      return {0, parseNumber<RBInteger>(arg) ? "" : "wants a decimal integer"};
    case CType::Color:
      return {0, parseNumber<std::int64_t>(arg) ? "" : "wants a decimal integer"};
    case CType::Double:
      return {0, parseNumber<double>(arg) ? "" : "wants a number"};
    case CType::Boolean:
      return {0, arg == "true" || arg == "false" ? "" : "wants true or false"};
    case CType::Ptr:
      return {1, byteFormFault(arg, kPointerForm)};
    case CType::Object:
      if (arg == "nil") return {0, ""};
      if (parameter.type == "memoryblock") return {1, byteFormFault(arg, kMemoryForm)};
      return {0, "wants nil"};
    case CType::Array:
    case CType::Void:
      break;
  }
  return {0, parameter.type + " cannot be given on the command line"};
}

// A declared default value in ARG form.
std::string defaultArgument(const Parameter& parameter) {
  std::string_view value = *parameter.defaultValue;
  const auto type = detail::cTypeOfDeclared(parameter.type);
  if (type == CType::String) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
      value = value.substr(1, value.size() - 2);
      return value.empty() ? "nil" : std::string(kTextForm) + std::string(value);
    }
  }
  if ((type == CType::Integer || type == CType::Color) && hasPrefix(value, "&h")) {
    if (const auto number = parseNumber<std::int64_t>(value.substr(2), 16)) {
      return std::to_string(*number);
    }
  }
  if (type == CType::Boolean) return hasPrefix(value, "true") ? "true" : "false";
  return std::string(value);
}

struct Choice {
  const RegisteredMember* member = nullptr;
  std::vector<std::string> args;  // one per parameter, defaults filled in
  int score = -1;
  std::string fault;  // why the arguments do not fit, when they do not
};

bool isGlobal(const RegisteredMember& member) {
  return member.kind == RegisteredMember::Kind::Method ||
         member.kind == RegisteredMember::Kind::ModuleMethod;
}

bool takesCount(const RegisteredMember& member, std::size_t count) {
  const auto& parameters = member.parsed.parameters;
  return count <= parameters.size() &&
         std::all_of(parameters.begin() + static_cast<std::ptrdiff_t>(count), parameters.end(),
                     [](const Parameter& parameter) { return parameter.defaultValue.has_value(); });
}

Choice tryMember(const RegisteredMember& member, const std::vector<std::string>& args) {
  const auto& parameters = member.parsed.parameters;
  Choice choice{&member, args, 0, {}};
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (i >= args.size()) choice.args.push_back(defaultArgument(parameters[i]));
    const Fit fits = fit(parameters[i], choice.args[i]);
    if (!fits.fault.empty()) {
      choice.fault = fits.fault + " in argument " + std::to_string(i + 1);
      choice.score = -1;
      return choice;
    }
    choice.score += fits.score;
  }
  return choice;
}

std::string candidateLines(const std::vector<Choice>& choices) {
  std::string lines;
  for (const Choice& choice : choices) {
    lines += "\n  " + choice.member->declaration;
    if (!choice.fault.empty()) lines += "  (" + choice.fault + ")";
  }
  return lines;
}

[[noreturn]] void unknownFunction(std::string_view name) {
  std::vector<std::string> known;
  for (const RegisteredMember& member : registration().members) {
    if (isGlobal(member)) known.push_back(member.parsed.name);
  }
  const auto near = nearNames(name, known);
  std::string message = "unknown function " + std::string(name);
  for (std::size_t i = 0; i < near.size(); ++i) {
    message += (i == 0 ? "; did you mean " : i + 1 == near.size() ? " or " : ", ") + near[i];
  }
  throw std::invalid_argument(near.empty() ? message : message + "?");
}

Choice choose(std::string_view name, const std::vector<std::string>& args) {
  std::vector<const RegisteredMember*> callable;
  for (const RegisteredMember* member : detail::membersNamed(name)) {
    if (isGlobal(*member) && (callable.empty() || callable.front()->kind == member->kind)) {
      callable.push_back(member);
    }
  }
  if (callable.empty()) unknownFunction(name);
  std::vector<Choice> tried;
  Choice best;
  for (const RegisteredMember* member : callable) {
    tried.push_back(takesCount(*member, args.size()) ? tryMember(*member, args)
                                                     : Choice{member, args, -1, {}});
    if (tried.back().score > best.score) best = tried.back();
  }
  if (best.member != nullptr) return best;
  const auto counted = std::count_if(tried.begin(), tried.end(),
                                     [](const Choice& choice) { return !choice.fault.empty(); });
  if (counted == 0) {
    throw std::invalid_argument("no overload of " + std::string(name) + " takes " +
                                std::to_string(args.size()) +
                                " arguments; there are:" + candidateLines(tried));
  }
  const auto fitting = std::find_if(tried.begin(), tried.end(),
                                    [](const Choice& choice) { return !choice.fault.empty(); });
  if (counted == 1) {
    throw std::invalid_argument(fitting->fault + " of " + fitting->member->declaration);
  }
  std::erase_if(tried, [](const Choice& choice) { return choice.fault.empty(); });
  throw std::invalid_argument("no overload of " + std::string(name) +
                              " fits the arguments; there are:" + candidateLines(tried));
}

// One C argument and what the host made for it.
struct Argument {
  detail::ArgumentValue value{};
  REALstring string = nullptr;
  REALobject object = nullptr;
  std::vector<char> buffer;  // a vector keeps its bytes in place when the argument moves
};

Argument makeArgument(const Parameter& parameter, const std::string& arg) {
  Argument argument;
  switch (*detail::cTypeOfDeclared(parameter.type)) {
    case CType::String: {
      const StringForm form = stringForm(arg);
      if (form.bytes) argument.string = makeString(*form.bytes, form.encoding);
      argument.value.pointer = argument.string;
      break;
    }
    case CType::Integer:
      argument.value.integer = *parseNumber<RBInteger>(arg);
      break;
    case CType::Color:
      argument.value.color = static_cast<std::uint32_t>(*parseNumber<std::int64_t>(arg));
      break;
    case CType::Double:
      argument.value.real = *parseNumber<double>(arg);
      break;
    case CType::Boolean:
      argument.value.boolean = arg == "true" ? 1 : 0;
      break;
    case CType::Ptr: {
      const std::string bytes = parseHex(arg.substr(kPointerForm.size()));
      argument.buffer.assign(bytes.begin(), bytes.end());
      argument.buffer.push_back('\0');
      argument.value.pointer = argument.buffer.data();
      break;
    }
    case CType::Object:
      if (arg != "nil") argument.object = makeMemoryBlock(parseHex(arg.substr(kMemoryForm.size())));
      argument.value.pointer = argument.object;
      break;
    case CType::Array:
    case CType::Void:
      break;
  }
  return argument;
}

struct Described {
  Json json;
  std::string text;
};

Described describeString(REALstring s) {
  if (s == nullptr) return {nullptr, "nil"};
  const std::string bytes = stringBytes(s);
  const std::uint32_t encoding = stringEncoding(s);
  Described out{Json{{"encoding", encoding}, {"hex", hexOf(bytes)}}, {}};
  const std::string name = " (" + detail::encodingName(encoding) + ")";
  if (detail::isValidIn(bytes, encoding)) {
    const std::string utf8 = *detail::convertBytes(bytes, encoding, encoding::kUTF8);
    out.json["text"] = utf8;
    out.text = utf8 + name;
  } else {
    out.text = std::string(kHexForm) + hexOf(bytes) + name;
  }
  return out;
}

// A person reads an array one element per line, each marked with its index.
Described describeArray(REALobject array) {
  if (array == nullptr) return {nullptr, "nil"};
  Described out{Json::array(), {}};
  const auto* data = detail::objectData<detail::StringArrayData>(array, "result array");
  if (data == nullptr) return out;
  for (std::size_t i = 0; i < data->items.size(); ++i) {
    const Described element = describeString(data->items[i]);
    out.json.push_back(element.json);
    if (i > 0) out.text += '\n';
    out.text.append("[").append(std::to_string(i)).append("] ").append(element.text);
  }
  return out;
}

Described describeResult(CType type, const detail::ArgumentValue& value) {
  switch (type) {
    case CType::Void:
      return {nullptr, ""};
    case CType::Integer:
      return {value.integer, std::to_string(value.integer)};
    case CType::Color:
      return {value.color, std::to_string(value.color)};
    case CType::Boolean: {
      const bool set = value.boolean != 0;
      return {set, set ? "true" : "false"};
    }
    case CType::Double:
      return {value.real, jsonText(value.real)};
    case CType::Ptr: {
      const auto address = reinterpret_cast<std::uintptr_t>(value.pointer);
      return {address, std::to_string(address)};
    }
    case CType::String:
      return describeString(static_cast<REALstring>(value.pointer));
    case CType::Object: {
      if (value.pointer == nullptr) return {nullptr, "nil"};
      const std::string hex = hexOf(memoryBlockBytes(static_cast<REALobject>(value.pointer)));
      return {Json{{"hex", hex}}, std::string(kMemoryForm) + hex};
    }
    case CType::Array:
      return describeArray(static_cast<REALobject>(value.pointer));
  }
  return {nullptr, ""};
}

void releaseResult(CType type, const detail::ArgumentValue& value) {
  if (type == CType::String) release(static_cast<REALstring>(value.pointer));
  if (type == CType::Object || type == CType::Array)
    release(static_cast<REALobject>(value.pointer));
}

}  // namespace

std::string hexOf(std::string_view bytes) {
  static constexpr char kDigits[] = "0123456789abcdef";
  std::string hex;
  for (const char byte : bytes) {
    hex.push_back(kDigits[static_cast<unsigned char>(byte) >> 4]);
    hex.push_back(kDigits[static_cast<unsigned char>(byte) & 0xF]);
  }
  return hex;
}

CallOutcome callDynamic(std::string_view name, const std::vector<std::string>& args) {
  const Choice choice = choose(name, args);
  const RegisteredMember& member = *choice.member;
  const auto signature = detail::cSignature(member, detail::Through::Function);
  if (!signature.result || member.function == nullptr) {
    throw std::invalid_argument(member.declaration + " cannot be called from here");
  }
  const LiveCounts before = liveCounts();
  std::vector<Argument> arguments;
  std::vector<CType> types;
  std::vector<detail::ArgumentValue> values;
  for (std::size_t i = 0; i < choice.args.size(); ++i) {
    arguments.push_back(makeArgument(member.parsed.parameters[i], choice.args[i]));
    types.push_back(*signature.parameters[i]);
    values.push_back(arguments.back().value);
  }
  const detail::ArgumentValue result = detail::callThroughFfi(
      reinterpret_cast<void (*)()>(member.function), *signature.result, types, values);

  CallOutcome outcome;
  outcome.declaration = member.declaration;
  const Described described = describeResult(*signature.result, result);
  outcome.result = described.json;
  outcome.resultText = described.text;
  outcome.exception = takeRaisedException();
  releaseResult(*signature.result, result);
  for (const Argument& argument : arguments) {
    release(argument.string);
    release(argument.object);
  }
  const LiveCounts after = liveCounts();
  outcome.leaked = {after.strings - before.strings, after.objects - before.objects,
                    after.stringData - before.stringData};
  return outcome;
}

std::string outcomeJson(const CallOutcome& outcome) {
  Json json{{"function", outcome.declaration}, {"result", outcome.result}, {"exception", nullptr}};
  if (outcome.exception) {
    json["exception"] = {{"class", outcome.exception->className},
                         {"message", outcome.exception->message}};
  }
  json["leaked"] = {{"strings", outcome.leaked.strings}, {"objects", outcome.leaked.objects}};
  return jsonText(json);
}

std::string outcomeText(const CallOutcome& outcome) {
  std::string text = outcome.resultText;
  if (outcome.exception) {
    if (!text.empty()) text += '\n';
    text.append("exception ").append(outcome.exception->className).append(": ");
    text += outcome.exception->message;
  }
  return text;
}

std::string callJson(std::string_view name, const std::vector<std::string>& args) {
  return outcomeJson(callDynamic(name, args));
}

}  // namespace zelhost
