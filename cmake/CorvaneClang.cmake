# Clang's libraries as the two shared ones that Debian ships, which link in a
# second. Clang's own package file names every static library and program and
# fails where one is missing.
#
# A cross build and a machine without the libraries have no corvane-coarsen, and
# say so.
#
# Sets CORVANE_CLANG_FOUND; defines the target corvane_clang and the variable
# CORVANE_OPENCL_BASE_HEADER: the declarations that Clang includes by itself.

set(CORVANE_CLANG_FOUND FALSE)
if(CMAKE_CROSSCOMPILING OR WIN32)
  message(STATUS "No corvane-coarsen: it is built for Linux only")
  return()
endif()

set(clang_root "/usr/lib/llvm-${CORVANE_LLVM_VERSION}")
find_path(CORVANE_CLANG_HEADERS clang/AST/ASTContext.h
          HINTS "${LLVM_INCLUDE_DIRS}" "${clang_root}/include" NO_DEFAULT_PATH
          DOC "Folder that holds clang/AST/ASTContext.h")
find_library(CORVANE_CLANG_LIBRARY
             NAMES clang-cpp libclang-cpp.so.${LLVM_VERSION_MAJOR}
                   libclang-cpp.so.${LLVM_VERSION_MAJOR}.${LLVM_VERSION_MINOR}
             HINTS "${clang_root}/lib" NO_DEFAULT_PATH
             DOC "Clang's shared library")
find_library(CORVANE_LLVM_LIBRARY NAMES LLVM-${CORVANE_LLVM_VERSION} LLVM
             HINTS "${clang_root}/lib" NO_DEFAULT_PATH
             DOC "LLVM's shared library")
find_file(CORVANE_OPENCL_BASE_HEADER opencl-c-base.h
          HINTS "${clang_root}/lib/clang/${LLVM_PACKAGE_VERSION}/include"
                "${clang_root}/lib/clang/${LLVM_VERSION_MAJOR}/include"
          NO_DEFAULT_PATH
          DOC "What Clang declares for every OpenCL program")

if(CORVANE_CLANG_HEADERS AND CORVANE_CLANG_LIBRARY AND CORVANE_LLVM_LIBRARY
   AND CORVANE_OPENCL_BASE_HEADER)
  set(CORVANE_CLANG_FOUND TRUE)
  add_library(corvane_clang INTERFACE)
  target_include_directories(corvane_clang SYSTEM INTERFACE
                             "${CORVANE_CLANG_HEADERS}" ${LLVM_INCLUDE_DIRS})
  target_compile_definitions(corvane_clang INTERFACE ${LLVM_DEFINITIONS_LIST})
  target_link_libraries(corvane_clang INTERFACE
                        "${CORVANE_CLANG_LIBRARY}" "${CORVANE_LLVM_LIBRARY}")
  message(STATUS "Clang ${LLVM_PACKAGE_VERSION} from ${CORVANE_CLANG_LIBRARY}")
else()
  message(STATUS
    "No corvane-coarsen: Clang ${CORVANE_LLVM_VERSION} was not found in "
    "${clang_root}. On Debian: apt-get install "
    "libclang-${CORVANE_LLVM_VERSION}-dev")
endif()
