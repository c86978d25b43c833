// Round trips of the transfer-encoding kernels: every encoder writes ASCII, and decoding what an
// encoder wrote gives the bytes back, for each URL option where that holds; quoted-printable
// gives them back with every line break as LF.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "strings/transfer_encodings.h"

namespace {

using namespace zel::strings;

constexpr std::int64_t kDefaultLineLength = 72;
constexpr std::size_t kLongestTriple = 4;  // "=XX" and its soft break, whatever the line length

void check(bool holds, const char* what, std::string_view input) {
  if (holds) return;
  std::fprintf(stderr, "FUZZ FINDING: %s (input of %zu bytes)\n", what, input.size());
  std::abort();
}

bool isAscii(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// CR LF and LF CR are one break, every other CR or LF one break each; each break becomes LF.
std::string withLfBreaks(std::string_view bytes) {
  std::string out;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char c = bytes[i];
    if (c != '\r' && c != '\n') {
      out.push_back(c);
      continue;
    }
    const char other = c == '\r' ? '\n' : '\r';
    if (i + 1 < bytes.size() && bytes[i + 1] == other) ++i;
    out.push_back('\n');
  }
  return out;
}

std::int64_t effectiveLineLength(std::int64_t lineLength) {
  const auto narrowed = static_cast<std::int32_t>(lineLength);
  return narrowed > 1 ? narrowed : kDefaultLineLength;
}

bool linesFit(std::string_view encoded, std::int64_t lineLength) {
  const std::size_t limit =
      std::max<std::size_t>(static_cast<std::size_t>(lineLength - 1), kLongestTriple);
  std::size_t start = 0;
  while (start <= encoded.size()) {
    const std::size_t end = std::min(encoded.find("\r\n", start), encoded.size());
    if (end - start > limit) return false;
    start = end + 2;
  }
  return true;
}

void checkUrl(std::string_view bytes) {
  // Decoding option 1 turns "+" into a space: it undoes encoding options 1 and 2, option 0
  // undoes 0, 2 and 3.
  struct RoundTrip {
    std::int64_t encodeOptions;
    std::int64_t decodeOptions;
  };
  constexpr RoundTrip kRoundTrips[] = {{0, 0}, {1, 1}, {2, 0}, {2, 1}, {3, 0}};
  for (const RoundTrip& trip : kRoundTrips) {
    const std::string encoded = encodeUrl(bytes, trip.encodeOptions);
    check(isAscii(encoded), "URL encoding is not ASCII", bytes);
    check(decodeUrl(encoded, trip.decodeOptions) == bytes, "URL round trip changed the bytes",
          bytes);
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  const auto lineLength = input.ConsumeIntegral<std::int64_t>();
  const std::string bytes = input.ConsumeRemainingBytesAsString();

  const std::string hex = encodeHex(bytes);
  check(isAscii(hex), "hex encoding is not ASCII", bytes);
  check(decodeHex(hex) == bytes, "hex round trip changed the bytes", bytes);

  checkUrl(bytes);

  const std::string printable = encodeQuotedPrintable(bytes, lineLength);
  check(isAscii(printable), "quoted-printable encoding is not ASCII", bytes);
  check(linesFit(printable, effectiveLineLength(lineLength)), "quoted-printable line too long",
        bytes);
  check(decodeQuotedPrintable(printable) == withLfBreaks(bytes),
        "quoted-printable round trip changed the bytes", bytes);

  if (const auto subject = encodeEmailSubject(bytes)) {
    check(isAscii(*subject), "mail subject encoding is not ASCII", bytes);
  }
  return 0;
}
