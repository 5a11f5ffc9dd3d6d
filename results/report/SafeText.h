// Names from the log as text that stays in its place on a page.
//
// Anyone may have edited the log, and then a name can be any bytes. What could
// end the place that it stands in is written as a reference or an escape. A
// name that a compiler made comes out as it is.
//
// All that comes out is ASCII: the pages name no character set, and whatever a
// browser takes for one, ASCII stays what it is. Bytes that are no UTF-8, and
// control characters, become the sign for what cannot be shown.

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
/// an object, which has a "__proto__" already. So signs of HTML and "_" become
/// their wide twins; no version that ever ran has either in its name.
std::string scriptText(std::string_view name);

/// \p path, which comes from the user and not from the log, for an attribute in
/// double quotes. Only a quote is changed, which would end the attribute.
std::string attributePath(std::string_view path);

} // namespace corvane
