# corvane_test(): a program of GoogleTest tests. CTest runs each test in a process of
# its own.

if(CMAKE_CROSSCOMPILING)
  # Debian has no GoogleTest for other systems, but it has the sources.
  find_path(CORVANE_GOOGLETEST_SOURCES googlemock/CMakeLists.txt
            PATHS /usr/src/googletest NO_CMAKE_FIND_ROOT_PATH
            DOC "Folder that holds the sources of GoogleTest")
  if(NOT CORVANE_GOOGLETEST_SOURCES)
    message(FATAL_ERROR "The sources of GoogleTest were not found.\n"
                        "On Debian: apt-get install googletest")
  endif()
  set(INSTALL_GTEST OFF CACHE BOOL "Not ours to install" FORCE)
  add_subdirectory("${CORVANE_GOOGLETEST_SOURCES}" googletest EXCLUDE_FROM_ALL)
else()
  find_package(GTest REQUIRED)
endif()
include(GoogleTest)

# Optimising tests takes several times the time that it saves when they run. Only
# fuzzers run long, and whatever the thread sanitizer watches: without optimisation
# every use of a local variable is a call.
function(corvane_compile_quickly target)
  if(CORVANE_SANITIZE MATCHES "thread")
    target_compile_options(${target} PRIVATE -O1 -g1)
  elseif(NOT MSVC AND NOT CORVANE_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -O0 -g1)
  endif()
endfunction()

# A precompiled header of what nearly every file of the tests includes: reading
# GoogleMock takes longer than the rest of most files. A file includes what it uses
# all the same; the preset llvm-19 and scripts/lint compile without this header.
file(WRITE "${CMAKE_BINARY_DIR}/TestHeaders.cpp" "")
add_library(corvane_test_headers OBJECT EXCLUDE_FROM_ALL
            "${CMAKE_BINARY_DIR}/TestHeaders.cpp")
target_link_libraries(corvane_test_headers PRIVATE corvane_options GTest::gmock)
corvane_compile_quickly(corvane_test_headers)
target_precompile_headers(corvane_test_headers PRIVATE
  <gmock/gmock.h> <gtest/gtest.h> <CL/cl.h>
  <algorithm> <array> <atomic> <cstdint> <cstdio> <cstdlib> <cstring>
  <filesystem> <fstream> <functional> <iostream> <map> <memory> <mutex>
  <optional> <random> <set> <sstream> <string> <thread> <utility> <vector>)

# Compilers use a precompiled header only if it was compiled with the same options.
function(corvane_agree_with_test_headers target)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
  target_compile_definitions(${target} PRIVATE ${LLVM_DEFINITIONS_LIST})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A compiler cache needs this option to work with the header.
    target_compile_options(${target} PRIVATE -fpch-preprocess)
  endif()
endfunction()
corvane_agree_with_test_headers(corvane_test_headers)

# For code of the tests that includes GoogleTest or GoogleMock.
function(corvane_use_test_headers target)
  if(NOT CORVANE_BUILD_FUZZERS)
    corvane_agree_with_test_headers(${target})
    target_precompile_headers(${target} REUSE_FROM corvane_test_headers)
  endif()
endfunction()

# For tests of programs on a real OpenCL runtime, which the address sanitizer cannot
# search for leaks: it ends a program in which a thread of the runtime ends meanwhile,
# and compiling a kernel loses some of the runtime's own memory. Leaks of ours are
# found on runtimes that are played.
#
# `onRealRuntime`: properties for corvane_test. The thread sanitizer is told what the
# runtime does wrong.
set(onRealRuntime)
if(CORVANE_SANITIZE MATCHES "address")
  set(onRealRuntime ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0")
elseif(CORVANE_SANITIZE MATCHES "thread")
  set(onRealRuntime ENVIRONMENT
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/system/tsan.suppressions")
endif()

# The same for a test that CMake has been told of.
function(corvane_on_real_runtime test)
  list(POP_FRONT onRealRuntime)
  if(onRealRuntime)
    set_property(TEST ${test} APPEND PROPERTY ENVIRONMENT "${onRealRuntime}")
  endif()
endfunction()

function(corvane_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS;PROPERTIES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE corvane_options ${arg_LINKS}
                        GTest::gmock_main)
  corvane_compile_quickly(${name})
  corvane_use_test_headers(${name})
  if(WIN32)
    # The folder of the DLL that the program may need.
    set_target_properties(${name} PROPERTIES
      RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
  endif()
  # The first program under Wine waits until Wine has made its prefix.
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES
                       DISCOVERY_TIMEOUT 300
                       PROPERTIES TIMEOUT 900 ${arg_PROPERTIES})
endfunction()
