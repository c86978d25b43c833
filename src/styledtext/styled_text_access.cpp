#include "styledtext/styled_text_access.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <optional>
#include <utility>

#include "bridge/adapter_support.h"
#include "bridge/host_string_bytes.h"
#include "bridge/host_text.h"
#include "framework/debug_log.h"
#include "framework/host_api.h"
#include "framework/lazy_address.h"

namespace zel::styledtext {
namespace {

// One object method, remembered together with the object it was loaded for. Host threads may
// race on it: a version counter (odd while a writer fills the slot) lets a reader tell a torn
// pair from a whole one, and a reader or writer that loses a race simply loads the method again.
class ObjectMethodSlot {
 public:
  explicit constexpr ObjectMethodSlot(const char* declaration) : declaration_(declaration) {}

  void* load(REALobject object) noexcept {
    if (void* cached = lookUp(object)) return cached;
    void* loaded = host::REALLoadObjectMethod(object, declaration_);
    if (loaded != nullptr) remember(object, loaded);
    return loaded;
  }

 private:
  // A reader that sees a value stored after a writer's odd mark also sees that mark when it
  // reads the version again, so a torn pair never passes the second check.
  void* lookUp(REALobject object) const noexcept {
    const std::uint64_t before = version_.load(std::memory_order_acquire);
    if (before % 2 != 0) return nullptr;
    REALobject cachedObject = object_.load(std::memory_order_acquire);
    void* cachedMethod = method_.load(std::memory_order_acquire);
    if (version_.load(std::memory_order_relaxed) != before || cachedObject != object) {
      return nullptr;
    }
    return cachedMethod;
  }

  void remember(REALobject object, void* method) noexcept {
    std::uint64_t current = version_.load(std::memory_order_relaxed);
    if (current % 2 != 0 ||
        !version_.compare_exchange_strong(current, current + 1, std::memory_order_relaxed)) {
      return;
    }
    object_.store(object, std::memory_order_release);
    method_.store(method, std::memory_order_release);
    version_.store(current + 2, std::memory_order_release);
  }

  const char* declaration_;
  std::atomic<std::uint64_t> version_{0};
  std::atomic<REALobject> object_{nullptr};
  std::atomic<void*> method_{nullptr};
};

constinit ObjectMethodSlot styleRunMethod("StyleRun(Index as Integer) As StyleRun");
constinit ObjectMethodSlot paragraphMethod("Paragraph(Index as Integer) As Paragraph");
constinit ObjectMethodSlot appendStyleRunMethod("AppendStyleRun(Run as StyleRun)");
constinit ObjectMethodSlot paragraphAlignmentMethod(
    "ParagraphAlignment(Index As Integer, assigns _value as Integer)");
constinit ObjectMethodSlot removeStyleRunMethod("RemoveStyleRun(Index as Integer)");

using ObjectAt = REALobject (*)(REALobject, RBInteger);
using AppendRun = void (*)(REALobject, REALobject);
using SetAlignment = void (*)(REALobject, RBInteger, RBInteger);
using RemoveRun = void (*)(REALobject, RBInteger);
using Len = RBInteger (*)(REALstring);

RBInteger hostLen(REALstring s) noexcept {
  static constinit LazyAddress<Len> lenMethod;
  const Len len = lenMethod.get([]() noexcept {
    return reinterpret_cast<Len>(
        host::REALLoadGlobalMethod(nullptr, "Len(s as string) as integer"));
  });
  return len != nullptr ? len(s) : 0;
}

RBInteger integerProperty(REALobject o, const char* name) noexcept {
  RBInteger value = 0;
  host::REALGetPropValueInteger(o, name, &value);
  return value;
}

bool booleanProperty(REALobject o, const char* name) noexcept {
  RBBoolean value = 0;
  host::REALGetPropValueBool(o, name, &value);
  return value != 0;
}

OwnedString stringProperty(REALobject o, const char* name) noexcept {
  REALstring value = nullptr;
  if (!host::REALGetPropValueString(o, name, &value)) return {};
  return OwnedString(value);
}

// Some hosts hand the font name over as UTF-16 without saying so; a zero byte gives them away.
OwnedString readFont(REALobject run) noexcept {
  OwnedString font = stringProperty(run, "Font");
  if (!font) return font;
  const HostStringBytes bytes(font.get());
  const auto raw = bytes.view();
  if (raw.find('\0') == std::string_view::npos) return font;
  REALstring retagged =
      host::REALBuildStringWithEncoding(raw.data(), static_cast<int>(raw.size()), encoding::kUTF16);
  return retagged ? OwnedString(retagged) : std::move(font);
}

// Allocates; a failure reaches the registered function's guard.
std::optional<StyleRunRecord> readRun(REALobject styledText, RBInteger index) {
  const auto runAt = reinterpret_cast<ObjectAt>(styleRunMethod.load(styledText));
  const OwnedObject run(runAt ? runAt(styledText, index) : nullptr);
  if (!run) return std::nullopt;
  StyleRunRecord record;
  if (const OwnedString font = readFont(run.get()))
    record.font = std::string(HostText(font.get()).utf8());
  const OwnedString text = stringProperty(run.get(), "Text");
  record.text = std::u16string(HostText(text.get()).utf16());
  host::REALGetPropValueColor(run.get(), "TextColor", &record.textColor);
  record.bold = booleanProperty(run.get(), "Bold");
  record.italic = booleanProperty(run.get(), "Italic");
  record.underline = booleanProperty(run.get(), "Underline");
  record.size = integerProperty(run.get(), "Size");
  record.length = hostLen(text.get());
  return record;
}

std::vector<ParagraphRange> readParagraphs(REALobject styledText, RBInteger count) {
  std::vector<ParagraphRange> paragraphs;
  const auto paragraphAt = reinterpret_cast<ObjectAt>(paragraphMethod.load(styledText));
  if (paragraphAt == nullptr) return paragraphs;
  for (RBInteger index = 0; index < count; ++index) {
    const OwnedObject paragraph(paragraphAt(styledText, index));
    if (!paragraph) continue;
    paragraphs.push_back({integerProperty(paragraph.get(), "StartPos"),
                          integerProperty(paragraph.get(), "EndPos"),
                          integerProperty(paragraph.get(), "Alignment")});
  }
  return paragraphs;
}

// The common shape of the run setters: nil check, the label, the write, the failure line.
template <class Write>
void setRunProperty(REALobject run, const char* label, const char* failure, Write write) noexcept {
  if (run == nullptr) {
    debugLogText("StyleRun is nil in", label);
    return;
  }
  if (!write()) debugLogLabel(failure);
}

bool sameHostString(REALstring a, REALstring b) noexcept {
  return host::RuntimeStringCompare(a, b) == 0;
}

// Sets a font property and, with the log on, reads it back to show what the host kept.
bool setFontProperty(REALobject run, const char* property, REALstring name,
                     const char* readFailure) noexcept {
  if (!host::REALSetPropValueString(run, property, name)) return false;
  if (!debugEnabled()) return true;
  REALstring stored = nullptr;
  if (!host::REALGetPropValueString(run, property, &stored)) {
    debugLogLabel(readFailure);
    return true;
  }
  const OwnedString kept(stored);
  debugLogString("fontSet", kept.get());
  if (!sameHostString(kept.get(), name)) debugLogLabel("Warning: Font queried is not same!");
  return true;
}

void dropRun(REALobject& run) noexcept {
  if (run != nullptr) host::REALUnlockObject(run);
  run = nullptr;
}

}  // namespace

std::vector<StyleRunRecord> ReadStyleRuns(REALobject styledText, bool skipParagraphs) {
  std::vector<StyleRunRecord> runs;
  if (styledText == nullptr) return runs;
  const RBInteger runCount = StyleRunCount(styledText);
  if (runCount == 0) return runs;
  const RBInteger paragraphCount = ParagraphCount(styledText);
  if (paragraphCount == 0) return runs;
  runs.reserve(static_cast<std::size_t>(std::max<RBInteger>(runCount, 0)));
  std::int64_t offset = 0;
  for (RBInteger index = 0; index < runCount; ++index) {
    std::optional<StyleRunRecord> record = readRun(styledText, index);
    if (!record) continue;
    record->startPos = offset;
    offset += record->length;
    record->midPos = record->startPos + record->length / 2;
    runs.push_back(std::move(*record));
  }
  if (!skipParagraphs) claimParagraphAlignments(runs, readParagraphs(styledText, paragraphCount));
  return runs;
}

RBInteger ParagraphCount(REALobject styledText) noexcept {
  return integerProperty(styledText, "ParagraphCount");
}

RBInteger StyleRunCount(REALobject styledText) noexcept {
  return integerProperty(styledText, "StyleRunCount");
}

bool SameFontName(std::string_view a, std::string_view b) noexcept {
  if (a == b) return true;
  const OwnedString first(
      host::REALBuildStringWithEncoding(a.data(), static_cast<int>(a.size()), encoding::kUTF8));
  const OwnedString second(
      host::REALBuildStringWithEncoding(b.data(), static_cast<int>(b.size()), encoding::kUTF8));
  if (!first || !second) return false;
  return sameHostString(first.get(), second.get());
}

REALobject NewStyleRun() noexcept {
  REALobject run = host::PluginNewInstance("StyleRun");
  if (run == nullptr) debugLogLabel("NewStyleRun failed");
  return run;
}

void StyleRunSetBold(REALobject run, bool value) noexcept {
  debugLogInt32("StyleRunSetBold", value);
  setRunProperty(run, "StyleRunSetBold", "Failed to set Bold property.",
                 [&] { return host::REALSetPropValueBoolean(run, "Bold", value); });
}

void StyleRunSetItalic(REALobject run, bool value) noexcept {
  debugLogInt32("StyleRunSetItalic", value);
  setRunProperty(run, "StyleRunSetItalic", "Failed to set Italic property.",
                 [&] { return host::REALSetPropValueBoolean(run, "Italic", value); });
}

void StyleRunSetUnderline(REALobject run, bool value) noexcept {
  debugLogInt32("StyleRunSetUnderline", value);
  setRunProperty(run, "StyleRunSetUnderline", "Failed to set Underline property.",
                 [&] { return host::REALSetPropValueBoolean(run, "Underline", value); });
}

void StyleRunSetSize(REALobject run, RBInteger value) noexcept {
  debugLogInt64("StyleRunSetSize", value);
  setRunProperty(run, "StyleRunSetSize", "Failed to set Size property.",
                 [&] { return host::REALSetPropValueInteger(run, "Size", value); });
}

void StyleRunSetTextColor(REALobject run, RBColor value) noexcept {
  debugLogUInt32("StyleRunSetTextColor", value);
  setRunProperty(run, "StyleRunSetTextColor", "Failed to set TextColor property.",
                 [&] { return host::REALSetPropValueUInt32(run, "TextColor", value); });
}

void StyleRunSetFontName(REALobject run, REALstring name) noexcept {
  if (run == nullptr) {
    debugLogText("StyleRun is nil in", "StyleRunSetFontName");
    return;
  }
  if (debugEnabled()) {
    debugLogString("StyleRunSetFontName", name);
    debugLogInt64("LengthUTF8", static_cast<std::int64_t>(HostText(name).utf8().size()));
  }
  if (setFontProperty(run, "Font", name, "Failed to query Font property!")) return;
  debugLogLabel("Failed to set Font property, trying FontName.");
  if (!setFontProperty(run, "FontName", name, "Failed to query FontName property!")) {
    debugLogLabel("Failed to set FontName property.");
  }
}

void StyleRunSetText(REALobject run, REALstring text) noexcept {
  if (run == nullptr) {
    debugLogText("StyleRun is nil in", "StyleRunSetText");
    return;
  }
  if (!host::REALSetPropValueString(run, "Text", text)) {
    debugLogLabel("Failed to set text property.");
    return;
  }
  if (!debugEnabled()) return;
  REALstring stored = nullptr;
  if (!host::REALGetPropValueString(run, "Text", &stored)) {
    debugLogLabel("Failed to query value set!");
    return;
  }
  const OwnedString kept(stored);
  if (!sameHostString(kept.get(), text)) debugLogLabel("text queried is not same!");
}

RBInteger StyledTextAddStyleRun(REALstring text, REALobject styledText, REALobject& run,
                                RBInteger alignment) noexcept {
  const RBInteger before = ParagraphCount(styledText);
  StyleRunSetText(run, text);
  constexpr const char* kAppendLabel = "StyledTextAppendStyleRun";
  if (styledText == nullptr) {
    debugLogText("styledText is nil in", kAppendLabel);
  } else if (run == nullptr) {
    debugLogText("styleRun is nil in", kAppendLabel);
  } else if (const auto append =
                 reinterpret_cast<AppendRun>(appendStyleRunMethod.load(styledText))) {
    append(styledText, run);
  } else {
    debugLogText("nil function in", kAppendLabel);
  }
  dropRun(run);
  const RBInteger after = ParagraphCount(styledText);
  debugLogInt64("NewParagraphCount", after);
  if (alignment >= 0 && after != before) {
    debugLogInt64Pair("SetParagraphAlignment", before, alignment);
    StyledTextSetParagraphAlignment(styledText, before, alignment);
  }
  return after;
}

std::optional<RBInteger> StyledTextAddBufferedRun(std::string& buffer, std::uint32_t encoding,
                                                  REALobject styledText, REALobject& run,
                                                  RBInteger alignment) noexcept {
  if (buffer.empty()) {
    debugLogLabel("Ignore empty run");
    dropRun(run);
    return std::nullopt;
  }
  const OwnedString text(
      host::REALBuildStringWithEncoding(buffer.data(), static_cast<int>(buffer.size()), encoding));
  debugLogString("NewText", text.get());
  const RBInteger after = StyledTextAddStyleRun(text.get(), styledText, run, alignment);
  buffer.clear();
  return after;
}

std::optional<RBInteger> StyledTextAddUnitRun(char16_t unit, REALobject styledText, REALobject& run,
                                              RBInteger alignment) noexcept {
  if (unit == 0) {
    debugLogLabel("Ignore null character");
    dropRun(run);
    return std::nullopt;
  }
  const OwnedString text(host::REALBuildStringWithEncoding(reinterpret_cast<const char*>(&unit),
                                                           sizeof unit, encoding::kUTF16));
  return StyledTextAddStyleRun(text.get(), styledText, run, alignment);
}

void StyledTextSetParagraphAlignment(REALobject styledText, RBInteger index,
                                     RBInteger alignment) noexcept {
  constexpr const char* kLabel = "StyledTextSetParagraphAlignment";
  if (styledText == nullptr) {
    debugLogText("styledText is nil in", kLabel);
    return;
  }
  const auto align = reinterpret_cast<SetAlignment>(paragraphAlignmentMethod.load(styledText));
  if (align == nullptr) {
    debugLogText("nil function in", kLabel);
    return;
  }
  align(styledText, index, alignment);
}

void StyledTextClear(REALobject styledText) noexcept {
  if (styledText == nullptr) {
    debugLogText("styledText is nil in", "StyledTextClear");
    return;
  }
  for (RBInteger index = StyleRunCount(styledText) - 1; index >= 0; --index) {
    debugLogInt64("StyledTextRemoveStyleRun", index);
    const auto remove = reinterpret_cast<RemoveRun>(removeStyleRunMethod.load(styledText));
    if (remove == nullptr) {
      debugLogText("nil function in", "StyledTextRemoveStyleRun");
      continue;
    }
    remove(styledText, index);
  }
}

namespace {

// The reader decides about alignment itself, through setParagraphAlignment.
constexpr RBInteger kKeepAlignment = -1;

REALobject newRunStyled(const RunStyle& style) noexcept {
  REALobject run = NewStyleRun();
  StyleRunSetBold(run, style.bold);
  StyleRunSetItalic(run, style.italic);
  StyleRunSetUnderline(run, style.underline);
  StyleRunSetSize(run, style.size);
  StyleRunSetTextColor(run, style.textColor);
  const OwnedString font(buildString(style.fontName, encoding::kUTF8));
  StyleRunSetFontName(run, font.get());
  return run;
}

}  // namespace

HostStyledTextSink::HostStyledTextSink(REALobject styledText) : styledText_(styledText) {
  text_.reserve(kPendingTextReserve);
}

void HostStyledTextSink::clear() {
  StyledTextClear(styledText_);
  paragraphCount_.reset();
}

std::int64_t HostStyledTextSink::paragraphCount() {
  if (!paragraphCount_) paragraphCount_ = ParagraphCount(styledText_);
  return *paragraphCount_;
}

void HostStyledTextSink::appendStyleRun(const RunStyle& style, const RunText& text) {
  std::optional<RBInteger> after;
  if (text.encoding == encoding::kUTF16 && text.bytes.size() == sizeof(char16_t)) {
    char16_t unit = 0;
    std::memcpy(&unit, text.bytes.data(), sizeof unit);
    REALobject run = newRunStyled(style);
    after = StyledTextAddUnitRun(unit, styledText_, run, kKeepAlignment);
  } else {
    // Copied before the run exists, so a failed allocation cannot strand it.
    text_.assign(text.bytes);
    REALobject run = newRunStyled(style);
    after = StyledTextAddBufferedRun(text_, text.encoding, styledText_, run, kKeepAlignment);
  }
  if (after) paragraphCount_ = *after;
}

void HostStyledTextSink::setParagraphAlignment(std::int64_t paragraph, std::int64_t alignment) {
  debugLogInt64Pair("SetParagraphAlignment", paragraph, alignment);
  StyledTextSetParagraphAlignment(styledText_, paragraph, alignment);
}

}  // namespace zel::styledtext
