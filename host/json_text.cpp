#include "json_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <optional>
#include <stdexcept>

namespace zelhost {
namespace {

constexpr int kSignificantDigits = 17;
constexpr unsigned char kSurrogateLead = 0xED;
constexpr unsigned char kSurrogateMarker = 0xA0;  // second byte 0xA0..0xBF: U+D800..U+DFFF
constexpr unsigned char kContinuationMask = 0xC0;
constexpr unsigned char kContinuation = 0x80;

void appendEscaped(std::string& out, std::string_view text) {
  const std::string quoted =
      Json(std::string(text)).dump(-1, ' ', false, Json::error_handler_t::replace);
  out.append(quoted, 1, quoted.size() - 2);
}

bool isSurrogateAt(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  return at + 2 < text.size() && byte(at) == kSurrogateLead &&
         (byte(at + 1) & 0xE0) == kSurrogateMarker &&
         (byte(at + 2) & kContinuationMask) == kContinuation;
}

void appendString(std::string& out, std::string_view text) {
  out.push_back('"');
  std::size_t start = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (!isSurrogateAt(text, at)) continue;
    appendEscaped(out, text.substr(start, at - start));
    const unsigned unit = 0xD000U | (static_cast<unsigned char>(text[at + 1]) & 0x3FU) << 6 |
                          (static_cast<unsigned char>(text[at + 2]) & 0x3FU);
    std::array<char, 8> escape{};
    std::snprintf(escape.data(), escape.size(), "\\u%04x", unit);
    out += escape.data();
    at += 2;
    start = at + 1;
  }
  appendEscaped(out, text.substr(start));
  out.push_back('"');
}

void appendDouble(std::string& out, double value) {
  std::array<char, 40> digits{};
  std::snprintf(digits.data(), digits.size(), "%.*g", kSignificantDigits, value);
  out += digits.data();
}

class Writer {
 public:
  explicit Writer(std::initializer_list<std::string_view> oneItemPerLine)
      : oneItemPerLine_(oneItemPerLine) {}

  void write(const Json& value, const std::string& pointer) {
    switch (value.type()) {
      case Json::value_t::object:
        writeItems(value, pointer, '{', '}');
        break;
      case Json::value_t::array:
        writeItems(value, pointer, '[', ']');
        break;
      case Json::value_t::string:
        appendString(out_, value.get_ref<const std::string&>());
        break;
      case Json::value_t::number_float:
        appendDouble(out_, value.get<double>());
        break;
      default:
        out_ += value.dump();
    }
  }

  std::string take() { return std::move(out_); }

 private:
  void writeItems(const Json& container, const std::string& pointer, char open, char close) {
    out_.push_back(open);
    const std::size_t lineStart = out_.rfind('\n') + 1;  // npos + 1 is 0
    const bool wrapped =
        std::find(oneItemPerLine_.begin(), oneItemPerLine_.end(), pointer) != oneItemPerLine_.end();
    const std::string separator =
        wrapped ? ",\n" + std::string(out_.size() - lineStart, ' ') : ", ";
    bool first = true;
    for (const auto& item : container.items()) {
      if (!first) out_ += separator;
      first = false;
      if (container.is_object()) {
        appendString(out_, item.key());
        out_ += ": ";
      }
      write(item.value(), pointer + "/" + item.key());
    }
    out_.push_back(close);
  }

  std::initializer_list<std::string_view> oneItemPerLine_;
  std::string out_;
};

constexpr std::size_t kEscapeLength = 6;  // \uXXXX
constexpr std::string_view kReplacementEscape = "\\ufffd";

// The UTF-16 unit of the \u escape at `at`, if there is one.
std::optional<unsigned> escapedUnit(std::string_view text, std::size_t at) {
  if (text.substr(at, 2) != "\\u" || at + kEscapeLength > text.size()) return std::nullopt;
  unsigned unit = 0;
  const char* digits = text.data() + at + 2;
  const auto [end, error] = std::from_chars(digits, digits + 4, unit, 16);
  if (error != std::errc() || end != digits + 4) return std::nullopt;
  return unit;
}

bool isHighSurrogate(unsigned unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool isLowSurrogate(unsigned unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

// nlohmann-json refuses unpaired surrogate escapes; they become U+FFFD here first.
std::string withUnpairedSurrogatesReplaced(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    if (text[at] != '\\') {
      out.push_back(text[at++]);
      continue;
    }
    const auto unit = escapedUnit(text, at);
    if (!unit) {  // another escape: copy it whole so that "\\u" is not misread
      out.append(text.substr(at, 2));
      at += 2;
      continue;
    }
    const auto next = escapedUnit(text, at + kEscapeLength);
    if (isHighSurrogate(*unit) && next && isLowSurrogate(*next)) {
      out.append(text.substr(at, 2 * kEscapeLength));
      at += 2 * kEscapeLength;
      continue;
    }
    const bool unpaired = isHighSurrogate(*unit) || isLowSurrogate(*unit);
    out.append(unpaired ? kReplacementEscape : text.substr(at, kEscapeLength));
    at += kEscapeLength;
  }
  return out;
}

}  // namespace

std::string jsonText(const Json& value, std::initializer_list<std::string_view> oneItemPerLine) {
  Writer writer(oneItemPerLine);
  writer.write(value, "");
  return writer.take();
}

Json parseJson(std::string_view text) {
  try {
    return Json::parse(withUnpairedSurrogatesReplaced(text));
  } catch (const Json::parse_error& error) {
    // nlohmann prefixes "[json.exception.parse_error.N] "; the rest says what and where.
    const std::string_view what = error.what();
    const std::size_t tag = what.find("] ");
    throw std::invalid_argument("malformed JSON: " + std::string(tag == std::string_view::npos
                                                                     ? what
                                                                     : what.substr(tag + 2)));
  }
}

}  // namespace zelhost
