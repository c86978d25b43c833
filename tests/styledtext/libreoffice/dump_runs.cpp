// Reads an RTF file through the RTF reader and prints each run and paragraph alignment.
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "styledtext/code_page_table.h"
#include "styledtext/rtf_reader.h"

using namespace zel::styledtext;

namespace {

// Counts paragraphs the host's way closely enough for a printout: a CR ends one.
class PrintingSink : public StyledTextSink {
 public:
  void clear() override {}
  std::int64_t paragraphCount() override { return paragraphs_; }
  void appendStyleRun(const RunStyle& style, const RunText& text) override {
    std::string shown;
    if (text.encoding == encoding::kUTF16) {
      char16_t unit = 0;
      std::memcpy(&unit, text.bytes.data(), sizeof unit);
      shown = "U+" + std::to_string(unit);
    } else {
      shown = std::string(text.bytes);
    }
    for (char& c : shown) {
      if (!open_) ++paragraphs_;
      open_ = c != '\r';
      if (c == '\r') c = '|';
    }
    std::printf("[%s] b%d i%d u%d size=%lld color=%06x font=%s encoding=%x\n", shown.c_str(),
                style.bold, style.italic, style.underline, static_cast<long long>(style.size),
                style.textColor, std::string(style.fontName).c_str(), text.encoding);
  }
  void setParagraphAlignment(std::int64_t paragraph, std::int64_t alignment) override {
    std::printf("  paragraph %lld alignment %lld\n", static_cast<long long>(paragraph),
                static_cast<long long>(alignment));
  }

 private:
  std::int64_t paragraphs_ = 0;
  bool open_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  std::ifstream in(argv[1], std::ios::binary);
  std::stringstream bytes;
  bytes << in.rdbuf();
  PrintingSink sink;
  readRtf(bytes.str(), sink);
  return 0;
}
