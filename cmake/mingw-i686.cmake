# 32-bit Windows (the application's platform) with Debian's mingw-w64.
set(TARSEL_MINGW_ARCH i686)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
