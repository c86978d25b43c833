#include "dynamic_call.h"

#include <ffi.h>
#include <strings.h>

#include <array>
#include <charconv>
#include <cstdio>
#include <stdexcept>

#include "calls.h"
#include "encodings.h"
#include "host_strings.h"
#include "json.h"
#include "objects.h"

namespace zelhost {
namespace {

using detail::CType;

std::optional<std::string> parseHex(std::string_view hex) {
  if (hex.size() % 2 != 0) return std::nullopt;
  std::string bytes;
  for (std::size_t i = 0; i < hex.size(); i += 2) {
    unsigned value = 0;
    const auto [end, error] = std::from_chars(hex.data() + i, hex.data() + i + 2, value, 16);
    if (error != std::errc() || end != hex.data() + i + 2) return std::nullopt;
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

struct StringForm {
  std::optional<std::string> bytes;  // none: the nil string
  std::uint32_t encoding;
};

std::optional<StringForm> stringForm(std::string_view arg) {
  if (arg == "nil") return StringForm{std::nullopt, encoding::kNone};
  if (arg.starts_with("text:")) return StringForm{std::string(arg.substr(5)), encoding::kUTF8};
  if (arg.starts_with("hex:")) {
    const auto bytes = parseHex(arg.substr(4));
    if (!bytes) return std::nullopt;
    return StringForm{bytes, encoding::kNone};
  }
  if (arg.starts_with("hex/")) {
    const std::size_t colon = arg.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const std::string_view tag = arg.substr(4, colon - 4);
    const auto encoding = hasPrefix(tag, "0x") ? parseNumber<std::uint32_t>(tag.substr(2), 16)
                                               : parseNumber<std::uint32_t>(tag);
    const auto bytes = parseHex(arg.substr(colon + 1));
    if (!encoding || !bytes) return std::nullopt;
    return StringForm{bytes, *encoding};
  }
  return StringForm{std::string(arg), encoding::kUTF8};
}

// How well a text argument fits a parameter: none when it cannot be read as that type; 1 when
// its form names the parameter's type (mem:, ptr:), else 0.
std::optional<int> fit(const Parameter& parameter, std::string_view arg) {
  const auto type = detail::cTypeOfDeclared(parameter.type);
  if (!type) return std::nullopt;
  switch (*type) {
    case CType::String:
      return stringForm(arg) ? std::optional(0) : std::nullopt;
    case CType::Integer:
      return parseNumber<RBInteger>(arg) ? std::optional(0) : std::nullopt;
    case CType::Color:
      return parseNumber<std::int64_t>(arg) ? std::optional(0) : std::nullopt;
    case CType::Double:
      return parseNumber<double>(arg) ? std::optional(0) : std::nullopt;
    case CType::Boolean:
      return arg == "true" || arg == "false" ? std::optional(0) : std::nullopt;
    case CType::Ptr:
      return arg.starts_with("ptr:") && parseHex(arg.substr(4)) ? std::optional(1) : std::nullopt;
    case CType::Object:
      if (arg == "nil") return 0;
      if (parameter.type == "memoryblock" && arg.starts_with("mem:") && parseHex(arg.substr(4))) {
        return 1;
      }
      return std::nullopt;
    case CType::Array:
    case CType::Void:
      return std::nullopt;
  }
  return std::nullopt;
}

// A declared default value in ARG form.
std::string defaultArgument(const Parameter& parameter) {
  std::string_view value = *parameter.defaultValue;
  const auto type = detail::cTypeOfDeclared(parameter.type);
  if (type == CType::String) {
    if (value.size() >= 2 && value.front() == '"' && value.back() == '"') {
      value = value.substr(1, value.size() - 2);
      return value.empty() ? "nil" : "text:" + std::string(value);
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
};

Choice choose(std::string_view name, const std::vector<std::string>& args) {
  std::vector<const RegisteredMember*> callable;
  for (const RegisteredMember* member : detail::membersNamed(name)) {
    const bool global = member->kind == RegisteredMember::Kind::Method ||
                        member->kind == RegisteredMember::Kind::ModuleMethod;
    if (global && (callable.empty() || callable.front()->kind == member->kind)) {
      callable.push_back(member);
    }
  }
  if (callable.empty()) throw std::invalid_argument("unknown function " + std::string(name));
  Choice best;
  int bestScore = -1;
  std::string complaint;
  int countFits = 0;
  for (const RegisteredMember* member : callable) {
    const auto& parameters = member->parsed.parameters;
    if (args.size() > parameters.size()) continue;
    bool countFitsThis = true;
    for (std::size_t i = args.size(); i < parameters.size(); ++i) {
      countFitsThis = countFitsThis && parameters[i].defaultValue.has_value();
    }
    if (!countFitsThis) continue;
    ++countFits;
    Choice choice{member, args};
    int score = 0;
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      if (i >= args.size()) choice.args.push_back(defaultArgument(parameters[i]));
      const auto fits = fit(parameters[i], choice.args[i]);
      if (!fits) {
        complaint = "argument " + std::to_string(i + 1) + " (" + choice.args[i] +
                    ") is not a valid " + parameters[i].type + " for " + member->declaration;
        score = -1;
        break;
      }
      score += *fits;
    }
    if (score > bestScore) {
      best = std::move(choice);
      bestScore = score;
    }
  }
  if (best.member != nullptr) return best;
  if (countFits == 0) {
    throw std::invalid_argument("no overload of " + std::string(name) + " takes " +
                                std::to_string(args.size()) + " arguments");
  }
  if (countFits == 1) throw std::invalid_argument(complaint);
  throw std::invalid_argument("no overload of " + std::string(name) + " fits the arguments");
}

// RBInteger is as wide as a pointer: 64-bit on 64-bit targets, 32-bit on 32-bit ones.
ffi_type* const kRBIntegerType =
    sizeof(RBInteger) == sizeof(std::int64_t) ? &ffi_type_sint64 : &ffi_type_sint32;

ffi_type* ffiType(CType type) {
  switch (type) {
    case CType::Void:
      return &ffi_type_void;
    case CType::Integer:
      return kRBIntegerType;
    case CType::Boolean:
      return &ffi_type_sint8;
    case CType::Double:
      return &ffi_type_double;
    case CType::Color:
      return &ffi_type_uint32;
    case CType::String:
    case CType::Ptr:
    case CType::Object:
    case CType::Array:
      return &ffi_type_pointer;
  }
  return &ffi_type_void;
}

// One C argument and what the host made for it.
struct Argument {
  union {
    void* pointer;
    RBInteger integer;
    std::int8_t boolean;
    double real;
    std::uint32_t color;
  } value{};
  REALstring string = nullptr;
  REALobject object = nullptr;
  std::vector<char> buffer;  // a vector keeps its bytes in place when the argument moves
};

Argument makeArgument(const Parameter& parameter, const std::string& arg) {
  Argument argument;
  switch (*detail::cTypeOfDeclared(parameter.type)) {
    case CType::String: {
      const StringForm form = *stringForm(arg);
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
      const std::string bytes = *parseHex(arg.substr(4));
      argument.buffer.assign(bytes.begin(), bytes.end());
      argument.buffer.push_back('\0');
      argument.value.pointer = argument.buffer.data();
      break;
    }
    case CType::Object:
      if (arg != "nil") argument.object = makeMemoryBlock(*parseHex(arg.substr(4)));
      argument.value.pointer = argument.object;
      break;
    case CType::Array:
    case CType::Void:
      break;
  }
  return argument;
}

void describeString(REALstring s, std::string& json, std::string& text) {
  if (s == nullptr) {
    json = "null";
    text = "nil";
    return;
  }
  const std::string bytes = stringBytes(s);
  const std::uint32_t encoding = stringEncoding(s);
  json = "{\"encoding\": " + std::to_string(encoding) + ", \"hex\": \"" + hexOf(bytes) + "\"";
  const std::string name = " (" + detail::encodingName(encoding) + ")";
  if (detail::isValidIn(bytes, encoding)) {
    const std::string utf8 = *detail::convertBytes(bytes, encoding, encoding::kUTF8);
    json += ", \"text\": " + json::quote(utf8);
    text = utf8 + name;
  } else {
    text = "hex:" + hexOf(bytes) + name;
  }
  json += "}";
}

struct Described {
  std::string json;
  std::string text;
};

Described describeResult(CType type, const ffi_arg& raw, double real) {
  Described out;
  const auto pointer = reinterpret_cast<void*>(static_cast<std::uintptr_t>(raw));
  std::array<char, 40> number{};
  switch (type) {
    case CType::Void:
      out = {"null", ""};
      break;
    case CType::Integer:
      out.json = out.text = std::to_string(static_cast<RBInteger>(raw));
      break;
    case CType::Color:
      out.json = out.text = std::to_string(static_cast<std::uint32_t>(raw));
      break;
    case CType::Boolean:
      out.json = out.text = static_cast<std::int8_t>(raw) != 0 ? "true" : "false";
      break;
    case CType::Double:
      std::snprintf(number.data(), number.size(), "%.17g", real);
      out.json = out.text = number.data();
      break;
    case CType::Ptr:
      out.json = out.text = std::to_string(reinterpret_cast<std::uintptr_t>(pointer));
      break;
    case CType::String:
      describeString(static_cast<REALstring>(pointer), out.json, out.text);
      break;
    case CType::Object:
      if (pointer == nullptr) {
        out = {"null", "nil"};
      } else {
        const std::string hex = hexOf(memoryBlockBytes(static_cast<REALobject>(pointer)));
        out = {"{\"hex\": \"" + hex + "\"}", "mem:" + hex};
      }
      break;
    case CType::Array:
      if (pointer == nullptr) {
        out = {"null", "nil"};
        break;
      }
      out = {"[", ""};
      if (const auto* array = detail::objectData<detail::StringArrayData>(
              static_cast<REALobject>(pointer), "result array")) {
        for (REALstring item : array->items) {
          Described element;
          describeString(item, element.json, element.text);
          out.json += (out.json.size() > 1 ? ", " : "") + element.json;
          out.text += (out.text.empty() ? "" : "\n") + element.text;
        }
      }
      out.json += "]";
      break;
  }
  return out;
}

void releaseValue(CType type, void* pointer) {
  if (pointer == nullptr) return;
  if (type == CType::String) release(static_cast<REALstring>(pointer));
  if (type == CType::Object || type == CType::Array) release(static_cast<REALobject>(pointer));
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
  arguments.reserve(choice.args.size());
  std::vector<ffi_type*> types;
  std::vector<void*> values;
  for (std::size_t i = 0; i < choice.args.size(); ++i) {
    arguments.push_back(makeArgument(member.parsed.parameters[i], choice.args[i]));
    types.push_back(ffiType(*signature.parameters[i]));
    values.push_back(&arguments.back().value);
  }
  ffi_cif cif{};
  if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()),
                   ffiType(*signature.result), types.data()) != FFI_OK) {
    throw std::invalid_argument("cannot build a call to " + member.declaration);
  }
  union {
    ffi_arg integer;
    double real;
  } result{};
  ffi_call(&cif, reinterpret_cast<void (*)()>(member.function), &result, values.data());

  CallOutcome outcome;
  outcome.declaration = member.declaration;
  const bool real = *signature.result == CType::Double;
  const Described described =
      describeResult(*signature.result, real ? ffi_arg{} : result.integer, real ? result.real : 0);
  outcome.resultJson = described.json;
  outcome.resultText = described.text;
  outcome.exception = takeRaisedException();
  if (!real) {
    releaseValue(*signature.result,
                 reinterpret_cast<void*>(static_cast<std::uintptr_t>(result.integer)));
  }
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
  std::string json = "{\"function\": " + json::quote(outcome.declaration) +
                     ", \"result\": " + outcome.resultJson + ", \"exception\": ";
  if (outcome.exception) {
    json += "{\"class\": " + json::quote(outcome.exception->className) +
            ", \"message\": " + json::quote(outcome.exception->message) + "}";
  } else {
    json += "null";
  }
  return json + ", \"leaked\": {\"strings\": " + std::to_string(outcome.leaked.strings) +
         ", \"objects\": " + std::to_string(outcome.leaked.objects) + "}}";
}

std::string outcomeText(const CallOutcome& outcome) {
  std::string text = outcome.resultText;
  if (outcome.exception) {
    text += (text.empty() ? "" : "\n") + std::string("exception ") + outcome.exception->className +
            ": " + outcome.exception->message;
  }
  return text;
}

std::string callJson(std::string_view name, const std::vector<std::string>& args) {
  return outcomeJson(callDynamic(name, args));
}

}  // namespace zelhost
