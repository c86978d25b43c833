#include "styledtext/rtf_reader.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "styledtext/code_page_table.h"
#include "styledtext/style_run.h"

namespace zel::styledtext {
namespace {

constexpr std::int64_t kNoParameter = -1;

struct Rgb {
  std::uint32_t red = 0;
  std::uint32_t green = 0;
  std::uint32_t blue = 0;
};

struct GroupState {
  std::size_t font = 0;  // slot in the font-name pool; slot 0 is the empty name
  std::int64_t size = 0;
  std::uint32_t encoding = ::encoding::kWindowsLatin1;
  Rgb color;
  bool bold = false;
  bool italic = false;
  bool underline = false;
};

// The style captured when text first needs a run; later changes do not reach it.
// The open groups' states. Groups opened without a change of their own share one entry, so that
// deep nesting costs no memory per level until a level changes its style.
class GroupStack {
 public:
  bool empty() const { return levels_.empty(); }

  // The innermost group's state, or the default state outside every group.
  const GroupState& top() const {
    static const GroupState kNoGroup;
    return levels_.empty() ? kNoGroup : levels_.back().state;
  }

  void open() {
    if (levels_.empty()) {
      levels_.push_back({GroupState{}, 1});
    } else {
      ++levels_.back().depth;
    }
  }

  void close() {
    if (--levels_.back().depth == 0) levels_.pop_back();
  }

  // The innermost group's own state, to change; not empty.
  GroupState& changeTop() {
    if (levels_.back().depth > 1) {
      --levels_.back().depth;
      levels_.push_back({levels_.back().state, 1});
    }
    return levels_.back().state;
  }

 private:
  struct Shared {
    GroupState state;
    std::size_t depth;  // how many nested groups hold this state unchanged
  };
  std::vector<Shared> levels_;
};

struct PendingRun {
  std::size_t font;
  std::int64_t size;
  std::uint32_t textColor;
  bool bold;
  bool italic;
  bool underline;
};

struct ControlWord {
  std::string_view word;
  std::int64_t parameter = kNoParameter;
};

// Destination words come first; the rest change the current group's style.
enum class WordAction : std::uint8_t {
  kIgnore,
  kUnicode,
  kFontTable,
  kColorTable,
  kParagraph,
  kCodePage,
  kAnsi,
  kMac,
  kBold,
  kItalic,
  kUnderline,
  kUnderlineNone,
  kColor,
  kFont,
  kAlignCentre,
  kAlignRight,
  kAlignLeft,
  kFontSize,
  kCount,
};

struct KnownWord {
  std::string_view word;
  WordAction action;
};

// Sorted by word for binary search.
constexpr std::array<KnownWord, 25> kKnownWords{{
    {"ansi", WordAction::kAnsi},
    {"ansicpg", WordAction::kCodePage},
    {"b", WordAction::kBold},
    {"cf", WordAction::kColor},
    {"colortbl", WordAction::kColorTable},
    {"f", WordAction::kFont},
    {"fonttbl", WordAction::kFontTable},
    {"fs", WordAction::kFontSize},
    {"i", WordAction::kItalic},
    {"mac", WordAction::kMac},
    {"paperh", WordAction::kIgnore},
    {"paperw", WordAction::kIgnore},
    {"par", WordAction::kParagraph},
    {"pard", WordAction::kIgnore},
    {"pardirnatural", WordAction::kIgnore},
    {"partightenfactor", WordAction::kIgnore},
    {"qc", WordAction::kAlignCentre},
    {"qj", WordAction::kAlignLeft},
    {"ql", WordAction::kAlignLeft},
    {"qr", WordAction::kAlignRight},
    {"rtf", WordAction::kIgnore},
    {"u", WordAction::kUnicode},
    {"ul", WordAction::kUnderline},
    {"ulnone", WordAction::kUnderlineNone},
    {"upr", WordAction::kFontSize},  // kept as a second spelling of "fs"
}};

static_assert(std::is_sorted(kKnownWords.begin(), kKnownWords.end(),
                             [](const KnownWord& a, const KnownWord& b) {
                               return a.word < b.word;
                             }));

std::optional<WordAction> actionFor(std::string_view word) {
  const auto* known =
      std::lower_bound(kKnownWords.begin(), kKnownWords.end(), word,
                       [](const KnownWord& entry, std::string_view w) { return entry.word < w; });
  if (known != kKnownWords.end() && known->word == word) return known->action;
  return std::nullopt;
}

// Bytes that end a stretch of plain text.
constexpr std::array<bool, 256> kTextStops = [] {
  std::array<bool, 256> stops{};
  for (const unsigned char c : {'{', '}', '\\', '\r', '\n'}) stops[c] = true;
  return stops;
}();

constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
constexpr bool isLowercase(char c) {
  return c >= 'a' && c <= 'z';
}

constexpr int hexValue(char c) {
  if (isDigit(c)) return c - '0';
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

// Walks the input; every read is bounds-checked, so truncated input just ends.
class Cursor {
 public:
  explicit Cursor(std::string_view input) : input_(input) {}

  bool atEnd() const { return at_ >= input_.size(); }
  char peek(std::size_t ahead = 0) const {
    return at_ + ahead < input_.size() ? input_[at_ + ahead] : '\0';
  }
  bool nextIs(char c, std::size_t ahead = 0) const {
    return at_ + ahead < input_.size() && input_[at_ + ahead] == c;
  }
  void advance(std::size_t count = 1) { at_ = std::min(input_.size(), at_ + count); }

  std::string_view takeText() {
    const std::size_t start = at_;
    while (at_ < input_.size() && !kTextStops[static_cast<unsigned char>(input_[at_])]) ++at_;
    return input_.substr(start, at_ - start);
  }

  // After "\'": up to two hexadecimal digits; nullopt when none follows.
  std::optional<char> takeHexByte() {
    int value = 0;
    int digits = 0;
    while (digits < 2 && !atEnd() && hexValue(peek()) >= 0) {
      value = value * 16 + hexValue(peek());
      ++digits;
      advance();
    }
    if (digits == 0) return std::nullopt;
    return static_cast<char>(value);
  }

  // A CR taken here takes a following LF with it.
  void takeLineBreak() {
    const bool carriageReturn = nextIs('\r');
    advance();
    if (carriageReturn && nextIs('\n')) advance();
  }

  // After a word and its number: one delimiter byte of any kind, except those that start
  // something of their own.
  void takeDelimiter() {
    if (atEnd()) return;
    const char c = peek();
    if (c == '\\' || c == '{' || c == '}' || c == ';') return;
    takeLineBreak();
  }

  // After the backslash. Numbers wrap at 64 bits, as do the units cut from them.
  ControlWord takeControlWord(bool afterOpenBrace) {
    if (afterOpenBrace && nextIs('*') && nextIs('\\', 1)) advance(2);
    ControlWord result;
    const std::size_t start = at_;
    while (!atEnd() && isLowercase(peek())) advance();
    result.word = input_.substr(start, at_ - start);
    if (!atEnd() && (isDigit(peek()) || peek() == '-')) {
      const bool negative = peek() == '-';
      if (negative) advance();
      std::uint64_t value = 0;
      while (!atEnd() && isDigit(peek())) {
        value = value * 10 + static_cast<std::uint64_t>(peek() - '0');
        advance();
      }
      result.parameter = static_cast<std::int64_t>(negative ? 0 - value : value);
    }
    takeDelimiter();
    return result;
  }

 private:
  std::string_view input_;
  std::size_t at_ = 0;
};

// Brace nesting, and how deep inside a destination being skipped the scanner is.
class GroupNesting {
 public:
  void open() {
    ++depth_;
    if (skipDepth_ > 0) ++skipDepth_;
    afterOpenBrace_ = true;
  }
  // False for a closing brace without an open group; nothing changes then.
  bool close() {
    if (depth_ == 0) return false;
    --depth_;
    if (skipDepth_ > 0) --skipDepth_;
    return true;
  }
  // Everything but an opening brace ends the "right after a brace" position.
  void endToken() { afterOpenBrace_ = false; }
  bool afterOpenBrace() const { return afterOpenBrace_; }
  bool skipping() const { return skipDepth_ > 0; }
  void skipCurrentGroup() { skipDepth_ = 1; }

 private:
  std::size_t depth_ = 0;
  std::int64_t skipDepth_ = 0;
  bool afterOpenBrace_ = false;
};

// What a style word may change: the current group, or the document-wide paragraph alignment.
struct StyleTarget {
  GroupState& group;
  std::int64_t& alignment;
  const std::vector<Rgb>& colors;
  const std::map<std::int64_t, std::size_t>& fonts;
};

using StyleSetter = void (*)(StyleTarget& target, std::int64_t parameter);

constexpr std::size_t indexOf(WordAction action) {
  return static_cast<std::size_t>(action);
}

// A word without a number switches its attribute on.
constexpr std::array<StyleSetter, indexOf(WordAction::kCount)> kStyleSetters = [] {
  std::array<StyleSetter, indexOf(WordAction::kCount)> setters{};
  setters[indexOf(WordAction::kCodePage)] = [](StyleTarget& target, std::int64_t value) {
    target.group.encoding = encodingForCodePage(value);
  };
  setters[indexOf(WordAction::kAnsi)] = [](StyleTarget& target, std::int64_t) {
    target.group.encoding = encoding::kWindowsLatin1;
  };
  setters[indexOf(WordAction::kMac)] = [](StyleTarget& target, std::int64_t) {
    target.group.encoding = encoding::kMacRoman;
  };
  setters[indexOf(WordAction::kBold)] = [](StyleTarget& target, std::int64_t value) {
    target.group.bold = value != 0;
  };
  setters[indexOf(WordAction::kItalic)] = [](StyleTarget& target, std::int64_t value) {
    target.group.italic = value != 0;
  };
  setters[indexOf(WordAction::kUnderline)] = [](StyleTarget& target, std::int64_t value) {
    target.group.underline = value != 0;
  };
  setters[indexOf(WordAction::kUnderlineNone)] = [](StyleTarget& target, std::int64_t) {
    target.group.underline = false;
  };
  setters[indexOf(WordAction::kColor)] = [](StyleTarget& target, std::int64_t value) {
    target.group.color = value >= 0 && static_cast<std::uint64_t>(value) < target.colors.size()
                             ? target.colors[static_cast<std::size_t>(value)]
                             : Rgb{};
  };
  setters[indexOf(WordAction::kFont)] = [](StyleTarget& target, std::int64_t value) {
    const auto entry = target.fonts.find(value);
    target.group.font = entry != target.fonts.end() ? entry->second : 0;
  };
  setters[indexOf(WordAction::kAlignCentre)] = [](StyleTarget& target, std::int64_t) {
    target.alignment = kAlignCentre;
  };
  setters[indexOf(WordAction::kAlignRight)] = [](StyleTarget& target, std::int64_t) {
    target.alignment = kAlignRight;
  };
  setters[indexOf(WordAction::kAlignLeft)] = [](StyleTarget& target, std::int64_t) {
    target.alignment = kAlignLeft;
  };
  setters[indexOf(WordAction::kFontSize)] = [](StyleTarget& target, std::int64_t value) {
    target.group.size = value / 2;
  };
  return setters;
}();

class Reader {
 public:
  Reader(std::string_view rtf, StyledTextSink& sink) : in_(rtf), sink_(sink) {
    pending_.reserve(kPendingTextReserve);
  }

  void read() {
    while (!in_.atEnd()) {
      switch (in_.peek()) {
        case '{':
          in_.advance();
          groups_.open();
          nesting_.open();
          continue;
        case '}':
          in_.advance();
          flush();
          if (!nesting_.close()) return;
          groups_.close();
          break;
        case '\r':
        case '\n':
          in_.advance();
          flush();
          break;
        case '\\':
          in_.advance();
          readEscape();
          break;
        default:
          addText(in_.takeText());
          break;
      }
      nesting_.endToken();
    }
    flush();
  }

 private:
  const GroupState& top() const { return groups_.top(); }

  void makeRun() {
    if (run_) return;
    const GroupState& group = top();
    run_ = PendingRun{group.font,
                      group.size,
                      (group.color.red << 16) | (group.color.green << 8) | group.color.blue,
                      group.bold,
                      group.italic,
                      group.underline};
  }

  void addText(std::string_view text) {
    if (nesting_.skipping()) return;
    makeRun();
    pending_.append(text);
  }

  void addRun(const PendingRun& run, const RunText& text) {
    const RunStyle style{run.bold, run.italic,    run.underline,
                         run.size, run.textColor, fontNames_[run.font]};
    const std::int64_t before = sink_.paragraphCount();
    sink_.appendStyleRun(style, text);
    const std::int64_t after = sink_.paragraphCount();
    if (alignment_ >= 0 && after != before) sink_.setParagraphAlignment(before, alignment_);
  }

  // Pending text goes out as one run; the run is used up either way.
  void flush() {
    if (!pending_.empty() && run_) addRun(*run_, RunText{pending_, top().encoding});
    pending_.clear();
    run_.reset();
  }

  void addUnit(std::int64_t parameter) {
    flush();
    makeRun();
    const auto unit = static_cast<char16_t>(parameter);
    if (unit != 0) {
      std::array<char, sizeof unit> bytes{};
      std::memcpy(bytes.data(), &unit, sizeof unit);
      addRun(*run_, RunText{std::string_view(bytes.data(), bytes.size()), encoding::kUTF16});
    }
    run_.reset();
  }

  void readEscape() {
    if (in_.nextIs('\'')) {
      in_.advance();
      const std::optional<char> byte = in_.takeHexByte();
      if (byte) addText(std::string_view(&*byte, 1));
      return;
    }
    if (in_.nextIs('\\') || in_.nextIs('{') || in_.nextIs('}')) {
      const char c = in_.peek();
      in_.advance();
      addText(std::string_view(&c, 1));
      return;
    }
    if (in_.nextIs('\r') || in_.nextIs('\n')) {
      in_.takeLineBreak();
      if (!nesting_.skipping()) makeRun();
      pending_ += '\r';
      flush();
      return;
    }
    const ControlWord word = in_.takeControlWord(nesting_.afterOpenBrace());
    applyWord(word);
  }

  void applyWord(const ControlWord& word) {
    if (word.word == "bin") {
      if (word.parameter > 0) in_.advance(static_cast<std::size_t>(word.parameter));
      return;
    }
    if (groups_.empty() || nesting_.skipping()) return;
    const std::optional<WordAction> action = actionFor(word.word);
    if (!action) {
      if (nesting_.afterOpenBrace()) nesting_.skipCurrentGroup();
      return;
    }
    if (const StyleSetter setter = kStyleSetters[indexOf(*action)]) {
      flush();
      StyleTarget target{groups_.changeTop(), alignment_, colorTable_, fontTable_};
      setter(target, word.parameter);
      return;
    }
    applyDestinationWord(*action, word.parameter);
  }

  void applyDestinationWord(WordAction action, std::int64_t parameter) {
    switch (action) {
      case WordAction::kFontTable:
        readFontTable();
        pending_.clear();
        break;
      case WordAction::kColorTable:
        readColorTable();
        pending_.clear();
        break;
      case WordAction::kUnicode:
        addUnit(parameter);
        break;
      case WordAction::kParagraph:
        makeRun();
        pending_ += '\r';
        flush();
        break;
      default:
        break;
    }
  }

  // Entries "{\fN ... name;}"; the table's own closing brace is consumed here, with one delimiter.
  void readFontTable() {
    GroupNesting nesting;
    std::int64_t index = 0;
    std::string name;
    bool nameDone = false;
    while (!in_.atEnd()) {
      const char c = in_.peek();
      if (c == '{') {
        in_.advance();
        nesting.open();
        continue;
      }
      const bool braceBefore = nesting.afterOpenBrace();
      nesting.endToken();
      if (c == '}') {
        in_.advance();
        if (!nesting.close()) {
          in_.takeDelimiter();
          return;
        }
        continue;
      }
      if (nesting.skipping()) {
        in_.advance();
        continue;
      }
      if (c == '\\') {
        in_.advance();
        if (in_.nextIs('\'')) {
          // A hexadecimal escape is dropped from the name.
          in_.advance();
          in_.takeHexByte();
          continue;
        }
        const ControlWord word = in_.takeControlWord(braceBefore);
        if (word.word == "f") {
          index = word.parameter;
          nameDone = false;
        } else if (braceBefore) {
          nesting.skipCurrentGroup();
        }
        continue;
      }
      in_.advance();
      if (nameDone) continue;
      if (c == ';') {
        fontNames_.push_back(name);
        fontTable_[index] = fontNames_.size() - 1;
        name.clear();
        nameDone = true;
      } else {
        name += c;
      }
    }
  }

  // Entries "\redR\greenG\blueB;", numbered from 0; stops at the closing brace, which the scanner
  // then handles like any other.
  void readColorTable() {
    Rgb entry;
    std::size_t index = 0;
    while (!in_.atEnd() && !in_.nextIs('}')) {
      const char c = in_.peek();
      in_.advance();
      if (c == ';') {
        if (index < colorTable_.size()) {
          colorTable_[index] = entry;
        } else {
          colorTable_.push_back(entry);
        }
        ++index;
        entry = Rgb{};
      } else if (c == '\\') {
        const ControlWord word = in_.takeControlWord(false);
        const auto component = static_cast<std::uint32_t>(word.parameter);
        if (word.word == "red") entry.red = component;
        if (word.word == "green") entry.green = component;
        if (word.word == "blue") entry.blue = component;
      }
    }
  }

  Cursor in_;
  StyledTextSink& sink_;
  GroupStack groups_;
  std::vector<std::string> fontNames_{std::string()};
  std::map<std::int64_t, std::size_t> fontTable_;
  std::vector<Rgb> colorTable_;
  std::string pending_;
  std::optional<PendingRun> run_;
  std::int64_t alignment_ = kAlignDefault;
  GroupNesting nesting_;
};

}  // namespace

void readRtf(std::string_view rtf, StyledTextSink& sink) {
  sink.clear();
  if (rtf.size() < 7 || !rtf.starts_with("{\\rtf")) return;
  Reader(rtf, sink).read();
}

}  // namespace zel::styledtext
