// The host's plug-in interface in binary terms: value types, definition records, string-data
// record, encodings and flags. Written from the interface description; the host ships no header
// with this project.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/text_encodings.h"

using RBInteger = std::intptr_t;
using RBInt64 = std::int64_t;
using RBUInt64 = std::uint64_t;
using RBBoolean = std::int8_t;
using RBColor = std::uint32_t;

struct REALstringStruct;
struct REALobjectStruct;
struct REALarrayStruct;
using REALstring = REALstringStruct*;
using REALobject = REALobjectStruct*;
using REALarray = REALarrayStruct*;

// The generic code address stored in definition records.
using REALproc = void (*)();

struct REALattribute {
  const char* name;
  const char* value;
};

struct REALmethodDefinition {
  REALproc function;
  REALproc setterFunction;
  const char* declaration;
  std::uint32_t mFlags;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALproperty {
  const char* group;
  const char* name;
  const char* type;
  std::uint32_t flags;
  REALproc getter;
  REALproc setter;
  std::int32_t param;
  REALproc editor;
  std::size_t enumCount;
  const char** enumEntries;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALevent {
  const char* declaration;
  RBInteger forSystemUse;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALeventInstance {
  const char* name;
  REALproc implementation;
};

struct REALconstant {
  const char* declaration;
  void* reserved;
  std::uint32_t flags;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALdelegate {
  const char* declaration;
  std::uint32_t flags;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALstructure {
  const char* name;
  std::uint32_t flags;
  const char** fields;
  std::size_t numFields;
  std::size_t attributeCount;
  REALattribute* attributes;
};

struct REALenum {
  const char* name;
  const char* type;
  std::uint32_t flags;
  const char** fields;
  std::size_t numFields;
  std::size_t attributeCount;
  REALattribute* attributes;
};

// Also the record of a class extension.
struct REALclassDefinition {
  std::uint32_t version;
  const char* name;
  const char* superName;
  std::size_t dataSize;
  RBInteger forSystemUse;
  REALproc constructor;
  REALproc destructor;
  REALproperty* properties;
  std::size_t propertyCount;
  REALmethodDefinition* methods;
  std::size_t methodCount;
  REALevent* events;
  std::size_t eventCount;
  REALeventInstance* eventInstances;
  std::size_t eventInstanceCount;
  const char* interfaces;
  REALattribute* attributes;
  std::size_t attributeCount;
  REALconstant* constants;
  std::size_t constantCount;
  std::uint32_t mFlags;
  REALproperty* sharedProperties;
  std::size_t sharedPropertyCount;
  REALmethodDefinition* sharedMethods;
  std::size_t sharedMethodCount;
  REALdelegate* delegates;
  std::size_t delegateCount;
  REALenum* enums;
  std::size_t enumCount;
};

struct REALmoduleDefinition {
  std::uint32_t version;
  const char* name;
  REALmethodDefinition* methods;
  std::size_t methodCount;
  REALconstant* constants;
  std::size_t constantCount;
  REALproperty* properties;
  std::size_t propertyCount;
  REALstructure* structures;
  std::size_t structureCount;
  REALenum* enums;
  std::size_t enumCount;
  REALattribute* attributes;
  std::size_t attributeCount;
  REALdelegate* delegates;
  std::size_t delegateCount;
  REALclassDefinition** classes;
  std::size_t classesCount;
  void* interfaces;
  std::size_t interfaceCount;
  REALmoduleDefinition** modules;
  std::size_t moduleCount;
  void* controls;
  std::size_t controlCount;
  std::uint32_t mFlags;
  void* mobileControls;
  std::size_t mobileControlCount;
};

// Filled by PluginGetStringData; owned by the host until disposed, exactly once.
struct REALstringData {
  const void* data;
  std::size_t length;
  std::uint32_t encoding;
  const void* hostPrivate1;
  std::uint32_t hostPrivate2;
};

// A string the host builds keeps its bytes inline exactly this far behind its handle.
inline constexpr std::ptrdiff_t kInlineStringDataOffset = 42;

// One set of declarations serves every target. On 64-bit targets a 32-bit field is padded to 8;
// on 32-bit targets pointers, size_t and RBInteger are all 4 bytes, so every record is its field
// count times 4 and the 64-bit sizes (a 48-byte method row, a 216-byte module record with its
// flags at 192) have no 32-bit counterpart beyond what this C layout gives.
#if INTPTR_MAX == INT64_MAX
static_assert(sizeof(RBInteger) == 8);
static_assert(sizeof(REALattribute) == 16);
static_assert(sizeof(REALmethodDefinition) == 48, "method rows are registered as 48-byte records");
static_assert(sizeof(REALproperty) == 96);
static_assert(sizeof(REALevent) == 32);
static_assert(sizeof(REALeventInstance) == 16);
static_assert(sizeof(REALconstant) == 40);
static_assert(sizeof(REALdelegate) == 32);
static_assert(sizeof(REALstructure) == 48);
static_assert(sizeof(REALenum) == 56);
static_assert(sizeof(REALclassDefinition) == 232);
static_assert(offsetof(REALclassDefinition, mFlags) == 160);
static_assert(sizeof(REALmoduleDefinition) == 216);
static_assert(offsetof(REALmoduleDefinition, mFlags) == 192);
static_assert(sizeof(REALstringData) == 40);
#elif INTPTR_MAX == INT32_MAX
static_assert(sizeof(RBInteger) == 4);
static_assert(sizeof(REALattribute) == 8);
static_assert(sizeof(REALmethodDefinition) == 24, "method rows are registered as 24-byte records");
static_assert(sizeof(REALproperty) == 48);
static_assert(sizeof(REALevent) == 16);
static_assert(sizeof(REALeventInstance) == 8);
static_assert(sizeof(REALconstant) == 20);
static_assert(sizeof(REALdelegate) == 16);
static_assert(sizeof(REALstructure) == 24);
static_assert(sizeof(REALenum) == 28);
static_assert(sizeof(REALclassDefinition) == 116);
static_assert(offsetof(REALclassDefinition, mFlags) == 80);
static_assert(sizeof(REALmoduleDefinition) == 108);
static_assert(offsetof(REALmoduleDefinition, mFlags) == 96);
static_assert(sizeof(REALstringData) == 20);
#else
#error "host records are laid out for 32-bit and 64-bit targets only"
#endif

namespace flags {
inline constexpr std::uint32_t kRuntimeOnly = 2;
inline constexpr std::uint32_t kConsoleSafe = 4;
inline constexpr std::uint32_t kGlobalScope = 16;
inline constexpr std::uint32_t kPublic = 0x20;
inline constexpr std::uint32_t kTargetMask = 0x708;
inline constexpr std::uint32_t kConsoleWebDesktop = 0x308;
// The plug-in's own marker, never handed to the host.
inline constexpr std::uint32_t kPluginMarker = 0x40000;
}  // namespace flags

// Element type code of RuntimeArrayCreateSingleDimBoundedArray.
inline constexpr std::int32_t kArrayOfString = 3;

// Version field the host expects in class and module records.
inline constexpr std::uint32_t kCurrentREALControlVersion = 15;

// A getter or setter with all bits set reads the instance data at the property's offset.
inline const REALproc kPlainOffsetAccessor = reinterpret_cast<REALproc>(~std::uintptr_t{0});

using REALresolver = void* (*)(const char* name);

// Types the services' signatures (sdk/host_services.h) and host methods use.
namespace service {
using StringArrayInsert = void (*)(REALarray, RBInteger, REALstring);
using ExceptionHandledFunction = void (*)(void*);
// Host methods loaded by declaration.
using LenB = RBInteger (*)(REALstring);
}  // namespace service
