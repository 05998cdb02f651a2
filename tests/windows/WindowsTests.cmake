# Test programs of the Windows cross build. GoogleTest is built from Debian's sources with the
# same toolchain; the programs run under Wine (tests/windows/run-wine.sh), not through CTest, and
# a second process is the test program started again through CreateProcess.
set(TARSEL_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources")
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory(${TARSEL_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)

set(windows_dir ${CMAKE_CURRENT_SOURCE_DIR}/windows)
add_library(tarsel_testsupport STATIC
  ${CMAKE_CURRENT_SOURCE_DIR}/common/TestSupport.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/common/ChildChannel.cpp
  ${windows_dir}/ChildProcessWindows.cpp)
target_include_directories(tarsel_testsupport PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/common)
target_link_libraries(tarsel_testsupport PUBLIC tarsel::tarsel gtest)

add_library(tarsel_winemain STATIC ${windows_dir}/WineMain.cpp)
target_include_directories(tarsel_winemain PRIVATE ${windows_dir})
target_link_libraries(tarsel_winemain PUBLIC gtest)

# Suites for Wine: the Windows platform tests, the record manager's conformance suite, the core and
# the file-class suites. The POSIX-only recman tests (fork, descriptors, OFD locks) stay out.
file(GLOB suite_conformance_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/recman/Conformance*.cpp
  ${CMAKE_CURRENT_SOURCE_DIR}/recman/FaultVfs.cpp)
file(GLOB suite_windows_sources CONFIGURE_DEPENDS ${windows_dir}/*Test.cpp)
set(TARSEL_WINDOWS_SUITES conformance windows core estimating production catalogue labor pricing measure purchasing)
foreach(suite IN LISTS TARSEL_WINDOWS_SUITES)
  if(NOT DEFINED suite_${suite}_sources)
    file(GLOB suite_${suite}_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${suite}/*.cpp)
  endif()
  add_executable(test_${suite} ${suite_${suite}_sources})
  target_link_libraries(test_${suite} PRIVATE tarsel_testsupport tarsel_winemain SQLite::SQLite3 Threads::Threads)
  target_include_directories(test_${suite} PRIVATE ${PROJECT_SOURCE_DIR})
  # -Wno-restrict: this GCC (12) warns falsely on "text" + std::string once inlined at -O2.
  target_compile_options(test_${suite} PRIVATE ${TARSEL_WARNINGS} -Wno-restrict)
endforeach()
