# Windows arm64 through Zig's MinGW target.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ARM64)
set(ZEL_ZIG_TARGET aarch64-windows-gnu)
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_CURRENT_LIST_DIR}/zig-relink coff)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
