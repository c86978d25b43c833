# macOS through Zig: compiled against Zig's oldest bundled SDK (11), linked by lld for the
# minimum version that the including file sets in ZEL_MACOS_MIN.
set(CMAKE_SYSTEM_NAME Darwin)
set(ZEL_MACOS_SDK 11.0)
set(ZEL_ZIG_TARGET ${ZEL_ZIG_ARCH}-macos.${ZEL_MACOS_SDK})
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_CURRENT_LIST_DIR}/zig-relink macos ${ZEL_ZIG_TARGET}
                              ${CMAKE_SYSTEM_PROCESSOR}
                              ${ZEL_MACOS_MIN} ${ZEL_MACOS_SDK})
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
