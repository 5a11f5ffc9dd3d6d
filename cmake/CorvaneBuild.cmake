# The options of all our targets, and the two kinds of target that a folder declares:
# a static library that names what it uses, and a library to load.

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release CACHE STRING "Kind of build" FORCE)
endif()

if(WIN32)
  include(CorvaneWindows)
  if(CMAKE_CROSSCOMPILING)
    corvane_prepare_cross_build()
  endif()
endif()

find_package(Threads REQUIRED)
# Without a version for find_package: to LLVM's package file, 19.1 does not match
# 19.
find_package(LLVM REQUIRED CONFIG
             HINTS "/usr/lib/llvm-${CORVANE_LLVM_VERSION}/lib/cmake/llvm")
if(NOT LLVM_VERSION_MAJOR EQUAL CORVANE_LLVM_VERSION)
  message(FATAL_ERROR
    "LLVM ${LLVM_PACKAGE_VERSION} was found in ${LLVM_DIR}, but LLVM "
    "${CORVANE_LLVM_VERSION} is wanted: install llvm-${CORVANE_LLVM_VERSION}-dev "
    "or set CORVANE_LLVM_VERSION.")
endif()
message(STATUS "LLVM Support ${LLVM_PACKAGE_VERSION} from ${LLVM_DIR}")
find_path(CORVANE_OPENCL_HEADERS CL/cl_icd.h REQUIRED
          DOC "Folder that holds CL/cl_icd.h")

# Flags for all our own code. The headers of LLVM and OpenCL are taken as system
# headers, because they are not written for our warnings.
add_library(corvane_options INTERFACE)
target_include_directories(corvane_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_include_directories(corvane_options SYSTEM
                           INTERFACE "${CORVANE_OPENCL_HEADERS}")
target_compile_definitions(corvane_options INTERFACE
  CL_TARGET_OPENCL_VERSION=300
  CL_USE_DEPRECATED_OPENCL_1_0_APIS
  CL_USE_DEPRECATED_OPENCL_1_1_APIS
  CL_USE_DEPRECATED_OPENCL_1_2_APIS)
target_link_libraries(corvane_options INTERFACE Threads::Threads)
if(MSVC)
  target_compile_options(corvane_options INTERFACE /W4 /WX /utf-8)
else()
  target_compile_options(corvane_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wnon-virtual-dtor -Werror)
  if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    # A unique symbol would keep the library in memory after it was closed.
    target_compile_options(corvane_options INTERFACE -fno-gnu-unique)
    if(CMAKE_UNITY_BUILD)
      # GCC takes a test's fixture in an unnamed namespace for a header's.
      target_compile_options(corvane_options INTERFACE -Wno-subobject-linkage)
    endif()
  endif()
endif()
if(CORVANE_SANITIZE)
  target_compile_options(corvane_options INTERFACE
    "-fsanitize=${CORVANE_SANITIZE}" -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(corvane_options INTERFACE
    "-fsanitize=${CORVANE_SANITIZE}")
endif()

add_library(corvane_llvm INTERFACE)
target_include_directories(corvane_llvm SYSTEM INTERFACE ${LLVM_INCLUDE_DIRS})
target_compile_definitions(corvane_llvm INTERFACE ${LLVM_DEFINITIONS_LIST})
target_link_libraries(corvane_llvm INTERFACE LLVMSupport)

# A library that is loaded into an application's process runs no constructors: it
# works only when it is called.
function(corvane_no_constructors target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE -Wglobal-constructors)
  endif()
endfunction()

# Tells the fuzzers which branches of ours an input has taken.
function(corvane_watch_branches target)
  if(CORVANE_BUILD_FUZZERS)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
endfunction()

# Counts which of our lines run, on several threads too. The paths of sources are
# absolute, so that they can be found from any folder.
function(corvane_count_lines target)
  if(CORVANE_COUNT_COVERAGE)
    target_compile_options(${target} PRIVATE
      --coverage -O0 -fprofile-update=atomic -fprofile-abs-path)
    target_link_options(${target} PUBLIC --coverage)
  endif()
endfunction()

# corvane_folder(<name> [PURE] SOURCES <file>... [USES <folder>...]): a static library
# that names the folders it may use; a call to any other does not link. A PURE one
# must not use OpenCL.
function(corvane_folder name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "PURE" "" "SOURCES;USES")
  if(NOT arg_SOURCES)
    add_library(corvane_${name} INTERFACE)
    target_link_libraries(corvane_${name} INTERFACE corvane_options)
    return()
  endif()
  add_library(corvane_${name} STATIC ${arg_SOURCES})
  target_link_libraries(corvane_${name} PUBLIC corvane_options corvane_llvm)
  corvane_no_constructors(corvane_${name})
  corvane_watch_branches(corvane_${name})
  corvane_count_lines(corvane_${name})
  foreach(used IN LISTS arg_USES)
    target_link_libraries(corvane_${name} PUBLIC corvane_${used})
  endforeach()
  set_target_properties(corvane_${name} PROPERTIES CORVANE_PURE "${arg_PURE}")
endfunction()

# Only the symbols in the list beside the sources leave the library. Everything
# that was linked in stays inside: the process may hold another LLVM.
function(corvane_export_only target mapFile defFile)
  if(WIN32)
    target_sources(${target} PRIVATE "${defFile}")
    corvane_finish_dll(${target})
  else()
    target_link_options(${target} PRIVATE
      "LINKER:--version-script=${mapFile}"
      "LINKER:--exclude-libs,ALL" "LINKER:--gc-sections" "LINKER:--as-needed")
    if(NOT CORVANE_SANITIZE)
      target_link_options(${target} PRIVATE "LINKER:--no-undefined")
    endif()
    set_target_properties(${target} PROPERTIES LINK_DEPENDS "${mapFile}")
  endif()
  set_target_properties(${target} PROPERTIES
    LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}"
    RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
endfunction()
