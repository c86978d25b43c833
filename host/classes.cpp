// The host classes the plug-in uses, as tables: MemoryBlock, the exception classes and the string
// array.
#include <algorithm>
#include <cstring>

#include "objects.h"
#include "service_table.h"

namespace zelhost::detail {
namespace {

MemoryBlockData& blockData(HostObject& object) {
  return static_cast<MemoryBlockData&>(*object.data);
}

void resize(MemoryBlockData& block, RBInteger size) {
  auto bytes = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(size) + 1);
  std::memcpy(bytes.get(), block.bytes.get(), static_cast<std::size_t>(std::min(size, block.size)));
  block.bytes = std::move(bytes);
  block.size = size;
}

void construct(REALobject self, RBInteger size) {
  auto* block = objectData<MemoryBlockData>(self, "MemoryBlock.Constructor");
  if (block == nullptr) return;
  if (memoryBlockConstructorFails() || size < 0) {
    REALobject exception = makeException("OutOfMemoryException", "Not enough memory.");
    raiseException(exception);
    releaseObject(exception, "MemoryBlock.Constructor");
    return;
  }
  block->bytes = std::make_unique<std::uint8_t[]>(static_cast<std::size_t>(size) + 1);
  block->size = size;
}

void* dataPointer(REALobject self) {
  auto* block = objectData<MemoryBlockData>(self, "MemoryBlock.Operator_Convert");
  return block && !block->withoutData ? block->bytes.get() : nullptr;
}

}  // namespace

std::vector<ClassInfo> memoryBlockClasses() {
  ClassInfo memoryBlock{"MemoryBlock", {}, {}, [] { return std::make_unique<MemoryBlockData>(); }};
  memoryBlock.properties.push_back({"Size", PropertyType::Integer,
                                    [](HostObject& object) {
                                      return PropertyValue{blockData(object).size, nullptr};
                                    },
                                    [](HostObject& object, const PropertyValue& value) {
                                      if (value.number >= 0)
                                        resize(blockData(object), value.number);
                                    }});
  memoryBlock.methods = {
      {"Constructor(bytes as Integer)", reinterpret_cast<void*>(&construct)},
      {"Operator_Convert() As Ptr", reinterpret_cast<void*>(&dataPointer)},
  };
  return {std::move(memoryBlock)};
}

std::vector<ClassInfo> exceptionClasses() {
  std::vector<ClassInfo> table;
  for (const char* name : {"RuntimeException", "OutOfMemoryException", "OutOfBoundsException",
                           "IllegalCastException"}) {
    table.push_back(
        {name, {{"Message", PropertyType::String}, {"ErrorNumber", PropertyType::Integer}}, {}});
  }
  return table;
}

std::vector<ClassInfo> arrayClasses() {
  return {
      {std::string(kStringArrayClass), {}, {}, [] { return std::make_unique<StringArrayData>(); }}};
}

}  // namespace zelhost::detail
