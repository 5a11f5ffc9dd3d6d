# For builds for Windows: where a build on Linux finds LLVM and the OpenCL headers,
# and the name and properties of our DLLs.

# A cross build uses an LLVM that scripts/windows-llvm builds once, and the host's
# OpenCL headers through a folder with none of the host's other headers.
macro(corvane_prepare_cross_build)
  execute_process(COMMAND "${PROJECT_SOURCE_DIR}/scripts/windows-llvm"
                  OUTPUT_VARIABLE windows_llvm RESULT_VARIABLE windows_llvm_rc
                  OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT windows_llvm_rc EQUAL 0)
    message(FATAL_ERROR "scripts/windows-llvm failed; its lines above say why")
  endif()
  set(LLVM_DIR "${windows_llvm}/lib/cmake/llvm" CACHE PATH
      "LLVM Support for Windows" FORCE)

  find_path(CORVANE_HOST_OPENCL_HEADERS CL/cl_icd.h NO_CMAKE_FIND_ROOT_PATH
            PATHS /usr/include
            DOC "Folder of the host that holds CL/cl_icd.h")
  if(NOT CORVANE_HOST_OPENCL_HEADERS)
    message(FATAL_ERROR "The OpenCL headers were not found.\n"
                        "On Debian: apt-get install opencl-headers")
  endif()
  set(CORVANE_OPENCL_HEADERS "${PROJECT_BINARY_DIR}/opencl-headers" CACHE PATH
      "Folder that holds CL/cl_icd.h" FORCE)
  file(MAKE_DIRECTORY "${CORVANE_OPENCL_HEADERS}")
  file(CREATE_LINK "${CORVANE_HOST_OPENCL_HEADERS}/CL"
       "${CORVANE_OPENCL_HEADERS}/CL" SYMBOLIC)
endmacro()

# Gives a DLL its name, without "lib", and the properties that Windows shows.
function(corvane_finish_dll target)
  set(CORVANE_DLL_NAME "${target}")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/Version.rc.in" "${target}.rc" @ONLY)
  target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
  if(MINGW)
    target_link_options(${target} PRIVATE
      "LINKER:--gc-sections" "$<$<CONFIG:Release>:LINKER:--strip-all>")
  endif()
  set_target_properties(${target} PROPERTIES
    PREFIX "" ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}")
endfunction()
