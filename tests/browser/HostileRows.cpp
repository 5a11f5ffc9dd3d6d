// Makes rows with names that try to run scripts, leave the folder or break a
// page.

#include "Rows.h"

#include <string>
#include <vector>

using namespace corvane::test;
using namespace std::string_literals;

// Names without commas and line feeds, which would only make other fields.
static std::vector<std::string> kernels() {
  return {
      // markup and scripts
      "</a></li><script>ran(1)</script>", "\"><img src=x onerror=ran(2)>",
      "' onmouseover='ran(3)", "<!--", "-->", "]]>", "<plaintext>",
      "<frameset onload=ran(4)>", "javascript:ran(5)", "&lt;b&gt;&amp;",
      // places
      "../../outside", "/outside", "..\\..\\outside", "C:\\outside", ".", "..",
      "sub/page", "CON", "NUL.html", "aux.", "index", "index.html", "main",
      // links
      "a?b", "a#b", "a%2Fb", "%2e%2e%2foutside", "a b ", " ", "", "a:b", "a\tb",
      // letters
      "gr\xc3\xb6\xc3\x9f"
      "e",
      "\xf0\x9f\x8d\x8c", "\xff\xfe\x80", "\xc3<b>", "\x1b(J\\\x1b(B", "\x83\\",
      "+ADw-script+AD4-",
      "\xe2\x80\xae"
      "txt.exe",
      "a\rb", "a\0b"s, "\x01\x7f\xc2\x85",
      // lengths, and names that differ in little
      std::string(300, 'k'), std::string(300, 'k') + "2",
      std::string(5000, '<'), "Twin", "twin", "twin/", "twin\\", "twin_1024"};
}

static std::vector<std::string> versions() {
  return {"</script><script>ran(6)</script>",
          "\"+ran(7)+\"",
          "\\\"+ran(8)//",
          "\\",
          "\\u0022+ran(9)+\\u0022",
          "\xe2\x80\xa8ran(10)",
          "\rran(11)",
          "</th></label><img src=x onerror=ran(12)>",
          "&lt;img src=x onerror=ran(13)&gt;",
          "<!--<script>",
          "iter",
          "",
          "constructor",
          "toString",
          "__proto__",
          "\xff\0\x80"s,
          std::string(3000, 'v')};
}

static void writeRow(std::ostream &log, const std::string &key,
                     const std::string &version, const std::string &time) {
  log << key << ',' << version << ',' << time << '\n';
}

void corvane::test::writeHostileRows(std::ostream &log) {
  for (const std::string &kernel : kernels())
    for (const char *time : {"2.5", "1.5"}) {
      writeRow(log, kernel + ",1024,,,64,,", "baseline", time);
      writeRow(log, kernel + ",1024,,,64,,", "g0S4", "1");
    }
  for (const char *time :
       {"3", "-4", "1e300", "nan", "text", "7 \" onload=x"}) {
    writeRow(log, "versions,64,64,,8,8,", "baseline", time);
    for (const std::string &version : versions())
      writeRow(log, "versions,64,64,,8,8,", version, time);
  }
  for (const char *sizes :
       {"\"><script>ran(14)</script>,,,64,,", "1024,,,64,,_graph",
        "1024,,,64,,_table", "../../outside,1,2,3,4,5", "01024,,,64,,"})
    writeRow(log, "sizes,"s + sizes, "baseline", "1");
  log << "no row at all\n\n,,,,,,,,\n,,,,,,,,,,,,ran(15)\n";
}
