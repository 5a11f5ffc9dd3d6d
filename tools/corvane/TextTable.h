// Tables for a terminal.

#pragma once

#include <set>
#include <string>
#include <vector>

namespace corvane {

/// Rows of cells, the first of them titles. A column whose cells are all empty
/// is left out.
class TextTable {
public:
  using Row = std::vector<std::string>;

  /// Numbers end at the right of the columns in \p numeric.
  explicit TextTable(Row titles, std::set<std::size_t> numeric = {})
      : rows{std::move(titles)}, rightAligned(std::move(numeric)) {}

  /// As many cells as titles. What could move the cursor is replaced, and what
  /// is very long is cut.
  void add(Row row);

  /// Each row in a line, under the titles.
  std::string text() const;

private:
  std::vector<Row> rows;
  std::set<std::size_t> rightAligned;
};

} // namespace corvane
