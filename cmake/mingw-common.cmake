# Shared part of the mingw-w64 toolchain files; TARSEL_MINGW_ARCH is set by the including file.
# The posix thread model is the one whose std::thread and std::mutex this compiler supports.
# Runtime libraries are linked in statically, so the DLL and the test programs need no compiler
# DLLs beside them.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${TARSEL_MINGW_ARCH})
set(TARSEL_MINGW_TRIPLET ${TARSEL_MINGW_ARCH}-w64-mingw32)

set(CMAKE_C_COMPILER ${TARSEL_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${TARSEL_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${TARSEL_MINGW_TRIPLET}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${TARSEL_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
