#!/usr/bin/env bash
# Builds small libraries that break one shipping rule each (and good ones that break none), runs
# scripts/check-library over them and asserts the verdict and the message it gives.
# Usage: check_library_test.sh SOURCE_DIR WORK_DIR
set -euo pipefail
check=$1/scripts/check-library
work=$2
rm -rf "$work"
mkdir -p "$work"
cd "$work"

cat >entry.c <<'C'
int REALPluginMain(void) { return 1; }
C
cat >second_export.c <<'C'
int REALPluginMain(void) { return 1; }
int SecondExport(void) { return 2; }
C
cat >new_glibc.c <<'C'
#include <sys/random.h>
int REALPluginMain(void) { char b; return (int)getrandom(&b, 1, 0); }
C
cat >uses_cxx_runtime.cpp <<'C'
#include <string>
extern "C" __declspec(dllexport) int REALPluginMain(const char* s) { return (int)std::string(s).size(); }
C
cat >uses_cxx_runtime_elf.cpp <<'C'
#include <string>
extern "C" int REALPluginMain(const char* s) { return (int)std::string(s).size(); }
C
cat >entry_pe.c <<'C'
__declspec(dllexport) int REALPluginMain(void) { return 1; }
C
cat >second_export_pe.c <<'C'
__declspec(dllexport) int REALPluginMain(void) { return 1; }
__declspec(dllexport) int SecondExport(void) { return 2; }
C

elf() { gcc -shared -fPIC -fvisibility=default -o "$1" "$2" "${@:3}"; }
pe() { x86_64-w64-mingw32-gcc-posix -shared -o "$1" "$2" "${@:3}"; }
macho() { # OUT SOURCE ARCH MIN_OS [INSTALL_NAME]
  clang-14 -target "$3-apple-macos$4" -c "$2" -o "$1.o"
  ld64.lld-14 -arch "$3" -platform_version macos "$4" 11.0 -dylib -install_name "${5:-@rpath/$1}" \
    -o "$1" "$1.o"
}

elf good.so entry.c
elf two_exports.so second_export.c
elf new_glibc.so new_glibc.c
g++ -shared -fPIC -o cxx_runtime.so uses_cxx_runtime_elf.cpp
pe good.dll entry_pe.c
pe two_exports.dll second_export_pe.c
x86_64-w64-mingw32-g++-posix -shared -o cxx_runtime.dll uses_cxx_runtime.cpp
macho x86.dylib entry.c x86_64 10.13
macho arm.dylib entry.c arm64 11.0
macho too_new.dylib entry.c x86_64 12.0
macho two_exports.dylib second_export.c x86_64 10.13
macho absolute_name.dylib entry.c x86_64 10.13 /Users/builder/StringZEL.dylib
llvm-lipo-14 -create -output universal.dylib x86.dylib arm.dylib
mkdir -p "Build Resources/Linux arm64" "Build Resources/Linux x86-64" "Build Resources/Mac Universal"
cp good.so "Build Resources/Linux arm64/libStringZEL.so"
cp good.so "Build Resources/Linux x86-64/libStringZEL.so"
cp universal.dylib "Build Resources/Mac Universal/StringZEL.dylib"
cp x86.dylib "Build Resources/Mac Universal/x86_only.dylib"

# verdict | file | text the output must contain
cases=(
  "pass|good.so|ok   good.so: Linux x86-64, exports REALPluginMain only"
  "pass|Build Resources/Linux x86-64/libStringZEL.so|Linux x86-64, exports REALPluginMain only"
  "fail|two_exports.so|exports 2 symbols, expected only REALPluginMain: REALPluginMain SecondExport"
  "fail|cxx_runtime.so|imports libstdc++.so.6, which the platform does not ship"
  "fail|new_glibc.so|needs glibc 2.25, above the floor 2.17"
  "fail|Build Resources/Linux arm64/libStringZEL.so|is a Linux x86-64 library in the folder Linux arm64"
  "pass|good.dll|Windows x86-64, exports REALPluginMain only"
  "fail|two_exports.dll|exports 2 symbols, expected only REALPluginMain"
  "fail|cxx_runtime.dll|imports libstdc++-6.dll, which the platform does not ship"
  "pass|Build Resources/Mac Universal/StringZEL.dylib|Mac Universal, exports REALPluginMain only"
  "fail|Build Resources/Mac Universal/x86_only.dylib|is a Mac x86-64 library in the folder Mac Universal"
  "fail|too_new.dylib|x86_64: needs macOS 12.0, above the floor 10.13"
  "fail|two_exports.dylib|exports 2 symbols, expected only _REALPluginMain"
  "fail|absolute_name.dylib|absolute install name /Users/builder/StringZEL.dylib"
  "fail|missing.so|no such file"
)

failed=0
for entry in "${cases[@]}"; do
  IFS='|' read -r verdict file expected <<<"$entry"
  status=0
  output=$("$check" "$file" 2>&1) || status=$?
  actual=pass
  ((status == 0)) || actual=fail
  if [[ $actual != "$verdict" || $output != *"$expected"* ]]; then
    echo "MISMATCH $file: expected $verdict with \"$expected\", got $actual:"
    echo "$output"
    failed=1
  fi
done

# Several files at once: one bad file fails the whole run, and every file is still reported.
status=0
output=$("$check" good.so two_exports.dll good.dll 2>&1) || status=$?
if ((status == 0)) || [[ $(grep -c '^ok ' <<<"$output") != 2 ]]; then
  echo "MISMATCH several files: expected failure with two ok lines, got status $status:"
  echo "$output"
  failed=1
fi
((failed == 0)) && echo "all ${#cases[@]} cases and the multi-file run behave"
exit "$failed"
