# Installs into a new folder and has an application autotuned from there.
#
# cmake -DBUILD=... -DINTO=... -DPROGRAMS=... -DLAYER=... -DAGENT=... -DAPPLICATION=... -P ...

set(prefix "${INTO}/prefix")
set(results "${INTO}/results")
file(REMOVE_RECURSE "${INTO}")

execute_process(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}"
                        --prefix "${prefix}"
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
file(GLOB_RECURSE installed RELATIVE "${prefix}" "${prefix}/*")
list(SORT installed)
set(expected ${PROGRAMS} "lib/${AGENT}" "lib/${LAYER}" share/corvane/dygraph-combined.js
             share/doc/corvane/LICENSE)
if(NOT installed STREQUAL expected)
  message(FATAL_ERROR "Installed: ${installed}\nExpected: ${expected}")
endif()

# The layer finds the agent in its own folder; a variable names the folder of the
# report's script.
execute_process(
  COMMAND "${CMAKE_COMMAND}" -E env
    "OPENCL_LAYERS=${prefix}/lib/${LAYER}"
    "CORVANE_AUTOTUNE=${results}"
    "CORVANE_INSTALL_LOCATION=${prefix}/share/corvane"
    "${APPLICATION}" --size 65536 --iterations 2
  OUTPUT_VARIABLE said ERROR_VARIABLE said RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "The application ended with ${status}:\n${said}")
endif()

file(GLOB graphs "${results}/html/*_graph.html")
if(graphs STREQUAL "")
  message(FATAL_ERROR "The application ran without an agent:\n${said}")
endif()
foreach(graph IN LISTS graphs)
  file(READ "${graph}" page)
  string(REGEX MATCH "src=\"file://([^\"]+)\"" found "${page}")
  if(NOT found OR NOT EXISTS "${CMAKE_MATCH_1}")
    message(FATAL_ERROR "${graph} loads no script that exists: ${found}")
  endif()
endforeach()
