// MemoryBlock access and the adapters' helpers through the stand-in host.
#include "bridge/memory_block.h"

#include <functional>
#include <thread>
#include <vector>

#include "bridge/adapter_support.h"
#include "bridge/host_string_bytes.h"
#include "bridge/host_text.h"
#include "bridge_fixture.h"

namespace zel {
namespace {

using zeltest::BridgeTest;
using zeltest::HostString;

using MemoryBlockTest = BridgeTest;

TEST_F(MemoryBlockTest, ReadsDataAndSize) {
  REALobject block = zelhost::makeMemoryBlock("abc");
  EXPECT_EQ(std::string_view(static_cast<const char*>(memoryBlockData(block)), 3), "abc");
  EXPECT_EQ(memoryBlockSize(block), 3);
  EXPECT_EQ(memoryBlockData(nullptr), nullptr);
  EXPECT_EQ(memoryBlockSize(nullptr), 0);
  zelhost::setServiceFailing("REALGetPropValueInteger");
  EXPECT_EQ(memoryBlockSize(block), 0);
  zelhost::release(block);
}

TEST_F(MemoryBlockTest, NewBlocksOfAtLeastTheSize) {
  EXPECT_EQ(newMemoryBlock(-1), nullptr);
  for (const RBInteger size : {0, 1, 4096}) {
    REALobject block = newMemoryBlock(size);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(memoryBlockSize(block), size);
    EXPECT_EQ(zelhost::referenceCount(block), 1);
    zelhost::release(block);
  }
  EXPECT_FALSE(zelhost::takeRaisedException());
}

TEST_F(MemoryBlockTest, BuildsACopy) {
  REALobject block = REALBuildMemoryblock("xyz", 3);
  EXPECT_EQ(zelhost::memoryBlockBytes(block), "xyz");
  zelhost::release(block);
  EXPECT_EQ(REALBuildMemoryblock("xyz", 0), nullptr);
  EXPECT_EQ(REALBuildMemoryblock(nullptr, 3), nullptr);
  EXPECT_FALSE(zelhost::takeRaisedException());
  EXPECT_TRUE(log().empty());
}

TEST_F(MemoryBlockTest, FailuresRaiseOutOfMemory) {
  const std::function<void()> faults[] = {
      [] { zelhost::setMemoryBlockConstructorFailing(); },
      [] { zelhost::failNextAllocations(1); },
      [] { zelhost::setServiceFailing("PluginCallFunctionWithExceptionHandler"); },
  };
  for (std::size_t i = 0; i < std::size(faults); ++i) {
    SCOPED_TRACE(i);
    zelhost::configure({});
    zelhost::captureLog(true);
    faults[i]();
    EXPECT_EQ(REALBuildMemoryblock("12345", 5), nullptr);
    const auto raised = zelhost::takeRaisedException();
    ASSERT_TRUE(raised);
    EXPECT_EQ(raised->className, "OutOfMemoryException");
    EXPECT_EQ(raised->message, "Failed to allocate a memoryblock with 5 bytes in size.");
    EXPECT_EQ(logCount("ZEL Debug: Error: Failed to allocate memoryblock 5"), 1);
    EXPECT_EQ(zelhost::liveCounts(), zelhost::LiveCounts{});
  }
}

TEST_F(MemoryBlockTest, ViewsLockTheirBlock) {
  REALobject block = zelhost::makeMemoryBlock("hello");
  {
    MemoryBlockView view(block, 1, 3);
    EXPECT_EQ(zelhost::referenceCount(block), 2);
    EXPECT_EQ(view.view(), "ell");
    openMemoryBlockView(view, block);  // reopening lets the first lock go
    EXPECT_EQ(view.view(), "hello");
    EXPECT_EQ(zelhost::referenceCount(block), 2);
    const HostStringBytes bytes(block);
    EXPECT_EQ(bytes.view(), "hello");
    EXPECT_EQ(zelhost::referenceCount(block), 3);
  }
  EXPECT_EQ(zelhost::referenceCount(block), 1);
  zelhost::release(block);

  const MemoryBlockView nil(nullptr, 0, 8);
  EXPECT_EQ(nil.data, nullptr);
  EXPECT_EQ(nil.size, 0);
  REALobject empty = zelhost::makeMemoryBlockWithoutData(8);
  {
    const MemoryBlockView withoutData(empty);
    EXPECT_TRUE(withoutData.bytes().empty());
  }
  EXPECT_EQ(logCount("data is NULL, so size fixed to zero."), 2);
  zelhost::release(empty);
}

TEST_F(MemoryBlockTest, ConcurrentFirstConstructionsAgree) {
  std::vector<std::thread> threads;
  std::atomic<int> made{0};
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      for (int i = 0; i < 50; ++i) {
        REALobject block = REALBuildMemoryblock("abc", 3);
        if (zelhost::memoryBlockBytes(block) == "abc") ++made;
        zelhost::release(block);
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(made, 200);
}

// An adapter in the shape the string functions use.
REALstring upperAsciiOrSame(REALstring argument) {
  HostText text(argument);
  std::string upper(text.ascii());
  bool changed = false;
  for (char& c : upper) {
    if (c >= 'a' && c <= 'z') {
      c = static_cast<char>(c - 32);
      changed = true;
    }
  }
  return changed ? buildString(upper, encoding::kASCII) : shareString(argument);
}

TEST_F(MemoryBlockTest, AdapterHelpers) {
  const HostString lower("abc", encoding::kUTF8);
  const HostString upper("ABC", encoding::kUTF8);
  OwnedString changed(upperAsciiOrSame(lower));
  EXPECT_EQ(zelhost::stringBytes(changed.get()), "ABC");
  EXPECT_EQ(zelhost::stringEncoding(changed.get()), encoding::kASCII);
  OwnedString same(upperAsciiOrSame(upper));
  EXPECT_EQ(same.get(), static_cast<REALstring>(upper));
  EXPECT_EQ(zelhost::referenceCount(upper), 2);
  REALstring handed = same.handOver();
  EXPECT_EQ(zelhost::referenceCount(upper), 2);
  zelhost::release(handed);

  EXPECT_EQ(buildString(std::string_view(), encoding::kUTF8), nullptr);
  OwnedString wide(buildString(std::u16string_view(u"\u00E9")));
  OwnedString wider(buildString(std::u32string_view(U"\U0001F600")));
  EXPECT_EQ(zelhost::stringBytes(wide.get()), "\xC3\xA9");
  EXPECT_EQ(zelhost::stringBytes(wider.get()), "\xF0\x9F\x98\x80");

  const std::vector<std::string> items = {"one", "", "caf\xC3\xA9"};
  REALarray array = buildStringArray(items, encoding::kUTF8);
  const std::vector<std::optional<std::string>> expected = {"one", std::nullopt, "caf\xC3\xA9"};
  EXPECT_EQ(zelhost::stringArrayItems(array), expected);
  zelhost::release(array);
  zelhost::setServiceFailing("RuntimeArrayCreateSingleDimBoundedArray");
  EXPECT_EQ(buildStringArray(items, encoding::kUTF8), nullptr);

  REALobject block = buildMemoryBlock("\x01\x02");
  EXPECT_EQ(zelhost::memoryBlockBytes(block), "\x01\x02");
  zelhost::release(block);
}

}  // namespace
}  // namespace zel
