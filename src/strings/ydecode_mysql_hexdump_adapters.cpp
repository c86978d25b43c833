#include "strings/ydecode_mysql_hexdump_adapters.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "bridge/adapter_support.h"
#include "bridge/memory_block.h"
#include "strings/ydecode_mysql_hexdump.h"

namespace zel::adapters {

REALobject yDecodeMemoryZEL(REALobject data) noexcept {
  return guarded(OnFailure::emptyIfOutOfMemory, [&] {
    const MemoryBlockView block(data);
    const std::span<const std::uint8_t> body = block.bytes();
    const std::string decoded =
        strings::yDecode({reinterpret_cast<const char*>(body.data()), body.size()});
    return buildMemoryBlock(
        {reinterpret_cast<const std::uint8_t*>(decoded.data()), decoded.size()});
  });
}

REALstring yDecodeStringZEL(REALstring data) noexcept {
  return bytesToString(OnFailure::emptyIfOutOfMemory, encoding::kNone, &strings::yDecode, data);
}

REALstring DecodingFromMySQLZEL(REALstring s) noexcept {
  return bytesToString(OnFailure::emptyIfOutOfMemory, encoding::kNone, &strings::decodeMySqlEscapes,
                       s);
}

REALstring HexstringZEL(REALstring input, RBInteger hexLength, RBInteger lineLength,
                        REALstring lineStart, REALstring lineEnd, REALstring spacer,
                        REALstring filler) noexcept {
  return bytesToString(
      OnFailure::emptyIfOutOfMemory, encoding::kASCII,
      [&](std::string_view bytes, std::string_view start, std::string_view end,
          std::string_view between, std::string_view fill) {
        return strings::hexDump(bytes, {hexLength, lineLength, start, end, between, fill});
      },
      input, lineStart, lineEnd, spacer, filler);
}

}  // namespace zel::adapters
