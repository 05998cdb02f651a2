# 64-bit Windows with Debian's mingw-w64.
set(TARSEL_MINGW_ARCH x86_64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
