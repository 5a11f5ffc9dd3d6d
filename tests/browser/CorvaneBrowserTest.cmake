# corvane_browser_tests(): tests of the pages of any report.

set(CORVANE_BROWSER_SOURCES "${CMAKE_CURRENT_LIST_DIR}")
set(CORVANE_BROWSER_PACKAGES "${CMAKE_CURRENT_BINARY_DIR}/packages")

# The first run needs the network.
add_test(NAME Browser.FetchPackages
  COMMAND "${CMAKE_COMMAND}" "-DPACKAGES=${CORVANE_BROWSER_SOURCES}"
          "-DINTO=${CORVANE_BROWSER_PACKAGES}"
          -P "${CORVANE_BROWSER_SOURCES}/FetchPackages.cmake")
set_tests_properties(Browser.FetchPackages PROPERTIES
  LABELS browser FIXTURES_SETUP browser_packages TIMEOUT 300)

# corvane_browser_tests(<name> REPORT <folder> FIXTURE <name> [TESTS <name>...]):
# tests of the report that the fixture leaves in the folder, each in a file of its
# name; without TESTS one for each kind of page. Pictures go to
# <build>/screenshots/<name>.
function(corvane_browser_tests name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "REPORT;FIXTURE" "TESTS")
  if(NOT arg_TESTS)
    set(arg_TESTS Index Table Graph)
  endif()
  foreach(test IN LISTS arg_TESTS)
    string(TOLOWER ${test} file)
    add_test(NAME ${name}.${test}
      COMMAND node --test "${CORVANE_BROWSER_SOURCES}/${file}.test.js")
    set_tests_properties(${name}.${test} PROPERTIES
      LABELS browser
      FIXTURES_REQUIRED "browser_packages;${arg_FIXTURE}"
      ENVIRONMENT "NODE_PATH=${CORVANE_BROWSER_PACKAGES}/node_modules;\
CORVANE_REPORT=${arg_REPORT};\
CORVANE_SCREENSHOTS=${PROJECT_BINARY_DIR}/screenshots/${name}")
  endforeach()
endfunction()
