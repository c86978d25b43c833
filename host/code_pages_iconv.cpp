#include <iconv.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>

#include "code_pages.h"

namespace zelhost::detail {
namespace {

constexpr const char* kNativeUtf32 =
    std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";
constexpr char32_t kReplacement = 0xFFFD;
constexpr std::size_t kChunkUnits = 256;

class Converter {
 public:
  Converter(const char* to, const char* from) : handle_(iconv_open(to, from)) {}
  ~Converter() {
    if (isOpen()) iconv_close(handle_);
  }
  Converter(const Converter&) = delete;
  Converter& operator=(const Converter&) = delete;

  bool isOpen() const { return handle_ != reinterpret_cast<iconv_t>(-1); }

  // Converts all of `in`; at a sequence the target cannot take, `onError` appends the stand-in
  // and says how many source bytes to step over.
  template <typename Out, typename OnError>
  void run(std::string_view in, Out& out, OnError onError) {
    using Unit = typename Out::value_type;
    std::array<Unit, kChunkUnits> chunk{};
    char* inPointer = const_cast<char*>(in.data());
    std::size_t inLeft = in.size();
    char* const chunkStart = reinterpret_cast<char*>(chunk.data());
    const auto drain = [&](const char* outPointer) {
      out.append(chunk.data(), static_cast<std::size_t>(outPointer - chunkStart) / sizeof(Unit));
    };
    while (inLeft > 0) {
      char* outPointer = chunkStart;
      std::size_t outLeft = sizeof(chunk);
      const std::size_t status = iconv(handle_, &inPointer, &inLeft, &outPointer, &outLeft);
      const int error = errno;
      drain(outPointer);
      if (status != static_cast<std::size_t>(-1) || error == E2BIG) continue;
      const std::size_t skipped = std::min(inLeft, onError(out));
      inPointer += skipped;
      inLeft -= skipped;
      iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    }
    char* outPointer = chunkStart;
    std::size_t outLeft = sizeof(chunk);
    iconv(handle_, nullptr, nullptr, &outPointer, &outLeft);
    drain(outPointer);
  }

 private:
  iconv_t handle_;
};

}  // namespace

bool platformConverts(const CodePage& page) {
  return page.iconvName != nullptr && Converter(kNativeUtf32, page.iconvName).isOpen();
}

std::u32string platformDecode(std::string_view bytes, const CodePage& page) {
  std::u32string out;
  Converter converter(kNativeUtf32, page.iconvName);
  if (!converter.isOpen()) return out;
  converter.run(bytes, out, [](std::u32string& text) {
    text.push_back(kReplacement);
    return std::size_t{1};
  });
  return out;
}

std::string platformEncode(std::u32string_view text, const CodePage& page) {
  std::string out;
  Converter converter(page.iconvName, kNativeUtf32);
  if (!converter.isOpen()) return out;
  const std::string_view units(reinterpret_cast<const char*>(text.data()),
                               text.size() * sizeof(char32_t));
  converter.run(units, out, [](std::string& bytes) {
    bytes.push_back('?');
    return sizeof(char32_t);
  });
  return out;
}

}  // namespace zelhost::detail
