// Draws the line by the escape sequences that terminals have in common.

#include "tools/corvane/StatusLine.h"

#include "tools/corvane/Command.h"

using namespace corvane;

static const char *const saveCursor = "\0337";
static const char *const restoreCursor = "\0338";
static const char *const eraseLine = "\033[K";

static std::string toRow(unsigned row) {
  return "\033[" + std::to_string(row) + ";1H";
}

static std::string scrollRows(unsigned last) {
  return "\033[1;" + std::to_string(last) + "r";
}

// The step down scrolls if the cursor is in the last row. It keeps the
// column, as the program may have written half a line.
static std::string keepLastRow(unsigned rows) {
  return std::string("\033D") + saveCursor + scrollRows(rows - 1) +
         restoreCursor + "\033[1A";
}

static std::string giveBackLastRow(unsigned rows) {
  return saveCursor + std::string("\033[r") + toRow(rows) + eraseLine +
         restoreCursor;
}

void StatusLine::show(std::string text) {
  const std::optional<TerminalSize> size = errorTerminal();
  if (!size || size->rows < 3 || size->columns < 2)
    return;
  text = printable(text).substr(0, size->columns - 1);
  if (rows == size->rows && text == shown)
    return;
  std::string out;
  if (rows != size->rows)
    out += keepLastRow(size->rows);
  rows = size->rows;
  out += saveCursor + toRow(rows) + eraseLine + text + restoreCursor;
  writeToTerminal(out);
  shown = std::move(text);
}

StatusLine::~StatusLine() {
  if (rows != 0)
    writeToTerminal(giveBackLastRow(rows));
}
