# Windows x86 (32-bit) with Debian's mingw-w64 (posix threads).
set(ZEL_MINGW_TRIPLE i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
