# Windows x86-64 with Debian's mingw-w64 (posix threads); tests run under Wine.
set(ZEL_MINGW_TRIPLE x86_64-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
