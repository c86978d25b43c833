#include "strings/ydecode_mysql_hexdump_adapters.h"

#include <string_view>

#include "bridge/adapter_support.h"
#include "bridge/memory_block.h"
#include "strings/ydecode_mysql_hexdump.h"

namespace zel::adapters {

REALobject yDecodeMemoryZEL(REALobject data) noexcept {
  return guarded(OnFailure::emptyIfOutOfMemory, [&] {
    const MemoryBlockView block(data);
    return buildMemoryBlock(strings::yDecode(block.view()));
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
