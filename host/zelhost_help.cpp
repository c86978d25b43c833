// The text of `zelhost help`: the command table, the options and one example per argument form.
#include <algorithm>
#include <string>

#include "zelhost_commands.h"

namespace zelhost::cli {
namespace {

constexpr std::size_t kFirstColumn = 34;
constexpr std::size_t kLineWidth = 100;

struct Row {
  std::string_view left;
  std::string_view right;
};

constexpr Row kGlobalOptions[] = {
    {"--plugin PATH", "the plug-in library to load (default: the one built beside zelhost)"},
    {"--host-version V", "what REALGetRBVersion reports (default 2025.03)"},
    {"--ide", "REALinRuntime reports false (default: true, as in a built application)"},
    {"--help, -h", "the same as the help command"},
    {"--version", "the same as the version command"},
};

struct ArgumentForm {
  std::string_view form;
  std::string_view meaning;
  std::string_view example;
};

// One example each, in the order the forms are tried.
constexpr ArgumentForm kArgumentForms[] = {
    {"nil", "the nil string or MemoryBlock", "call EncodingToHexZEL nil"},
    {"text:TEXT", "UTF-8 text", "call EncodingToURLZEL 'text:a b'"},
    {"hex:HEX", "raw bytes with no encoding", "call EncodingToHexZEL hex:c3a9"},
    {"hex/ENC:HEX", "bytes tagged ENC (decimal, 0x..)", "call IsASCIIStringZEL hex/0x600:41"},
    {"other words", "UTF-8 text", "call HasPrefixZEL Hello He"},
    {"-12", "an Integer, in decimal", "call CreateStringZEL 3 ab"},
    {"1.5, 1e-3", "a Double", "call StrZEL 0.1"},
    {"true, false", "a Boolean", "call RemoveAccentsZEL Æsop true"},
    {"mem:HEX", "a new MemoryBlock of the bytes", "call _yDecodeMemoryZEL mem:"},
    {"ptr:HEX", "a host buffer; size apart", "call CheckUTF8ZEL ptr:41c328 3 ?"},
};

constexpr std::size_t kFormColumn = 14;
constexpr std::size_t kExampleColumn = 48;

// LEFT, then RIGHT from `column` on, wrapped at word boundaries to keep lines short.
void appendRow(std::string& text, std::string_view left, std::string_view right,
               std::size_t column = kFirstColumn) {
  std::string line = "  " + std::string(left);
  if (line.size() >= column) {
    text += line + "\n";
    line.clear();
  }
  line.resize(column, ' ');
  std::size_t at = 0;
  while (at < right.size()) {
    std::size_t end = right.find(' ', at);
    if (end == std::string_view::npos) end = right.size();
    const bool lineHasWords = line.size() > column;
    if (lineHasWords && line.size() + 1 + (end - at) > kLineWidth) {
      text += line + "\n";
      line.assign(column, ' ');
    }
    if (line.size() > column) line += ' ';
    line += right.substr(at, end - at);
    at = end + 1;
  }
  text += line + "\n";
}

std::string commandColumn(const Command& command) {
  std::string text(command.name);
  for (const std::string_view option : command.options) {
    text.append(" [").append(option).append("]");
  }
  if (!command.operands.empty()) text.append(" ").append(command.operands);
  return text;
}

}  // namespace

std::string helpText() {
  std::string text =
      "usage: zelhost [OPTION...] COMMAND [ARG...]\n"
      "Loads the plug-in into a stand-in host and calls what it registers.\n"
      "\noptions, before the command:\n";
  for (const Row& row : kGlobalOptions) appendRow(text, row.left, row.right);
  text += "\ncommands:\n";
  for (const Command& command : commands())
    appendRow(text, commandColumn(command), command.summary);
  text += "\nARG, read according to the chosen overload's parameter type:\n";
  for (const ArgumentForm& form : kArgumentForms) {
    std::string left(form.form);
    left.resize(std::max(left.size() + 1, kFormColumn), ' ');
    appendRow(text, left + std::string(form.meaning), form.example, kExampleColumn);
  }
  text +=
      "HEX is an even number of hex digits, possibly empty (hex: is an empty, non-nil string).\n"
      "Overloads are chosen by name, then argument count (omitted trailing arguments take their\n"
      "declared defaults), then argument forms (mem: picks a MemoryBlock, ptr: a Ptr parameter).\n"
      "\nexit status: 0 when the call was made (also when it raised a host exception), 1 when the\n"
      "plug-in or a file cannot be loaded, 2 for a usage error.\n";
  return text;
}

}  // namespace zelhost::cli
