// Pads the columns to their widest cells.

#include "tools/corvane/TextTable.h"

#include "tools/corvane/Command.h"

#include "llvm/ADT/StringRef.h"

#include <algorithm>

using namespace corvane;

static constexpr std::size_t widestCell = 60;

void TextTable::add(Row row) {
  for (std::string &cell : row)
    cell = printable(cell).substr(0, widestCell);
  row.resize(rows.front().size());
  rows.push_back(std::move(row));
}

std::string TextTable::text() const {
  std::vector<std::size_t> widths(rows.front().size());
  for (const Row &row : rows)
    for (std::size_t i = 0; i != row.size(); ++i)
      widths[i] = std::max(widths[i], row[i].size());

  std::string text;
  for (const Row &row : rows) {
    std::string line;
    for (std::size_t i = 0; i != row.size(); ++i) {
      if (widths[i] == 0)
        continue;
      const std::string blanks(widths[i] - row[i].size(), ' ');
      line += rightAligned.count(i) ? blanks + row[i] : row[i] + blanks;
      line += "  ";
    }
    text += llvm::StringRef(line).rtrim().str() + "\n";
  }
  return text;
}
