# Windows build of the library (mingw-w64 cross build). SQLite is compiled into the DLL from its
# amalgamation, which the Makefile fetches and checks: TARSEL_SQLITE_AMALGAMATION names the folder
# that holds sqlite3.c and sqlite3.h.
set(TARSEL_SQLITE_AMALGAMATION "" CACHE PATH "Folder with sqlite3.c and sqlite3.h")
if(NOT EXISTS "${TARSEL_SQLITE_AMALGAMATION}/sqlite3.c")
  message(FATAL_ERROR "TARSEL_SQLITE_AMALGAMATION must name a folder with sqlite3.c (make windows fetches it)")
endif()

add_library(tarsel_sqlite3 STATIC "${TARSEL_SQLITE_AMALGAMATION}/sqlite3.c")
target_include_directories(tarsel_sqlite3 SYSTEM PUBLIC "${TARSEL_SQLITE_AMALGAMATION}")
target_compile_definitions(tarsel_sqlite3 PRIVATE SQLITE_THREADSAFE=1 SQLITE_OMIT_LOAD_EXTENSION SQLITE_DEFAULT_MEMSTATUS=0)
add_library(SQLite::SQLite3 ALIAS tarsel_sqlite3)

# The DLL, its import library and every program sit in one folder, where Windows finds the DLL.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)

# <windows.h> without its min/max macros and rarely used parts, in every file that includes it.
add_compile_definitions(NOMINMAX WIN32_LEAN_AND_MEAN)

# Added to the library once its target exists (after this file is read).
cmake_language(DEFER CALL target_sources tarsel PRIVATE ${PROJECT_SOURCE_DIR}/windows/ExportedConstants.cpp)
