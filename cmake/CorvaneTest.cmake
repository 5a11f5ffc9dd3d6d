# A binary of GoogleTest tests, each of which CTest runs in a process of its own.

find_package(GTest REQUIRED)
include(GoogleTest)

function(corvane_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS;PROPERTIES")
  add_executable(${name} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE corvane_options ${arg_LINKS}
                        GTest::gmock_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST
                       PROPERTIES TIMEOUT 120 ${arg_PROPERTIES})
endfunction()
