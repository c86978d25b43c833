# Linux through Zig, against its oldest glibc so that the library loads on older distributions.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(ZEL_ZIG_TARGET x86_64-linux-gnu.2.17)
set(CMAKE_CXX_LINKER_LAUNCHER ${CMAKE_CURRENT_LIST_DIR}/zig-relink elf)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
