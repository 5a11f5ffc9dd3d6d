# What cmake --install copies: libraries, programs, the report's script, the licence.

# One folder for both: the layer looks for the agent beside itself.
set(installed_libraries CorvaneAg)
if(TARGET CorvaneLayer)
  list(APPEND installed_libraries CorvaneLayer)
endif()
install(TARGETS ${installed_libraries}
        LIBRARY DESTINATION lib
        RUNTIME DESTINATION lib
        ARCHIVE DESTINATION lib)

# The program looks for the layer in ../lib as well as beside itself.
if(TARGET corvane)
  install(TARGETS corvane RUNTIME DESTINATION bin)
endif()
if(TARGET corvane-coarsen)
  install(TARGETS corvane-coarsen RUNTIME DESTINATION bin)
endif()

# <prefix>/share/corvane is what $CORVANE_INSTALL_LOCATION has to name.
if(TARGET corvane_graph_library)
  install(FILES "${CORVANE_GRAPH_LIBRARY}" DESTINATION share/corvane)
endif()
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION share/doc/corvane)
