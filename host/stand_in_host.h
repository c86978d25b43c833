// The stand-in host: plays the host's runtime for tests, benchmarks and zelhost. It loads the
// plug-in, hands it a resolver, records what it registers and calls the registered functions the
// way compiled host code would. One host per process (the resolver has no context argument).
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/host_types.h"

namespace zelhost {

struct HostConfig {
  double version = 2025.03;  // what REALGetRBVersion reports
  bool inRuntime = true;     // REALinRuntime: true in a built application, false in the IDE
};

struct RaisedException {
  std::string className;
  std::string message;  // as UTF-8
  RBInteger errorNumber = 0;
};

// A parsed declaration: "Name(p as T, extends ref as C, x as T = default, assigns v as T) as R".
// A property reads as "Name as Type": no parameters, the type as result.
struct Parameter {
  std::string name;
  std::string type;  // normalised lower case: "string", "integer", "boolean", "double", "ptr",
                     // "memoryblock", "styledtext", "string()", ...
  std::optional<std::string> defaultValue;
  bool extends = false;
  bool assigns = false;
};
struct Declaration {
  std::string name;
  std::vector<Parameter> parameters;
  std::string resultType;  // normalised as above; empty for none
};
Declaration parseDeclaration(std::string_view text);
// Same name (ignoring case), parameter types and result type; parameter names do not count.
bool sameSignature(const Declaration& a, const Declaration& b);

// One registered member as the plug-in handed it over.
struct RegisteredMember {
  enum class Kind { Method, ClassExtensionMethod, ModuleMethod, ModuleProperty };
  Kind kind;
  std::string owner;        // class or module name; empty for loose methods
  std::string declaration;  // a property: "Name as Type"
  std::uint32_t flags;
  REALproc function;  // getter for properties
  REALproc setter;
  Declaration parsed;
};

struct Registration {
  std::vector<RegisteredMember> members;     // in registration order
  std::vector<std::string> classExtensions;  // names
  std::vector<std::string> modules;          // names
  std::vector<int> pluginVersions;           // RegisterPluginVersion calls
};

// ---- set-up -------------------------------------------------------------------------------

// Resets the host's configuration, faults, counters, raised exception, log capture, protocol
// errors and registration. Live strings and objects are kept: they are owned by whoever made them.
void configure(const HostConfig& config);
const HostConfig& config();

// Loads a fresh copy of the plug-in library (every call is a new instance, so each test can start
// the plug-in under its own configuration), calls REALPluginMain with the resolver and returns
// what it registered (the previous registration is dropped). Throws std::runtime_error when the
// library cannot be loaded.
const Registration& loadPlugin(const std::string& path);
const Registration& registration();
// The stand-in's resolver itself, for code linked into the test that wants to run against it.
void* resolve(const char* name);

// ---- faults -------------------------------------------------------------------------------

// Both throw std::invalid_argument for a name that is not a service of this host.
void setServiceMissing(std::string_view service, bool missing = true);  // resolver answers null
void setServiceFailing(std::string_view service,
                       bool failing = true);  // returns its failure result
void failNextAllocations(int count);          // the next N string or object creations fail (null)
// MemoryBlock's "Constructor(bytes as Integer)" raises OutOfMemoryException and allocates nothing.
void setMemoryBlockConstructorFailing(bool failing = true);
// PluginGetStringData hands out buffers whose bytes after the text are not zero (default: zeros).
void setStringDataTerminated(bool terminated);
int resolverLookups(std::string_view service);  // how often the plug-in asked for a service
int serviceCalls(std::string_view service);     // how often a service was called

// Misuse of the host by the plug-in (an unknown or released handle, a record disposed twice...),
// one message each, oldest first. The host answers such calls with the service's failure result.
std::vector<std::string> protocolErrors();

// ---- strings ------------------------------------------------------------------------------

// New host string holding one reference owned by the caller. Not subject to injected faults.
REALstring makeString(std::string_view bytes, std::uint32_t encoding = encoding::kUTF8);
// A string whose bytes live outside the 42-byte inline layout.
REALstring makeDetachedString(std::string_view bytes, std::uint32_t encoding);
std::string stringBytes(REALstring s);  // empty for nil
std::uint32_t stringEncoding(REALstring s);
std::string convertToUtf8(REALstring s);  // the host's own conversion
const void* stringStorage(REALstring s);  // address of the stored bytes
void retain(REALstring s);
void release(REALstring s);
int referenceCount(REALstring s);

// ---- objects ------------------------------------------------------------------------------

REALobject newInstance(const char* className);  // +1, null for an unknown class
void retain(REALobject o);
void release(REALobject o);
int referenceCount(REALobject o);
std::string className(REALobject o);
REALobject makeMemoryBlock(std::string_view bytes);  // +1
std::string memoryBlockBytes(REALobject block);      // empty for nil
// A block whose Operator_Convert() answers null.
REALobject makeMemoryBlockWithoutData(RBInteger size);

// String arrays made by the host for the plug-in.
std::vector<std::optional<std::string>> stringArrayItems(REALarray a);  // nullopt for nil items
void release(REALarray a);

// ---- styled text --------------------------------------------------------------------------

// One style run as a test builds or finds it; text and font are raw bytes in their encodings.
struct StyledRun {
  std::string text;
  std::uint32_t textEncoding = encoding::kUTF8;
  std::optional<std::string> font;  // nullopt: Font is the nil string
  std::uint32_t fontEncoding = encoding::kUTF8;
  RBInteger size = 0;
  bool bold = false;
  bool italic = false;
  bool underline = false;
  RBColor color = 0;
  bool operator==(const StyledRun&) const = default;
};

struct StyledParagraph {
  RBInteger start = 0;
  RBInteger end = 0;  // just past the paragraph's break
  RBInteger alignment = 0;
  bool operator==(const StyledParagraph&) const = default;
};

// A new StyledText (+1) with these runs appended in order; alignments[i] goes to paragraph i.
REALobject makeStyledText(const std::vector<StyledRun>& runs,
                          const std::vector<RBInteger>& alignments = {});
std::vector<StyledRun> styledRuns(REALobject styledText);
std::vector<StyledParagraph> styledParagraphs(REALobject styledText);
// StyleRun answers as if it had no "Font" property; "FontName" (the same value) still works.
void setStyleRunFontMissing(bool missing = true);

// ---- accounting ---------------------------------------------------------------------------

struct LiveCounts {
  int strings = 0;
  int objects = 0;     // arrays included
  int stringData = 0;  // PluginGetStringData records not yet disposed
  bool operator==(const LiveCounts&) const = default;
};
LiveCounts liveCounts();

// The exception raised during the last call on this thread, taken (cleared) by this read.
std::optional<RaisedException> takeRaisedException();

// Lines written to standard error (the plug-in's debug log) while capture is on. Switching it on
// starts an empty capture; configure() switches it off.
void captureLog(bool on);
std::vector<std::string> capturedLog();

// ---- calls --------------------------------------------------------------------------------

// Finds a registered member by its exact declaration (or one with the same signature), or by
// name ("Name", or "Owner.Name" for a module or class member). Loose methods come first, then
// class-extension methods, module methods and module properties. Null when there is none.
const RegisteredMember* findMethod(std::string_view declarationOrName);

// Calls a registered function through its pointer with C++ arguments; throws std::logic_error
// when no member of that declaration or name has a C signature matching the argument and result
// types. Every parameter is passed (defaults are the caller's business, as in compiled code); a
// class-extension method takes its object first; a module property's getter takes nothing.
template <class Result, class... Args>
Result call(std::string_view declaration, Args... args);

// The same, through the member's setter: the arguments end with the assigned value.
template <class... Args>
void assign(std::string_view declaration, Args... args);

// The checked function pointer itself, for callers that call it many times.
template <class Result, class... Args>
Result (*bind(std::string_view declaration))(Args...);

// A dynamic call for zelhost: arguments as text in the zelhost ARG forms, result as the JSON of
// the --json form. Throws std::invalid_argument on usage errors (unknown name, no overload fits,
// malformed argument).
std::string callJson(std::string_view name, const std::vector<std::string>& args);

}  // namespace zelhost

#include "stand_in_host_call.h"
