#include "json.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cstdio>
#include <stdexcept>

#include "encodings.h"

namespace zelhost::json {
namespace {

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  Value document() {
    Value value = parseValue();
    skipBlanks();
    if (position_ != text_.size()) fail("text after the value");
    return value;
  }

 private:
  [[noreturn]] void fail(const std::string& why) const {
    throw std::invalid_argument("malformed JSON at offset " + std::to_string(position_) + ": " +
                                why);
  }

  void skipBlanks() {
    while (position_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[position_]))) {
      ++position_;
    }
  }

  bool take(char c) {
    skipBlanks();
    if (position_ < text_.size() && text_[position_] == c) {
      ++position_;
      return true;
    }
    return false;
  }

  void expect(char c) {
    if (!take(c)) fail(std::string("expected '") + c + "'");
  }

  bool takeWord(std::string_view word) {
    if (text_.substr(position_, word.size()) != word) return false;
    position_ += word.size();
    return true;
  }

  Value parseValue() {
    skipBlanks();
    if (position_ >= text_.size()) fail("unexpected end");
    const char c = text_[position_];
    if (c == '{') return parseObject();
    if (c == '[') return parseArray();
    if (c == '"') return {parseString()};
    if (takeWord("true")) return {true};
    if (takeWord("false")) return {false};
    if (takeWord("null")) return {nullptr};
    return parseNumber();
  }

  Value parseObject() {
    expect('{');
    auto object = std::make_shared<Object>();
    if (!take('}')) {
      do {
        skipBlanks();
        std::string key = parseString();
        expect(':');
        (*object)[std::move(key)] = parseValue();
      } while (take(','));
      expect('}');
    }
    return {object};
  }

  Value parseArray() {
    expect('[');
    auto array = std::make_shared<Array>();
    if (!take(']')) {
      do {
        array->push_back(parseValue());
      } while (take(','));
      expect(']');
    }
    return {array};
  }

  Value parseNumber() {
    double number = 0;
    const char* begin = text_.data() + position_;
    const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), number);
    if (error != std::errc() || end == begin) fail("expected a value");
    position_ += static_cast<std::size_t>(end - begin);
    return {number};
  }

  unsigned hex4() {
    unsigned value = 0;
    if (position_ + 4 > text_.size()) fail("short \\u escape");
    const auto [end, error] =
        std::from_chars(text_.data() + position_, text_.data() + position_ + 4, value, 16);
    if (error != std::errc() || end != text_.data() + position_ + 4) fail("bad \\u escape");
    position_ += 4;
    return value;
  }

  std::string parseString() {
    if (position_ >= text_.size() || text_[position_] != '"') fail("expected a string");
    ++position_;
    std::string out;
    while (position_ < text_.size() && text_[position_] != '"') {
      const char c = text_[position_++];
      if (c != '\\') {
        out.push_back(c);
        continue;
      }
      if (position_ >= text_.size()) break;
      const char escaped = text_[position_++];
      switch (escaped) {
        case 'b':
          out.push_back('\b');
          break;
        case 'f':
          out.push_back('\f');
          break;
        case 'n':
          out.push_back('\n');
          break;
        case 'r':
          out.push_back('\r');
          break;
        case 't':
          out.push_back('\t');
          break;
        case 'u': {
          char32_t unit = hex4();
          if (unit >= 0xD800 && unit <= 0xDBFF && takeWord("\\u")) {
            const char32_t low = hex4();
            unit = low >= 0xDC00 && low <= 0xDFFF
                       ? 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00)
                       : 0xFFFD;
          } else if (unit >= 0xD800 && unit <= 0xDFFF) {
            unit = 0xFFFD;
          }
          detail::appendUtf8(out, unit);
          break;
        }
        default:
          out.push_back(escaped);
      }
    }
    if (position_ >= text_.size()) fail("unterminated string");
    ++position_;
    return out;
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

Value parse(std::string_view text) {
  return Parser(text).document();
}

std::string quote(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    switch (c) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (static_cast<unsigned char>(c) < 0x20) {
          std::array<char, 8> escape{};
          std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned char>(c));
          out += escape.data();
        } else {
          out.push_back(c);
        }
    }
  }
  return out + "\"";
}

}  // namespace zelhost::json
