# Files that become constants of a program, so that it runs from anywhere.

# const char <symbol>[], a text that ends with a null.
function(embed_text target file symbol)
  file(READ "${file}" text)
  set(generated "${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp")
  file(CONFIGURE OUTPUT "${generated}" @ONLY CONTENT
"// Generated from a file of the sources.
extern const char @symbol@[];
const char @symbol@[] = R\"EMBEDDED(@text@)EMBEDDED\";
")
  embed_generated(${target} "${file}" "${generated}")
endfunction()

# const unsigned char <symbol>[] and const size_t <symbol>Size, any bytes.
function(embed_bytes target file symbol)
  file(READ "${file}" bytes HEX)
  string(REGEX REPLACE "(..)" "0x\\1," bytes "${bytes}")
  set(generated "${CMAKE_CURRENT_BINARY_DIR}/${symbol}.cpp")
  file(CONFIGURE OUTPUT "${generated}" @ONLY CONTENT
"// Generated from a file of the sources.
#include <cstddef>
extern const unsigned char @symbol@[];
extern const std::size_t @symbol@Size;
const unsigned char @symbol@[] = {@bytes@};
const std::size_t @symbol@Size = sizeof(@symbol@);
")
  embed_generated(${target} "${file}" "${generated}")
endfunction()

# A change of the file makes CMake run again, and so generates anew.
function(embed_generated target file generated)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${file}")
  target_sources(${target} PRIVATE "${generated}")
endfunction()
