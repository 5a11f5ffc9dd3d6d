# Joins licence, style sheet and script of dygraphs into one script.
#
# cmake -DSCRIPT=... -DSTYLE=... -DLICENCE=... -DOUT=... -P JoinDygraph.cmake

foreach(part IN ITEMS LICENCE STYLE SCRIPT)
  file(READ "${${part}}" ${part}_TEXT)
  if(${part}_TEXT STREQUAL "")
    message(FATAL_ERROR "${${part}} is empty or cannot be read")
  endif()
endforeach()

string(REPLACE "*/" "* /" LICENCE_TEXT "${LICENCE_TEXT}")

# The style sheet becomes a literal of JavaScript.
string(REPLACE "\\" "\\\\" STYLE_TEXT "${STYLE_TEXT}")
string(REPLACE "\"" "\\\"" STYLE_TEXT "${STYLE_TEXT}")
string(REPLACE "\n" "\\n" STYLE_TEXT "${STYLE_TEXT}")

# Leaves out the reference to a source map, which is not part of the file.
string(REGEX REPLACE "\n//# sourceMappingURL=[^\n]*" "" SCRIPT_TEXT
       "${SCRIPT_TEXT}")

# The graph pages name no character set; a byte order mark makes it UTF-8.
string(ASCII 239 187 191 BYTE_ORDER_MARK)

# One write without expansion: the texts are full of semicolons and brackets.
file(WRITE "${OUT}.part"
"${BYTE_ORDER_MARK}/*!
${LICENCE_TEXT}*/
(function () {
  // The pages load only this script, so it adds its style sheet before anything is
  // drawn.
  var style = document.createElement(\"style\");
  style.appendChild(document.createTextNode(\"${STYLE_TEXT}\"));
  document.head.appendChild(style);
})();
${SCRIPT_TEXT}
// The pages leave the width of the labels to us, and a kernel of a second has
// seven digits beside the upright name of the axis.
Dygraph.PLUGINS.push({
  activate: function (graph) {
    graph.updateOptions({ axes: { y: { axisLabelWidth: 95 } } }, true);
    return {};
  }
});
")
file(RENAME "${OUT}.part" "${OUT}")
