// Building and inspecting styled texts from C++, through the same properties and methods that the
// plug-in uses.
#include <stdexcept>

#include "host_strings.h"
#include "objects.h"

namespace zelhost {
namespace {

using detail::PropertyType;
using detail::PropertyValue;

void set(REALobject o, const char* name, PropertyType type, PropertyValue value) {
  if (!detail::writeProperty(o, name, type, value)) {
    throw std::logic_error(std::string("cannot set ") + name);
  }
}

PropertyValue get(REALobject o, const char* name, PropertyType type) {
  PropertyValue value;
  if (!detail::readProperty(o, name, type, value)) {
    throw std::logic_error(std::string("cannot read ") + name);
  }
  return value;
}

void setString(REALobject o, const char* name, std::string_view bytes, std::uint32_t encoding) {
  REALstring string = makeString(bytes, encoding);
  set(o, name, PropertyType::String, {0, string});
  release(string);
}

template <class Function>
Function method(REALobject o, const char* declaration) {
  void* found = detail::findObjectMethod(o, declaration);
  if (found == nullptr) throw std::logic_error(std::string("no method ") + declaration);
  return reinterpret_cast<Function>(found);
}

// Calls `visit` on each item of one of the text's indexed lists, holding the item meanwhile.
template <class Visit>
void forEachItem(REALobject styledText, const char* countName, const char* itemDeclaration,
                 Visit visit) {
  const auto itemAt = method<REALobject (*)(REALobject, RBInteger)>(styledText, itemDeclaration);
  for (RBInteger i = 0, n = get(styledText, countName, PropertyType::Integer).number; i < n; ++i) {
    REALobject item = itemAt(styledText, i);
    visit(item);
    release(item);
  }
}

// Reads the Font whether or not the host currently answers to that name.
PropertyValue fontValue(REALobject run) {
  PropertyValue value;
  if (!detail::readProperty(run, "Font", PropertyType::String, value)) {
    value = get(run, "FontName", PropertyType::String);
  }
  return value;
}

}  // namespace

REALobject makeStyledText(const std::vector<StyledRun>& runs,
                          const std::vector<RBInteger>& alignments) {
  REALobject styledText = newInstance("StyledText");
  const auto append =
      method<void (*)(REALobject, REALobject)>(styledText, "AppendStyleRun(Run as StyleRun)");
  for (const StyledRun& values : runs) {
    REALobject run = newInstance("StyleRun");
    setString(run, "Text", values.text, values.textEncoding);
    if (values.font) setString(run, "FontName", *values.font, values.fontEncoding);
    set(run, "Size", PropertyType::Integer, {values.size, nullptr});
    set(run, "Bold", PropertyType::Boolean, {values.bold, nullptr});
    set(run, "Italic", PropertyType::Boolean, {values.italic, nullptr});
    set(run, "Underline", PropertyType::Boolean, {values.underline, nullptr});
    // Where RBInteger is 32-bit a color keeps its bits through the signed slot.
    set(run, "TextColor", PropertyType::Color, {static_cast<RBInteger>(values.color), nullptr});
    append(styledText, run);
    release(run);
  }
  const auto align = method<void (*)(REALobject, RBInteger, RBInteger)>(
      styledText, "ParagraphAlignment(Index As Integer, assigns _value as Integer)");
  for (std::size_t i = 0; i < alignments.size(); ++i) {
    align(styledText, static_cast<RBInteger>(i), alignments[i]);
  }
  return styledText;
}

std::vector<StyledRun> styledRuns(REALobject styledText) {
  std::vector<StyledRun> runs;
  forEachItem(
      styledText, "StyleRunCount", "StyleRun(Index as Integer) As StyleRun", [&](REALobject run) {
        StyledRun values;
        const PropertyValue text = get(run, "Text", PropertyType::String);
        values.text = stringBytes(text.string);
        values.textEncoding = text.string ? stringEncoding(text.string) : encoding::kUTF8;
        const PropertyValue font = fontValue(run);
        if (font.string != nullptr) {
          values.font = stringBytes(font.string);
          values.fontEncoding = stringEncoding(font.string);
        }
        release(text.string);
        release(font.string);
        values.size = get(run, "Size", PropertyType::Integer).number;
        values.bold = get(run, "Bold", PropertyType::Boolean).number != 0;
        values.italic = get(run, "Italic", PropertyType::Boolean).number != 0;
        values.underline = get(run, "Underline", PropertyType::Boolean).number != 0;
        values.color = static_cast<RBColor>(get(run, "TextColor", PropertyType::Color).number);
        runs.push_back(std::move(values));
      });
  return runs;
}

std::vector<StyledParagraph> styledParagraphs(REALobject styledText) {
  std::vector<StyledParagraph> paragraphs;
  forEachItem(styledText, "ParagraphCount", "Paragraph(Index as Integer) As Paragraph",
              [&](REALobject paragraph) {
                paragraphs.push_back({get(paragraph, "StartPos", PropertyType::Integer).number,
                                      get(paragraph, "EndPos", PropertyType::Integer).number,
                                      get(paragraph, "Alignment", PropertyType::Integer).number});
              });
  return paragraphs;
}

}  // namespace zelhost
