// Escapes names from the log, so that they cannot change a page.
//
// Anyone may have edited the log, and then a name can be any bytes. A character
// that could end the text or the attribute that a name is in is written as a
// reference or an escape. A name that a compiler made comes out as it is.
//
// All that comes out is ASCII: the pages name no character set, and ASCII means
// the same in every one that a browser may assume. Bytes that are no UTF-8, and
// control characters, become the replacement character, U+FFFD.

#pragma once

#include <string>
#include <string_view>

namespace corvane {

/// \p name for between two tags, or for an attribute in double quotes.
std::string htmlText(std::string_view name);

/// \p name, a version's, for a literal of JavaScript in double quotes that
/// names a column for a graph library.
///
/// Such a library may put the text on the page as HTML, and looks columns up in
/// an object, which has a "__proto__" already. So characters of HTML markup and
/// "_" become their full-width forms; no version that ever ran has one of them
/// in its name.
std::string scriptText(std::string_view name);

/// \p path, which comes from the user and not from the log, for an attribute in
/// double quotes. Only a quote is changed, which would end the attribute.
std::string attributePath(std::string_view path);

} // namespace corvane
