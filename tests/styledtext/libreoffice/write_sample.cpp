// Writes a styled sample through the RTF writer: fonts, colours, sizes, toggles, alignments,
// non-ASCII and non-BMP text, escaped characters.
#include <fstream>
#include <vector>

#include "styledtext/rtf_writer.h"

using zel::styledtext::StyleRunRecord;

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::vector<StyleRunRecord> runs(6);
  runs[0].text = u"Plain start, ";
  runs[0].font = "Liberation Serif";
  runs[0].size = 12;
  runs[1].text = u"bold red Sans";
  runs[1].bold = true;
  runs[1].textColor = 0xFF0000;
  runs[1].font = "Liberation Sans";
  runs[1].size = 18;
  runs[2].text = u" italic blue\n";
  runs[2].italic = true;
  runs[2].textColor = 0x0000FF;
  runs[2].font = "Liberation Sans";
  runs[2].size = 18;
  runs[3].text = u"Centred underlined caf\u00E9 \u20AC \U0001F600 {braces} \\slash\n";
  runs[3].underline = true;
  runs[3].alignment = 2;
  runs[3].font = "Liberation Mono";
  runs[3].size = 10;
  runs[4].text = u"Right aligned green\n";
  runs[4].alignment = 3;
  runs[4].textColor = 0x008000;
  runs[4].font = "Liberation Serif";
  runs[4].size = 14;
  runs[5].text = u"Left again";
  runs[5].alignment = 1;
  runs[5].size = 12;
  std::ofstream(argv[1], std::ios::binary) << zel::styledtext::writeRtf(runs);
  return 0;
}
