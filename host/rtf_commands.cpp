#include "rtf_commands.h"

#include <strings.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "encodings.h"
#include "json.h"
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

// A JSON string of UTF-16 text. A surrogate half without its partner (the RTF reader gives each
// half of a character outside the BMP a run of its own) is kept as a \u escape.
std::string quoteUnits(std::u16string_view units) {
  std::string text;
  std::string quoted;
  const auto flush = [&] {
    const std::string part = json::quote(text);
    quoted += part.substr(1, part.size() - 2);
    text.clear();
  };
  for (std::size_t i = 0; i < units.size(); ++i) {
    const char16_t unit = units[i];
    const bool high = unit >= 0xD800 && unit <= 0xDBFF;
    if (high && i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF) {
      detail::appendUtf8(text, 0x10000 + ((unit - 0xD800) << 10) + (units[++i] - 0xDC00));
    } else if (unit >= 0xD800 && unit <= 0xDFFF) {
      flush();
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(unit));
      quoted += escape.data();
    } else {
      detail::appendUtf8(text, unit);
    }
  }
  flush();
  return "\"" + quoted + "\"";
}

std::string fontText(const StyledRun& run) {
  return run.font ? detail::convertBytes(*run.font, run.fontEncoding, encoding::kUTF8).value_or("")
                  : std::string();
}

std::string readFile(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) throw std::invalid_argument("cannot read " + file);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return std::move(bytes).str();
}

const json::Object& asObject(const json::Value& value, const char* what) {
  const auto* object = std::get_if<std::shared_ptr<json::Object>>(&value.data);
  if (object == nullptr) throw std::invalid_argument(std::string(what) + " must be a JSON object");
  return **object;
}

const json::Array* arrayField(const json::Object& object, const char* name) {
  const auto found = object.find(name);
  if (found == object.end()) return nullptr;
  const auto* array = std::get_if<std::shared_ptr<json::Array>>(&found->second.data);
  if (array == nullptr) throw std::invalid_argument(std::string(name) + " must be an array");
  return array->get();
}

template <class T>
T field(const json::Object& object, const char* name, T otherwise) {
  const auto found = object.find(name);
  if (found == object.end()) return otherwise;
  if (const auto* value = std::get_if<T>(&found->second.data)) return *value;
  throw std::invalid_argument(std::string("run field ") + name + " has the wrong type");
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
  std::string out = "{\"runs\": [";
  const auto runs = styledRuns(styledText);
  for (std::size_t i = 0; i < runs.size(); ++i) {
    const StyledRun& run = runs[i];
    out += i ? ",\n          {" : "{";
    out += "\"text\": " + quoteUnits(utf16Units(run.text, run.textEncoding));
    out += ", \"font\": " + (run.font ? json::quote(fontText(run)) : std::string("null"));
    out += ", \"size\": " + std::to_string(run.size);
    out += std::string(", \"bold\": ") + (run.bold ? "true" : "false");
    out += std::string(", \"italic\": ") + (run.italic ? "true" : "false");
    out += std::string(", \"underline\": ") + (run.underline ? "true" : "false");
    out += ", \"color\": " + std::to_string(run.color) + "}";
  }
  out += "],\n \"paragraphs\": [";
  const auto paragraphs = styledParagraphs(styledText);
  for (std::size_t i = 0; i < paragraphs.size(); ++i) {
    out += i ? ", " : "";
    out += "{\"start\": " + std::to_string(paragraphs[i].start) +
           ", \"end\": " + std::to_string(paragraphs[i].end) +
           ", \"alignment\": " + std::to_string(paragraphs[i].alignment) + "}";
  }
  return out + "]}";
}

REALobject styledTextFromJson(std::string_view text) {
  const json::Value document = json::parse(text);
  const json::Object& top = asObject(document, "the runs JSON");
  std::vector<StyledRun> runs;
  if (const json::Array* items = arrayField(top, "runs")) {
    for (const json::Value& item : *items) {
      const json::Object& fields = asObject(item, "a run");
      StyledRun run;
      run.text = field<std::string>(fields, "text", "");
      if (const auto font = fields.find("font");
          font != fields.end() && !std::holds_alternative<std::nullptr_t>(font->second.data)) {
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
  if (const json::Array* items = arrayField(top, "paragraphs")) {
    for (const json::Value& item : *items) {
      alignments.push_back(
          static_cast<RBInteger>(field<double>(asObject(item, "a paragraph"), "alignment", 0)));
    }
  }
  return makeStyledText(runs, alignments);
}

int rtfRead(const std::string& file, bool asJson, std::ostream& out) {
  const std::string bytes = readFile(file);
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
      out << "run " << i << ": " << quoteUnits(utf16Units(run.text, run.textEncoding))
          << (run.font ? " font " + json::quote(fontText(run)) : std::string(" no font")) << ", "
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
  const std::string description = readFile(file);
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
