#include "support/call_helpers.h"

#include <gtest/gtest.h>

#include "support/plugin_fixture.h"

namespace zeltest {

Text utf16(std::u16string_view units) {
  return {utf16Bytes(units), encoding::kUTF16};
}

REALstring makeArgument(const Text& text) {
  return text.nil ? nullptr : zelhost::makeString(text.bytes, text.encoding);
}

REALstring makeArgument(const std::optional<std::string>& bytes, std::uint32_t encoding) {
  return bytes ? zelhost::makeString(*bytes, encoding) : nullptr;
}

void expectString(REALstring result, const std::optional<std::string>& expected,
                  std::uint32_t encoding) {
  const HostString owned(result);
  EXPECT_EQ(zelhost::takeRaisedException(), std::nullopt);
  if (!expected) {
    EXPECT_EQ(result, nullptr);
    return;
  }
  ASSERT_NE(result, nullptr);
  EXPECT_EQ(owned.bytes(), *expected);
  EXPECT_EQ(owned.encoding(), encoding);
}

void expectOwnString(REALstring result, REALstring argument) {
  const HostString owned(result);
  EXPECT_EQ(result, argument);
  EXPECT_EQ(zelhost::referenceCount(argument), 2);
}

}  // namespace zeltest
