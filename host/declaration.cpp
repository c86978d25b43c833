// Declarations as the host reads them: "Name(p as T = default, ...) as R", keywords and types in
// any case.
#include <strings.h>

#include <algorithm>
#include <cctype>

#include "stand_in_host.h"

namespace zelhost {
namespace {

std::string_view trim(std::string_view text) {
  const auto isSpace = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
  while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
  return text;
}

std::string normalisedType(std::string_view type) {
  std::string normalised;
  for (const char c : trim(type)) {
    if (!std::isspace(static_cast<unsigned char>(c))) {
      normalised.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
    }
  }
  return normalised;
}

bool startsWithWord(std::string_view text, std::string_view word) {
  return text.size() > word.size() && strncasecmp(text.data(), word.data(), word.size()) == 0 &&
         std::isspace(static_cast<unsigned char>(text[word.size()]));
}

// Position of " as " (any case, any surrounding blanks) at nesting depth 0, or npos.
std::size_t findAs(std::string_view text) {
  for (std::size_t i = 1; i + 3 < text.size(); ++i) {
    if (std::isspace(static_cast<unsigned char>(text[i - 1])) &&
        strncasecmp(text.data() + i, "as", 2) == 0 &&
        std::isspace(static_cast<unsigned char>(text[i + 2]))) {
      return i;
    }
  }
  return std::string_view::npos;
}

Parameter parseParameter(std::string_view text) {
  Parameter parameter;
  for (const auto& [keyword, flag] :
       {std::pair{"extends", &Parameter::extends}, std::pair{"assigns", &Parameter::assigns}}) {
    if (startsWithWord(text, keyword)) {
      parameter.*flag = true;
      text = trim(text.substr(std::string_view(keyword).size()));
    }
  }
  for (const std::string_view passing : {"byref", "byval"}) {
    if (startsWithWord(text, passing)) text = trim(text.substr(passing.size()));
  }
  if (const std::size_t equals = text.find('='); equals != std::string_view::npos) {
    parameter.defaultValue = std::string(trim(text.substr(equals + 1)));
    text = trim(text.substr(0, equals));
  }
  const std::size_t as = findAs(text);
  parameter.name = std::string(trim(text.substr(0, as)));
  if (as != std::string_view::npos) parameter.type = normalisedType(text.substr(as + 2));
  return parameter;
}

}  // namespace

Declaration parseDeclaration(std::string_view text) {
  text = trim(text);
  Declaration declaration;
  const std::size_t open = text.find('(');
  if (open == std::string_view::npos) {
    const std::size_t as = findAs(text);
    declaration.name = std::string(trim(text.substr(0, as)));
    if (as != std::string_view::npos) declaration.resultType = normalisedType(text.substr(as + 2));
    return declaration;
  }
  declaration.name = std::string(trim(text.substr(0, open)));
  int depth = 0;
  bool quoted = false;
  std::size_t start = open + 1;
  std::size_t i = open + 1;
  for (; i < text.size(); ++i) {
    const char c = text[i];
    if (c == '"') quoted = !quoted;
    if (quoted) continue;
    if (c == '(') ++depth;
    if (c == ')' && depth-- == 0) break;
    if (c == ',' && depth == 0) {
      if (const auto piece = trim(text.substr(start, i - start)); !piece.empty()) {
        declaration.parameters.push_back(parseParameter(piece));
      }
      start = i + 1;
    }
  }
  if (const auto piece = trim(text.substr(start, i - start)); !piece.empty()) {
    declaration.parameters.push_back(parseParameter(piece));
  }
  const std::string_view rest = i < text.size() ? trim(text.substr(i + 1)) : std::string_view();
  if (rest.size() > 2 && strncasecmp(rest.data(), "as", 2) == 0) {
    declaration.resultType = normalisedType(rest.substr(2));
  }
  return declaration;
}

bool sameSignature(const Declaration& a, const Declaration& b) {
  const auto sameParameter = [](const Parameter& x, const Parameter& y) {
    return x.type == y.type && x.extends == y.extends && x.assigns == y.assigns;
  };
  return a.name.size() == b.name.size() &&
         strncasecmp(a.name.c_str(), b.name.c_str(), a.name.size()) == 0 &&
         a.resultType == b.resultType &&
         std::equal(a.parameters.begin(), a.parameters.end(), b.parameters.begin(),
                    b.parameters.end(), sameParameter);
}

}  // namespace zelhost
