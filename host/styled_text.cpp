// StyledText, StyleRun and Paragraph as tables. A styled text owns copies of its runs; its text is
// the runs' texts one after the other, counted in code points (each run decoded on its own, as the
// host's Len counts it), and its paragraphs are derived from that text on every question.
#include <algorithm>
#include <atomic>

#include "encodings.h"
#include "host_strings.h"
#include "objects.h"

namespace zelhost::detail {
namespace {

std::atomic<bool> fontPropertyMissing{false};

bool fontMissing() {
  return fontPropertyMissing.load();
}

// StyleRun property indexes, in table order.
enum StyleRunProperty : std::size_t {
  kText,
  kFont,
  kFontName,
  kSize,
  kBold,
  kItalic,
  kUnderline,
  kColor
};

struct StyledTextData : ObjectData {
  std::vector<REALobject> runs;       // one reference each
  std::vector<RBInteger> alignments;  // by paragraph; missing entries are 0
  ~StyledTextData() override {
    for (REALobject run : runs) releaseObject(run, "StyledText run");
  }
};

StyledTextData& styledData(HostObject& object) {
  return static_cast<StyledTextData&>(*object.data);
}

std::u32string runText(REALobject run) {
  const HostObject* object = liveObject(run, "StyleRun text");
  if (object == nullptr) return {};
  const REALstring text = object->values[kText].string;
  const StringHeader* string = text ? liveString(text, "StyleRun text") : nullptr;
  return string ? decodeText(string->view(), string->encoding) : std::u32string();
}

std::u32string wholeText(const StyledTextData& data) {
  std::u32string text;
  for (REALobject run : data.runs) text += runText(run);
  return text;
}

struct ParagraphSpan {
  RBInteger start;
  RBInteger end;
};

// A paragraph ends after each CR or LF (CR LF is one break); a final break opens no empty one.
std::vector<ParagraphSpan> paragraphSpans(const StyledTextData& data) {
  const std::u32string text = wholeText(data);
  std::vector<ParagraphSpan> spans;
  std::size_t start = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != U'\r' && text[at] != U'\n') continue;
    if (text[at] == U'\r' && at + 1 < text.size() && text[at + 1] == U'\n') ++at;
    spans.push_back({static_cast<RBInteger>(start), static_cast<RBInteger>(at + 1)});
    start = at + 1;
  }
  if (start < text.size()) {
    spans.push_back({static_cast<RBInteger>(start), static_cast<RBInteger>(text.size())});
  }
  return spans;
}

RBInteger alignmentOf(const StyledTextData& data, std::size_t paragraph) {
  return paragraph < data.alignments.size() ? data.alignments[paragraph] : 0;
}

// A paragraph that disappears takes its alignment with it.
void forgetLostParagraphs(StyledTextData& data) {
  data.alignments.resize(std::min(data.alignments.size(), paragraphSpans(data).size()));
}

REALobject copyRun(REALobject run) {
  const HostObject* source = liveObject(run, "StyleRun copy");
  if (source == nullptr) return nullptr;
  REALobject copy = createObject(*source->classInfo);
  HostObject* target = liveObject(copy, "StyleRun copy");
  target->values = source->values;
  for (const PropertyValue& value : target->values) {
    if (value.string != nullptr) retainString(value.string, "StyleRun copy");
  }
  return copy;
}

StyledTextData* styledTextOf(REALobject self, const char* context) {
  return objectData<StyledTextData>(self, context);
}

REALobject styleRunAt(REALobject self, RBInteger index) {
  StyledTextData* data = styledTextOf(self, "StyledText.StyleRun");
  if (data == nullptr || index < 0 || index >= static_cast<RBInteger>(data->runs.size())) {
    return nullptr;
  }
  return copyRun(data->runs[static_cast<std::size_t>(index)]);
}

REALobject paragraphAt(REALobject self, RBInteger index) {
  StyledTextData* data = styledTextOf(self, "StyledText.Paragraph");
  if (data == nullptr) return nullptr;
  const auto spans = paragraphSpans(*data);
  if (index < 0 || index >= static_cast<RBInteger>(spans.size())) return nullptr;
  const ClassInfo* paragraphClass = findClass("Paragraph");
  REALobject paragraph = createObject(*paragraphClass);
  HostObject* object = liveObject(paragraph, "StyledText.Paragraph");
  const auto at = static_cast<std::size_t>(index);
  object->values[0].number = spans[at].start;
  object->values[1].number = spans[at].end;
  object->values[2].number = alignmentOf(*data, at);
  return paragraph;
}

void appendStyleRun(REALobject self, REALobject run) {
  StyledTextData* data = styledTextOf(self, "StyledText.AppendStyleRun");
  if (data == nullptr || run == nullptr) return;
  if (REALobject copy = copyRun(run)) data->runs.push_back(copy);
}

void setParagraphAlignment(REALobject self, RBInteger index, RBInteger alignment) {
  StyledTextData* data = styledTextOf(self, "StyledText.ParagraphAlignment");
  if (data == nullptr || index < 0 ||
      index >= static_cast<RBInteger>(paragraphSpans(*data).size())) {
    return;
  }
  const auto at = static_cast<std::size_t>(index);
  if (data->alignments.size() <= at) data->alignments.resize(at + 1, 0);
  data->alignments[at] = alignment;
}

void removeStyleRun(REALobject self, RBInteger index) {
  StyledTextData* data = styledTextOf(self, "StyledText.RemoveStyleRun");
  if (data == nullptr || index < 0 || index >= static_cast<RBInteger>(data->runs.size())) return;
  const auto at = data->runs.begin() + index;
  releaseObject(*at, "StyledText.RemoveStyleRun");
  data->runs.erase(at);
  forgetLostParagraphs(*data);
}

// "FontName" is the same storage as "Font" under the name some host versions use.
PropertySpec fontNameAlias() {
  return {"FontName", PropertyType::String, [](HostObject& object) { return object.values[kFont]; },
          [](HostObject& object, const PropertyValue& value) {
            PropertyValue& stored = object.values[kFont];
            if (value.string != nullptr) retainString(value.string, "StyleRun.FontName");
            if (stored.string != nullptr) releaseString(stored.string, "StyleRun.FontName");
            stored.string = value.string;
          }};
}

ClassInfo styleRunClass() {
  ClassInfo run{"StyleRun", {}, {}};
  run.properties = {
      {"Text", PropertyType::String},
      {"Font", PropertyType::String, nullptr, nullptr, &fontMissing},
      fontNameAlias(),
      {"Size", PropertyType::Integer},
      {"Bold", PropertyType::Boolean},
      {"Italic", PropertyType::Boolean},
      {"Underline", PropertyType::Boolean},
      {"TextColor", PropertyType::Color},
  };
  return run;
}

ClassInfo styledTextClass() {
  ClassInfo styledText{"StyledText", {}, {}, [] { return std::make_unique<StyledTextData>(); }};
  const auto readOnly = [](HostObject&, const PropertyValue&) {};
  styledText.properties = {
      {"StyleRunCount", PropertyType::Integer,
       [](HostObject& object) {
         return PropertyValue{static_cast<RBInteger>(styledData(object).runs.size()), nullptr};
       },
       readOnly},
      {"ParagraphCount", PropertyType::Integer,
       [](HostObject& object) {
         return PropertyValue{static_cast<RBInteger>(paragraphSpans(styledData(object)).size()),
                              nullptr};
       },
       readOnly},
  };
  styledText.methods = {
      {"StyleRun(Index as Integer) As StyleRun", reinterpret_cast<void*>(&styleRunAt)},
      {"Paragraph(Index as Integer) As Paragraph", reinterpret_cast<void*>(&paragraphAt)},
      {"AppendStyleRun(Run as StyleRun)", reinterpret_cast<void*>(&appendStyleRun)},
      {"ParagraphAlignment(Index As Integer, assigns _value as Integer)",
       reinterpret_cast<void*>(&setParagraphAlignment)},
      {"RemoveStyleRun(Index as Integer)", reinterpret_cast<void*>(&removeStyleRun)},
  };
  return styledText;
}

}  // namespace

std::vector<ClassInfo> styledTextClasses() {
  return {styledTextClass(), styleRunClass(),
          ClassInfo{"Paragraph",
                    {{"StartPos", PropertyType::Integer},
                     {"EndPos", PropertyType::Integer},
                     {"Alignment", PropertyType::Integer}},
                    {}}};
}

void resetStyledTextFaults() {
  fontPropertyMissing = false;
}

}  // namespace zelhost::detail

namespace zelhost {

void setStyleRunFontMissing(bool missing) {
  detail::fontPropertyMissing = missing;
}

}  // namespace zelhost
