#include "calls.h"

#include <strings.h>

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <unordered_map>

#include "registration.h"

namespace zelhost {
namespace detail {
namespace {

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

int kindRank(RegisteredMember::Kind kind) {
  switch (kind) {
    case RegisteredMember::Kind::Method:
      return 0;
    case RegisteredMember::Kind::ClassExtensionMethod:
      return 1;
    case RegisteredMember::Kind::ModuleMethod:
      return 2;
    case RegisteredMember::Kind::ModuleProperty:
      return 3;
  }
  return 4;
}

// "Owner.Name" splits into owner and name; a plain name has no owner.
std::pair<std::string_view, std::string_view> splitOwner(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  if (dot == std::string_view::npos) return {{}, name};
  return {name.substr(0, dot), name.substr(dot + 1)};
}

std::string describe(std::optional<CType> type) {
  if (!type) return "unmodelled";
  switch (*type) {
    case CType::Void:
      return "void";
    case CType::String:
      return "REALstring";
    case CType::Integer:
      return "RBInteger";
    case CType::Boolean:
      return "RBBoolean";
    case CType::Double:
      return "double";
    case CType::Ptr:
      return "void*";
    case CType::Color:
      return "RBColor";
    case CType::Object:
      return "REALobject";
    case CType::Array:
      return "REALarray";
  }
  return "?";
}

std::string describe(const CSignature& signature) {
  std::string text = "(";
  for (const auto& parameter : signature.parameters) {
    if (text.size() > 1) text += ", ";
    text += describe(parameter);
  }
  return text + ") -> " + describe(signature.result);
}

bool matches(const CSignature& signature, std::initializer_list<CType> arguments, CType result) {
  return signature.result == result &&
         std::equal(signature.parameters.begin(), signature.parameters.end(), arguments.begin(),
                    arguments.end(), [](const std::optional<CType>& wanted, CType given) {
                      return wanted == given;
                    });
}

}  // namespace

std::vector<const RegisteredMember*> membersNamed(std::string_view text) {
  const Registration& all = registration();
  std::vector<const RegisteredMember*> found;
  if (text.find('(') != std::string_view::npos) {
    for (const RegisteredMember& member : all.members) {
      if (member.declaration == text) found.push_back(&member);
    }
    Declaration wanted = parseDeclaration(text);
    const auto [owner, name] = splitOwner(wanted.name);
    wanted.name = std::string(name);
    for (const RegisteredMember& member : all.members) {
      if (sameSignature(member.parsed, wanted) &&
          (owner.empty() || equalIgnoringCase(owner, member.owner)) &&
          std::find(found.begin(), found.end(), &member) == found.end()) {
        found.push_back(&member);
      }
    }
  } else {
    const auto [owner, name] = splitOwner(text);
    for (const RegisteredMember& member : all.members) {
      if (equalIgnoringCase(member.parsed.name, name) &&
          (owner.empty() || equalIgnoringCase(owner, member.owner))) {
        found.push_back(&member);
      }
    }
  }
  std::stable_sort(found.begin(), found.end(), [](const auto* a, const auto* b) {
    return kindRank(a->kind) < kindRank(b->kind);
  });
  return found;
}

std::optional<CType> cTypeOfDeclared(std::string_view type) {
  static const std::unordered_map<std::string_view, CType> primitives = {
      {"", CType::Void},         {"string", CType::String},   {"integer", CType::Integer},
      {"int64", CType::Integer}, {"boolean", CType::Boolean}, {"double", CType::Double},
      {"ptr", CType::Ptr},       {"color", CType::Color},     {"string()", CType::Array},
  };
  if (const auto found = primitives.find(type); found != primitives.end()) return found->second;
  static const std::vector<std::string_view> unmodelled = {
      "int8",     "int16", "int32",   "uint8",   "uint16",  "uint32",  "uint64", "single",
      "currency", "text",  "variant", "cstring", "wstring", "pstring", "auto"};
  if (type.ends_with("()") ||
      std::find(unmodelled.begin(), unmodelled.end(), type) != unmodelled.end()) {
    return std::nullopt;
  }
  return CType::Object;
}

CSignature cSignature(const RegisteredMember& member, Through through) {
  CSignature signature;
  if (member.kind == RegisteredMember::Kind::ClassExtensionMethod) {
    signature.parameters.push_back(CType::Object);
  }
  for (const Parameter& parameter : member.parsed.parameters) {
    signature.parameters.push_back(cTypeOfDeclared(parameter.type));
  }
  if (through == Through::Setter) {
    signature.parameters.push_back(cTypeOfDeclared(member.parsed.resultType));
    signature.result = CType::Void;
  } else {
    signature.result = cTypeOfDeclared(member.parsed.resultType);
  }
  return signature;
}

REALproc resolveCall(std::string_view declaration, std::initializer_list<CType> arguments,
                     CType result, Through through) {
  static std::mutex cacheMutex;
  static std::unordered_map<std::string, REALproc> cache;
  static std::uint64_t cachedGeneration = 0;
  std::string key(declaration);
  key.push_back('|');
  for (const CType argument : arguments) key.push_back(static_cast<char>(argument));
  key.push_back(static_cast<char>(result));
  key.push_back(through == Through::Setter ? '=' : '!');
  {
    const std::lock_guard lock(cacheMutex);
    if (cachedGeneration != registrationGeneration()) {
      cache.clear();
      cachedGeneration = registrationGeneration();
    }
    if (const auto found = cache.find(key); found != cache.end()) return found->second;
  }
  const auto members = membersNamed(declaration);
  std::string candidates;
  for (const RegisteredMember* member : members) {
    const CSignature signature = cSignature(*member, through);
    const REALproc function = through == Through::Setter ? member->setter : member->function;
    candidates += "\n  " + member->declaration + " " + describe(signature);
    if (!matches(signature, arguments, result)) continue;
    if (function == nullptr || function == kPlainOffsetAccessor) {
      candidates += " (no callable function)";
      continue;
    }
    const std::lock_guard lock(cacheMutex);
    cache.emplace(key, function);
    return function;
  }
  std::string given = "(";
  for (const CType argument : arguments) {
    if (given.size() > 1) given += ", ";
    given += describe(argument);
  }
  given += ") -> " + describe(result);
  throw std::logic_error("no registered " +
                         std::string(through == Through::Setter ? "setter" : "function") +
                         " for \"" + std::string(declaration) + "\" takes " + given +
                         (candidates.empty() ? std::string(": nothing of that name is registered")
                                             : "; candidates:" + candidates));
}

}  // namespace detail

const RegisteredMember* findMethod(std::string_view declarationOrName) {
  const auto members = detail::membersNamed(declarationOrName);
  return members.empty() ? nullptr : members.front();
}

}  // namespace zelhost
