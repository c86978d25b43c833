// Every registered global function and StyledText.RTFDataZEL, called from eight threads at once on
// shared host strings, blocks and objects: every result must equal the one a lone thread got.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "calls.h"
#include "ffi_types.h"
#include "support/call_helpers.h"
#include "support/plugin_fixture.h"

namespace zeltest {
namespace {

using namespace std::string_literals;
using zelhost::Parameter;
using zelhost::RegisteredMember;
using zelhost::detail::CType;

constexpr int kThreads = 8;
constexpr std::chrono::milliseconds kDuration{1500};
constexpr std::size_t kRegisteredFunctions = 72;
constexpr std::size_t kFailuresShown = 10;

// These change the string they are given in place: each call gets its own copy.
const std::set<std::string, std::less<>> kChangesItsArgument = {"ClearStringContentZEL"};
// Random bytes: only the length of the result can be compared (the encoding says whether the
// bytes happened to be ASCII).
const std::set<std::string, std::less<>> kRandomResult = {"RandomBytesStringZEL"};

// One set of arguments shared by every call: String parameters take the texts in turn.
struct ArgumentSet {
  const char* name;
  std::vector<Text> texts;
  RBBoolean flag;
  double number;
};

const ArgumentSet kArgumentSets[] = {
    {"UTF-8 markup",
     {{"Caf\xC3\xA9 <b>\"Hello\" & w\xC3\xB6rld</b> a=3D%41 TRUE\r\nx\xCC\x81y \xF0\x9F\x98\x80"},
      {"l"},
      {"w\xC3\xB6rld"}},
     1,
     1234.5678},
    {"UTF-16", {utf16(u"line one\r\nline \u00E9 two & <three>"), utf16(u"e")}, 0, -0.001},
    {"raw bytes",
     {{"\xFF\0\xC3\xA9 abc \xED\x41\x80 {\\rtf1 x}"s, encoding::kNone}, {"\xC3", encoding::kNone}},
     1,
     7.0},
    {"nil", {kNil}, 0, 0.0},
};

using Value = zelhost::detail::ArgumentValue;

std::string describeString(REALstring s, bool lengthOnly) {
  if (s == nullptr) return "nil";
  const std::string bytes = zelhost::stringBytes(s);
  if (lengthOnly) return std::to_string(bytes.size()) + " bytes";
  return std::to_string(zelhost::stringEncoding(s)) + ":" + bytes;
}

// The result as text, releasing it, followed by any exception raised on this thread.
std::string describeResult(CType type, const Value& result, bool lengthOnly) {
  std::string out;
  switch (type) {
    case CType::String:
      out = describeString(static_cast<REALstring>(result.pointer), lengthOnly);
      zelhost::release(static_cast<REALstring>(result.pointer));
      break;
    case CType::Array: {
      const auto array = static_cast<REALarray>(result.pointer);
      if (array != nullptr) {
        for (const auto& item : zelhost::stringArrayItems(array)) out += item.value_or("nil") + "|";
      }
      zelhost::release(array);
      break;
    }
    case CType::Object: {
      const auto object = static_cast<REALobject>(result.pointer);
      if (object != nullptr) out = zelhost::className(object);
      zelhost::release(object);
      break;
    }
    case CType::Integer:
      out = std::to_string(result.integer);
      break;
    case CType::Boolean:
      out = std::to_string(result.boolean != 0);
      break;
    case CType::Double: {
      char exact[64];
      std::snprintf(exact, sizeof exact, "%a", result.real);
      out = exact;
      break;
    }
    case CType::Color:
      out = std::to_string(result.color);
      break;
    case CType::Ptr:
    case CType::Void:
      break;
  }
  if (const auto raised = zelhost::takeRaisedException()) {
    out += " raised " + raised->className + ": " + raised->message;
  }
  return out;
}

// One registered function with its arguments from one set, made once and shared by all threads.
class SharedCall {
 public:
  SharedCall(const RegisteredMember& member, const ArgumentSet& set, REALobject block,
             std::string_view ptrBytes)
      : label_(member.declaration + " with " + set.name),
        privateStrings_(kChangesItsArgument.contains(member.parsed.name)),
        lengthOnly_(kRandomResult.contains(member.parsed.name)) {
    const auto signature = zelhost::detail::cSignature(member, zelhost::detail::Through::Function);
    function_ = member.function;
    result_ = signature.result.value_or(CType::Void);
    std::size_t nextText = 0;
    for (std::size_t i = 0; i < signature.parameters.size(); ++i) {
      const Parameter& parameter = member.parsed.parameters[i];
      const CType type = signature.parameters[i].value_or(CType::Void);
      Value value{};
      switch (type) {
        case CType::String: {
          const Text& text = set.texts[nextText++ % set.texts.size()];
          strings_.push_back(makeArgument(text));
          value.pointer = strings_.back();
          break;
        }
        case CType::Integer:
          value.integer = integerFor(parameter, ptrBytes.size());
          break;
        case CType::Boolean:
          value.boolean = set.flag;
          break;
        case CType::Double:
          value.real = set.number;
          break;
        case CType::Ptr:
          value.pointer = const_cast<char*>(ptrBytes.data());
          break;
        case CType::Object:
          value.pointer = block;
          break;
        default:
          ADD_FAILURE() << "no argument of this type for " << member.declaration;
      }
      parameters_.push_back(type);
      values_.push_back(value);
    }
  }
  SharedCall(const SharedCall&) = delete;
  SharedCall& operator=(const SharedCall&) = delete;
  ~SharedCall() {
    for (const REALstring s : strings_) zelhost::release(s);
  }

  const std::string& label() const { return label_; }

  std::string call() const {
    std::vector<Value> values = values_;
    std::vector<REALstring> copies;
    for (std::size_t i = 0; privateStrings_ && i < values.size(); ++i) {
      if (parameters_[i] != CType::String || values[i].pointer == nullptr) continue;
      const auto shared = static_cast<REALstring>(values[i].pointer);
      copies.push_back(
          zelhost::makeString(zelhost::stringBytes(shared), zelhost::stringEncoding(shared)));
      values[i].pointer = copies.back();
    }
    const Value result = zelhost::detail::callThroughFfi(function_, result_, parameters_, values);
    for (const REALstring copy : copies) zelhost::release(copy);
    return describeResult(result_, result, lengthOnly_);
  }

 private:
  // A size goes with the shared buffer; other numbers take their default or a small count.
  static RBInteger integerFor(const Parameter& parameter, std::size_t ptrSize) {
    constexpr RBInteger kSmallCount = 5;
    std::string name = parameter.name;
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
    if (name == "size") return static_cast<RBInteger>(ptrSize);
    if (parameter.defaultValue) return std::stoll(*parameter.defaultValue);
    return kSmallCount;
  }

  std::string label_;
  bool privateStrings_, lengthOnly_;
  void (*function_)() = nullptr;
  CType result_ = CType::Void;
  std::vector<CType> parameters_;
  std::vector<Value> values_;
  std::vector<REALstring> strings_;
};

// The functions are registered loose on old hosts and in a module on newer ones.
bool isGlobalFunction(const RegisteredMember& member) {
  const bool loose = member.kind == RegisteredMember::Kind::Method ||
                     member.kind == RegisteredMember::Kind::ModuleMethod;
  return loose && std::ranges::none_of(member.parsed.parameters,
                                       [](const Parameter& p) { return p.extends; });
}

class ConcurrentCallsTest : public PluginFixture, public ::testing::WithParamInterface<double> {
 protected:
  zelhost::HostConfig hostConfig() const override { return {GetParam(), true}; }

  bool rtfIsClassExtension() const {
    const double version = zelhost::config().version;
    return version < 2013.0 || version >= 3000.0;
  }
  static std::string readRtf(REALobject styledText) {
    const HostString rtf(zelhost::call<REALstring>("RTFDataZEL", styledText, RBBoolean{0}));
    return rtf.bytes();
  }
  void assignRtf(REALobject styledText, REALstring rtf) const {
    if (rtfIsClassExtension()) {
      zelhost::assign("RTFDataZEL", styledText, RBBoolean{0}, rtf);
    } else {
      zelhost::call<void>("RTFDataZEL", styledText, RBBoolean{0}, rtf);
    }
  }
  // What a fresh StyledText holds after the RTF is assigned to it.
  std::string runsAfterAssigning(REALstring rtf) const {
    const HostObject target(zelhost::newInstance("StyledText"));
    assignRtf(target, rtf);
    std::string runs;
    for (const auto& run : zelhost::styledRuns(target)) {
      runs += run.text + "/" + run.font.value_or("nil") + "/" + std::to_string(run.size) +
              (run.bold ? "b" : "") + (run.italic ? "i" : "") + (run.underline ? "u" : "") +
              std::to_string(run.color) + "|";
    }
    return runs + " raised " + std::to_string(zelhost::takeRaisedException().has_value());
  }
};

TEST_P(ConcurrentCallsTest, EveryFunctionGivesTheSameResultsFromEightThreads) {
  const std::string ptrBytes = "ptr \x01 data \xC3\xA9\xFF text";
  const HostObject block(zelhost::makeMemoryBlock("block \x02 bytes \xE2\x82\xAC\xC3"));
  std::vector<std::unique_ptr<SharedCall>> calls;
  std::size_t functions = 0;
  for (const RegisteredMember& member : registration().members) {
    if (!isGlobalFunction(member)) continue;
    ++functions;
    for (const ArgumentSet& set : kArgumentSets) {
      calls.push_back(std::make_unique<SharedCall>(member, set, block.get(), ptrBytes));
    }
  }
  ASSERT_EQ(functions, kRegisteredFunctions);

  const HostObject styledText(zelhost::makeStyledText(
      {{"Caf\xC3\xA9 ", encoding::kUTF8, "Arial", encoding::kUTF8, 12, true},
       {"{w\xC3\xB6rld}\n\\", encoding::kUTF8, "Times", encoding::kUTF8, 9, false, true}},
      {2}));
  const std::string rtf = readRtf(styledText);
  const HostString rtfString(rtf, encoding::kUTF8);

  std::vector<std::string> expected;
  for (const auto& call : calls) expected.push_back(call->call());
  const std::string expectedRuns = runsAfterAssigning(rtfString);
  ASSERT_NE(rtf, "");

  std::mutex failuresMutex;
  std::vector<std::string> failures;
  const auto fail = [&](std::string what) {
    const std::lock_guard lock(failuresMutex);
    if (failures.size() < kFailuresShown) failures.push_back(std::move(what));
  };
  const auto deadline = std::chrono::steady_clock::now() + kDuration;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      // Each thread starts elsewhere in the list, so that different functions overlap.
      std::size_t next = calls.size() * static_cast<std::size_t>(t) / kThreads;
      do {
        for (std::size_t n = 0; n < calls.size(); ++n, next = (next + 1) % calls.size()) {
          const std::string got = calls[next]->call();
          if (got != expected[next]) fail(calls[next]->label() + ": " + got);
        }
        if (readRtf(styledText) != rtf) fail("RTFDataZEL read");
        if (runsAfterAssigning(rtfString) != expectedRuns) fail("RTFDataZEL assigned");
      } while (std::chrono::steady_clock::now() < deadline);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(failures, std::vector<std::string>{});
}

INSTANTIATE_TEST_SUITE_P(Hosts, ConcurrentCallsTest, ::testing::Values(2012.5, 2025.03),
                         [](const ::testing::TestParamInfo<double>& host) {
                           return "Host" + std::to_string(static_cast<int>(host.param * 100));
                         });

}  // namespace
}  // namespace zeltest
