// Checks and counts the rows of a raw timing log.

#include "tests/system/autotune/TimingLog.h"
#include "tests/system/Subprocess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace corvane::test;

static const std::string header =
    "kernel,x_global,y_global,z_global,x_local,y_local,z_local,coarsed_kernel,"
    "time";

static std::vector<std::string> fieldsOf(const std::string &row) {
  std::vector<std::string> fields(1);
  for (const char c : row)
    if (c == ',')
      fields.emplace_back();
    else
      fields.back() += c;
  return fields;
}

static bool isDecimal(const std::string &text) {
  return !text.empty() &&
         text.find_first_not_of("0123456789") == std::string::npos;
}

static bool isTime(const std::string &text) {
  const size_t point = text.size() < 5 ? 0 : text.size() - 4;
  return text[point] == '.' && isDecimal(text.substr(0, point)) &&
         isDecimal(text.substr(point + 1));
}

/// Whether sizes are given from the first dimension on, as many global as local
/// ones.
static bool areSizes(const std::vector<std::string> &fields) {
  bool ended = false;
  for (size_t d = 1; d <= 3; ++d) {
    const std::string &global = fields[d], &local = fields[d + 3];
    ended = ended || global.empty();
    const bool right = ended ? global.empty() && local.empty()
                             : isDecimal(global) && isDecimal(local);
    if (!right)
      return false;
  }
  return true;
}

static bool isRow(const std::vector<std::string> &fields) {
  return fields.size() == 9 && !fields[0].empty() && !fields[1].empty() &&
         areSizes(fields) && !fields[7].empty() && isTime(fields[8]);
}

static void addRow(TimingLog &log, const std::string &line) {
  const std::vector<std::string> fields = fieldsOf(line);
  if (!isRow(fields)) {
    ADD_FAILURE() << "not a row: " << line;
    return;
  }
  std::string launch = fields[0];
  for (size_t i = 1; i < 7; ++i)
    launch += "," + fields[i];
  ++log.rows[launch][fields[7]];
  log.times.push_back(std::strtod(fields[8].c_str(), nullptr));
}

TimingLog corvane::test::readTimingLog(const std::string &text) {
  TimingLog log;
  if (text.empty() || text.back() != '\n')
    ADD_FAILURE() << "the log does not end with a line feed: " << text;
  const std::vector<std::string> lines = linesOf(text);
  if (lines.empty() || lines[0] != header) {
    ADD_FAILURE() << "the log does not begin with the header: " << text;
    return log;
  }
  std::for_each(lines.begin() + 1, lines.end(),
                [&](const std::string &line) { addRow(log, line); });
  return log;
}

TimingLog corvane::test::readKilledLog(const std::string &text) {
  const size_t last = text.rfind('\n');
  if (last != std::string::npos)
    return readTimingLog(text.substr(0, last + 1));
  EXPECT_EQ(header.compare(0, text.size(), text), 0) << text;
  return {};
}
