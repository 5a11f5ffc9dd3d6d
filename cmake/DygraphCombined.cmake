# The script that draws the report's graphs: Debian's dygraphs, joined into the one
# file that the graph pages load from $CORVANE_INSTALL_LOCATION.

set(CORVANE_ASSETS_DIR "${PROJECT_BINARY_DIR}/share/corvane")
set(CORVANE_GRAPH_LIBRARY "${CORVANE_ASSETS_DIR}/dygraph-combined.js")

# The files do not depend on the architecture; a cross build uses the host's.
function(corvane_find_graph_file variable name folder)
  find_file(${variable} "${name}" PATHS "${folder}"
            NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH
            DOC "A part of the graph library")
  if(NOT ${variable})
    message(FATAL_ERROR
      "${name} was not found in ${folder}; the report's graphs need it.\n"
      "On Debian: apt-get install libjs-dygraphs\n"
      "Without it: -DCORVANE_BUILD_REPORT_ASSETS=OFF")
  endif()
endfunction()

corvane_find_graph_file(CORVANE_DYGRAPH_SCRIPT dygraph.min.js
                        /usr/share/javascript/dygraphs)
corvane_find_graph_file(CORVANE_DYGRAPH_STYLE dygraph.css
                        /usr/share/javascript/dygraphs)
corvane_find_graph_file(CORVANE_DYGRAPH_LICENCE copyright
                        /usr/share/doc/libjs-dygraphs)

set(join_script "${CMAKE_CURRENT_LIST_DIR}/JoinDygraph.cmake")
add_custom_command(
  OUTPUT "${CORVANE_GRAPH_LIBRARY}"
  COMMAND "${CMAKE_COMMAND}"
          "-DSCRIPT=${CORVANE_DYGRAPH_SCRIPT}"
          "-DSTYLE=${CORVANE_DYGRAPH_STYLE}"
          "-DLICENCE=${CORVANE_DYGRAPH_LICENCE}"
          "-DOUT=${CORVANE_GRAPH_LIBRARY}"
          -P "${join_script}"
  DEPENDS "${join_script}" "${CORVANE_DYGRAPH_SCRIPT}"
          "${CORVANE_DYGRAPH_STYLE}" "${CORVANE_DYGRAPH_LICENCE}"
  COMMENT "Joining dygraph-combined.js" VERBATIM)
add_custom_target(corvane_graph_library ALL DEPENDS "${CORVANE_GRAPH_LIBRARY}")
