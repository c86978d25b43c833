#include "rtf_commands.h"

#include <strings.h>

#include <cstdio>
#include <cstring>
#include <stdexcept>

#include "encodings.h"
#include "file_bytes.h"
#include "json_text.h"
#include "stand_in_host.h"

namespace zelhost {
namespace {

bool isRtfData(const RegisteredMember& member) {
  return strcasecmp(member.parsed.name.c_str(), "RTFDataZEL") == 0;
}

bool takesAssignedValue(const Declaration& declaration) {
  for (const Parameter& parameter : declaration.parameters) {
    if (parameter.assigns) return true;
  }
  return false;
}

std::u16string utf16Units(std::string_view bytes, std::uint32_t encoding) {
  std::string native =
      bytes.empty()
          ? std::string()
          : detail::convertBytes(bytes, encoding, encoding::kUTF16).value_or(std::string());
  std::u16string units(native.size() / 2, u'\0');
  std::memcpy(units.data(), native.data(), units.size() * 2);
  return units;
}

// UTF-16 text as UTF-8. A surrogate half without its partner (the RTF reader gives each half of
// a character outside the BMP a run of its own) keeps its three-byte form, which the JSON writer
// turns into a \u escape.
std::string unitsText(std::u16string_view units) {
  std::string text;
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool high = unit >= 0xD800 && unit <= 0xDBFF;
    if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      detail::appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (units[++i] - 0xDC00));
    } else {
      detail::appendUtf8(text, unit);
    }
  }
  return text;
}

std::string runText(const StyledRun& run) {
  return unitsText(utf16Units(run.text, run.textEncoding));
}

std::string fontText(const StyledRun& run) {
  return run.font ? detail::convertBytes(*run.font, run.fontEncoding, encoding::kUTF8).value_or("")
                  : std::string();
}

const Json& asObject(const Json& value, const char* what) {
  if (!value.is_object()) throw std::invalid_argument(std::string(what) + " must be a JSON object");
  return value;
}

const Json* arrayField(const Json& object, const char* name) {
  if (!object.contains(name)) return nullptr;
  const Json& found = object.at(name);
  if (!found.is_array()) throw std::invalid_argument(std::string(name) + " must be an array");
  return &found;
}

template <class T>
T field(const Json& object, const char* name, T otherwise) {
  if (!object.contains(name)) return otherwise;
  const Json& found = object.at(name);
  const bool fits = std::is_same_v<T, bool>          ? found.is_boolean()
                    : std::is_same_v<T, std::string> ? found.is_string()
                                                     : found.is_number();
  if (!fits) throw std::invalid_argument(std::string("run field ") + name + " has the wrong type");
  return found.get<T>();
}

void reportLeaks(const LiveCounts& before) {
  const LiveCounts after = liveCounts();
  if (after.strings != before.strings || after.objects != before.objects) {
    std::fprintf(stderr, "zelhost: leaked %d strings and %d objects\n",
                 after.strings - before.strings, after.objects - before.objects);
  }
}

}  // namespace

RtfDataAccess rtfDataAccess() {
  RtfDataAccess access;
  for (const RegisteredMember& member : registration().members) {
    if (!isRtfData(member)) continue;
    if (member.kind == RegisteredMember::Kind::ClassExtensionMethod) {
      access.get = reinterpret_cast<decltype(access.get)>(member.function);
      access.set = reinterpret_cast<decltype(access.set)>(member.setter);
    } else if (member.kind == RegisteredMember::Kind::ModuleMethod) {
      if (takesAssignedValue(member.parsed)) {
        access.set = reinterpret_cast<decltype(access.set)>(member.function);
      } else {
        access.get = reinterpret_cast<decltype(access.get)>(member.function);
      }
    }
  }
  if (access.get == nullptr || access.set == nullptr) {
    throw std::runtime_error("the plug-in registered no RTFDataZEL getter and setter");
  }
  return access;
}

std::string runsJson(REALobject styledText) {
  Json runs = Json::array();
  for (const StyledRun& run : styledRuns(styledText)) {
    runs.push_back({{"text", runText(run)},
                    {"font", run.font ? Json(fontText(run)) : Json(nullptr)},
                    {"size", run.size},
                    {"bold", run.bold},
                    {"italic", run.italic},
                    {"underline", run.underline},
                    {"color", run.color}});
  }
  Json paragraphs = Json::array();
  for (const StyledParagraph& paragraph : styledParagraphs(styledText)) {
    paragraphs.push_back(
        {{"start", paragraph.start}, {"end", paragraph.end}, {"alignment", paragraph.alignment}});
  }
  return jsonText({{"runs", runs}, {"paragraphs", paragraphs}}, {"", "/runs"});
}

REALobject styledTextFromJson(std::string_view text) {
  const Json document = parseJson(text);
  const Json& top = asObject(document, "the runs JSON");
  std::vector<StyledRun> runs;
  if (const Json* items = arrayField(top, "runs")) {
    for (const Json& item : *items) {
      const Json& fields = asObject(item, "a run");
      StyledRun run;
      run.text = field<std::string>(fields, "text", "");
      if (fields.contains("font") && !fields.at("font").is_null()) {
        run.font = field<std::string>(fields, "font", "");
      }
      run.size = static_cast<RBInteger>(field<double>(fields, "size", 0));
      run.bold = field<bool>(fields, "bold", false);
      run.italic = field<bool>(fields, "italic", false);
      run.underline = field<bool>(fields, "underline", false);
      run.color = static_cast<RBColor>(field<double>(fields, "color", 0));
      runs.push_back(std::move(run));
    }
  }
  std::vector<RBInteger> alignments;
  if (const Json* items = arrayField(top, "paragraphs")) {
    for (const Json& item : *items) {
      alignments.push_back(
          static_cast<RBInteger>(field<double>(asObject(item, "a paragraph"), "alignment", 0)));
    }
  }
  return makeStyledText(runs, alignments);
}

int rtfRead(const std::string& file, bool asJson, std::ostream& out) {
  const std::string bytes = fileBytes(file);
  const RtfDataAccess access = rtfDataAccess();
  const LiveCounts before = liveCounts();
  REALobject styledText = newInstance("StyledText");
  REALstring rtf = makeString(bytes, encoding::kNone);
  access.set(styledText, 0, rtf);
  release(rtf);
  if (asJson) {
    out << runsJson(styledText) << "\n";
  } else {
    const auto runs = styledRuns(styledText);
    for (std::size_t i = 0; i < runs.size(); ++i) {
      const StyledRun& run = runs[i];
      char color[8];
      std::snprintf(color, sizeof color, "%06X", static_cast<unsigned>(run.color));
      out << "run " << i << ": " << jsonText(runText(run))
          << (run.font ? " font " + jsonText(fontText(run)) : std::string(" no font")) << ", "
          << run.size << " pt" << (run.bold ? ", bold" : "") << (run.italic ? ", italic" : "")
          << (run.underline ? ", underline" : "") << ", colour #" << color << "\n";
    }
    const auto paragraphs = styledParagraphs(styledText);
    for (std::size_t i = 0; i < paragraphs.size(); ++i) {
      out << "paragraph " << i << ": " << paragraphs[i].start << "-" << paragraphs[i].end
          << ", alignment " << paragraphs[i].alignment << "\n";
    }
  }
  release(styledText);
  reportLeaks(before);
  return 0;
}

int rtfWrite(const std::string& file, bool skipParagraphs, std::ostream& out) {
  const std::string description = fileBytes(file);
  const RtfDataAccess access = rtfDataAccess();
  const LiveCounts before = liveCounts();
  REALobject styledText = styledTextFromJson(description);
  REALstring rtf = access.get(styledText, skipParagraphs ? 1 : 0);
  out << stringBytes(rtf);
  release(rtf);
  release(styledText);
  reportLeaks(before);
  return 0;
}

}  // namespace zelhost
