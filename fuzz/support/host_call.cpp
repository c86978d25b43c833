#include "support/host_call.h"

#include <ffi.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "calls.h"
#include "ffi_types.h"

namespace zeltest {
namespace {

using zelhost::detail::CType;
using zelhost::detail::ffiType;
using Int64 = std::numeric_limits<std::int64_t>;
using Int32 = std::numeric_limits<std::int32_t>;
using Real = std::numeric_limits<double>;

constexpr std::array kEncodings = {
    encoding::kUTF8,    encoding::kASCII,    encoding::kNone,      encoding::kUTF16,
    encoding::kUTF16BE, encoding::kUTF16LE,  encoding::kUTF32,     encoding::kUTF32BE,
    encoding::kUTF32LE, encoding::kMacRoman, encoding::kISOLatin1, encoding::kWindowsLatin1,
};

constexpr std::array<std::int64_t, 13> kExtremeIntegers = {Int64::min(),
                                                           Int64::min() + 1,
                                                           std::int64_t{Int32::min()} - 1,
                                                           Int32::min(),
                                                           -1,
                                                           0,
                                                           1,
                                                           Int32::max(),
                                                           std::int64_t{Int32::max()} + 1,
                                                           0xFFFFFFFF,
                                                           std::int64_t{1} << 53,
                                                           Int64::max() - 1,
                                                           Int64::max()};

// Sizes that are either harmless or impossible to allocate.
constexpr std::array<std::int64_t, 6> kExtremeSizes = {Int64::min(), Int32::min(), -1, 0, 1,
                                                       Int64::max()};

constexpr std::array<std::int64_t, 3> kNegativeSizes = {Int64::min(), Int32::min(), -1};

constexpr std::array kExtremeDoubles = {0.0,
                                        -0.0,
                                        0.5,
                                        2.5,
                                        1.0 / 3.0,
                                        1e15,
                                        -1e300,
                                        Real::max(),
                                        Real::lowest(),
                                        Real::min(),
                                        Real::denorm_min(),
                                        Real::epsilon(),
                                        Real::infinity(),
                                        -Real::infinity(),
                                        Real::quiet_NaN()};

constexpr std::int64_t kSmallIntegerMin = -4;
constexpr std::int64_t kSmallIntegerMax = 300;
constexpr std::int64_t kWideIntegerLimit = 70000;
constexpr std::int64_t kSizeLimit = 256;
constexpr RBInteger kMaxBlockWithoutData = 64;

template <std::size_t N, class T>
T pick(FuzzedDataProvider& input, const std::array<T, N>& values) {
  return values[input.ConsumeIntegralInRange<std::size_t>(0, N - 1)];
}

std::int64_t integerArgument(FuzzedDataProvider& input, bool sizesAllocation) {
  enum Kind { Small, Wide, Extreme, kKinds };
  switch (input.ConsumeIntegralInRange<int>(0, kKinds - 1)) {
    case Small:
      return input.ConsumeIntegralInRange(kSmallIntegerMin, kSmallIntegerMax);
    case Wide:
      return sizesAllocation ? input.ConsumeIntegralInRange<std::int64_t>(0, kSizeLimit)
                             : input.ConsumeIntegralInRange(-kWideIntegerLimit, kWideIntegerLimit);
    default:
      return sizesAllocation ? pick(input, kExtremeSizes) : pick(input, kExtremeIntegers);
  }
}

double doubleArgument(FuzzedDataProvider& input) {
  return input.ConsumeBool() ? pick(input, kExtremeDoubles) : input.ConsumeFloatingPoint<double>();
}

REALstring stringArgument(FuzzedDataProvider& input) {
  enum Form { Nil, Inline, Detached, AnyEncoding, kForms };
  const int form = input.ConsumeIntegralInRange<int>(0, kForms - 1);
  if (form == Nil) return nullptr;
  const std::uint32_t encoding =
      form == AnyEncoding ? input.ConsumeIntegral<std::uint32_t>() : pick(input, kEncodings);
  const std::string bytes = input.ConsumeRandomLengthString();
  return form == Detached ? zelhost::makeDetachedString(bytes, encoding)
                          : zelhost::makeString(bytes, encoding);
}

REALobject memoryBlockArgument(FuzzedDataProvider& input) {
  enum Form { Nil, Bytes, WithoutData, kForms };
  switch (input.ConsumeIntegralInRange<int>(0, kForms - 1)) {
    case Nil:
      return nullptr;
    case Bytes:
      return zelhost::makeMemoryBlock(input.ConsumeRandomLengthString());
    default:
      return zelhost::makeMemoryBlockWithoutData(
          input.ConsumeIntegralInRange<RBInteger>(0, kMaxBlockWithoutData));
  }
}

// One C argument and what the host made for it, released when the call is over.
struct Argument {
  zelhost::detail::ArgumentValue value{};
  REALstring string = nullptr;
  REALobject object = nullptr;
  // Exactly as long as its bytes, so that reading past them is caught.
  std::unique_ptr<char[]> buffer;
  std::size_t bufferSize = 0;

  Argument() = default;
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;
  ~Argument() {
    zelhost::release(string);
    zelhost::release(object);
  }
};

void fill(Argument& argument, CType type, bool sizesAllocation, const Argument* previous,
          FuzzedDataProvider& input) {
  switch (type) {
    case CType::String:
      argument.string = stringArgument(input);
      argument.value.pointer = argument.string;
      break;
    case CType::Object:
      argument.object = memoryBlockArgument(input);
      argument.value.pointer = argument.object;
      break;
    case CType::Ptr: {
      const std::string bytes = input.ConsumeRandomLengthString();
      argument.bufferSize = bytes.size();
      argument.buffer = std::make_unique<char[]>(bytes.size());
      std::copy(bytes.begin(), bytes.end(), argument.buffer.get());
      argument.value.pointer = argument.buffer.get();
      break;
    }
    case CType::Integer:
      // The size that follows a Ptr is the caller's promise: never more than the buffer holds.
      if (previous != nullptr && previous->buffer != nullptr) {
        argument.value.integer = input.ConsumeBool() ? input.ConsumeIntegralInRange<std::int64_t>(
                                                           0, previous->bufferSize)
                                                     : pick(input, kNegativeSizes);
      } else {
        argument.value.integer = integerArgument(input, sizesAllocation);
      }
      break;
    case CType::Boolean:
      argument.value.boolean = input.ConsumeIntegral<std::int8_t>();
      break;
    case CType::Double:
      argument.value.real = doubleArgument(input);
      break;
    case CType::Color:
      argument.value.color = input.ConsumeIntegral<std::uint32_t>();
      break;
    case CType::Array:
    case CType::Void:
      break;
  }
}

void releaseResult(CType type, ffi_arg raw) {
  const auto pointer = reinterpret_cast<void*>(static_cast<std::uintptr_t>(raw));
  if (type == CType::String) zelhost::release(static_cast<REALstring>(pointer));
  if (type == CType::Object || type == CType::Array) {
    zelhost::release(static_cast<REALobject>(pointer));
  }
}

}  // namespace

std::optional<zelhost::RaisedException> callWithFuzzedArguments(
    const zelhost::RegisteredMember& member, FuzzedDataProvider& input,
    std::span<const std::string_view> sizeParameters) {
  const auto signature = zelhost::detail::cSignature(member, zelhost::detail::Through::Function);
  const std::vector<zelhost::Parameter>& parameters = member.parsed.parameters;
  std::vector<Argument> arguments(parameters.size());
  std::vector<ffi_type*> types;
  std::vector<void*> values;
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    const CType type = *signature.parameters[i];
    std::string name = parameters[i].name;
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
    const bool sizesAllocation = std::ranges::find(sizeParameters, name) != sizeParameters.end();
    fill(arguments[i], type, sizesAllocation, i > 0 ? &arguments[i - 1] : nullptr, input);
    types.push_back(ffiType(type));
    values.push_back(&arguments[i].value);
  }
  ffi_cif cif{};
  if (ffi_prep_cif(&cif, FFI_DEFAULT_ABI, static_cast<unsigned>(types.size()),
                   ffiType(*signature.result), types.data()) != FFI_OK) {
    std::abort();
  }
  union {
    ffi_arg integer;
    double real;
  } result{};
  ffi_call(&cif, reinterpret_cast<void (*)()>(member.function), &result, values.data());
  if (*signature.result != CType::Double) releaseResult(*signature.result, result.integer);
  return zelhost::takeRaisedException();
}

}  // namespace zeltest
