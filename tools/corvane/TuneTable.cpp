// Fills the cells of each row, and pads the columns to their widest cells.

#include "tools/corvane/TuneTable.h"

#include "results/profile/ProfileFile.h"
#include "tools/corvane/Command.h"

#include "llvm/ADT/STLExtras.h"
#include "llvm/Support/Format.h"
#include "llvm/Support/raw_ostream.h"

#include <algorithm>
#include <array>
#include <set>

using namespace corvane;
using llvm::ArrayRef;

static constexpr std::size_t maxRows = 50;
static constexpr std::size_t columns = 9;
using Row = std::array<std::string, columns>;

static std::string fixed(double value, unsigned decimals) {
  std::string text;
  llvm::raw_string_ostream out(text);
  out << llvm::format("%.*f", static_cast<int>(decimals), value);
  return out.str();
}

std::string corvane::timeText(double microseconds) {
  if (microseconds < 1e3)
    return fixed(microseconds, 1) + " us";
  if (microseconds < 1e6)
    return fixed(microseconds / 1e3, 2) + " ms";
  return fixed(microseconds / 1e6, 2) + " s";
}

// The original's samples; null without any.
static const TunedVersion *originalOf(const TunedConfiguration &tuned) {
  return !tuned.versions.empty() && tuned.versions[0].figures.version.empty() &&
                 tuned.versions[0].figures.samples != 0
             ? &tuned.versions[0]
             : nullptr;
}

// The version to use; null where that is the original.
static const TunedVersion *winnerOf(const TunedConfiguration &tuned) {
  const auto found =
      llvm::find_if(tuned.versions, [&](const TunedVersion &version) {
        return version.figures.version == tuned.winner;
      });
  return tuned.winner.empty() || found == tuned.versions.end() ? nullptr
                                                               : &*found;
}

static double kernelTime(const TunedConfiguration &tuned) {
  const TunedVersion *const original = originalOf(tuned);
  return original
             ? original->figures.median * static_cast<double>(tuned.launches)
             : 0.0;
}

static std::string gainText(const TunedVersion &original,
                            const TunedVersion &winner) {
  const double gain = original.figures.median / winner.figures.median;
  std::string text = fixed(gain, 2) + "x";
  if (const std::optional<RatioInterval> &ratio = winner.figures.interval)
    text += " (" + fixed(1.0 / ratio->high, 2) + "x to " +
            fixed(1.0 / ratio->low, 2) + "x)";
  return text;
}

// How many variants are out because what they wrote was different.
static std::size_t differentVariants(const TunedConfiguration &tuned) {
  return static_cast<std::size_t>(
      llvm::count_if(tuned.versions, [](const TunedVersion &version) {
        return !version.figures.version.empty() &&
               version.check == Agreement::Different;
      }));
}

static std::string checkText(const TunedConfiguration &tuned) {
  if (const TunedVersion *const winner = winnerOf(tuned))
    return agreementText(winner->check);
  if (!tuned.versions.empty() && tuned.versions[0].figures.version.empty() &&
      tuned.versions[0].check == Agreement::Different)
    return "the original differs from itself";
  if (const std::size_t count = differentVariants(tuned))
    return std::to_string(count) + " of " +
           std::to_string(tuned.versions.size() - 1) + " variants different";
  return "";
}

static std::string outcomeText(const TunedConfiguration &tuned) {
  if (!tuned.untunable.empty() && !tuned.decided)
    return "not tuned: " + tuned.untunable;
  if (!tuned.decided)
    return "too few samples";
  return tuned.bestInterval() ? "no difference" : "nothing to choose from";
}

static Row rowOf(const TunedConfiguration &tuned) {
  const TunedVersion *const original = originalOf(tuned);
  const TunedVersion *const winner = winnerOf(tuned);
  Row row = {tuned.kernel,
             sizesText(tuned.sizes),
             winner ? tuned.winner : "original",
             original ? timeText(original->figures.median) : "",
             winner ? timeText(winner->figures.median) : "",
             winner && original ? gainText(*original, *winner)
                                : outcomeText(tuned),
             checkText(tuned),
             "",
             ""};
  for (std::string &cell : row)
    cell = printable(cell).substr(0, 60);
  return row;
}

// Times end at the right of their columns.
static bool isRightAligned(std::size_t column) {
  return column == 3 || column == 4;
}

static std::string textOf(const std::vector<Row> &rows) {
  std::array<std::size_t, columns> widths{};
  for (const Row &row : rows)
    for (std::size_t i = 0; i != columns; ++i)
      widths[i] = std::max(widths[i], row[i].size());

  std::string text;
  for (const Row &row : rows) {
    std::string line;
    for (std::size_t i = 0; i != columns; ++i) {
      if (widths[i] == 0)
        continue;
      const std::string blanks(widths[i] - row[i].size(), ' ');
      line += isRightAligned(i) ? blanks + row[i] : row[i] + blanks;
      line += "  ";
    }
    text += llvm::StringRef(line).rtrim().str() + "\n";
  }
  return text;
}

static std::vector<const TunedConfiguration *>
byKernelTime(ArrayRef<TunedConfiguration> configurations) {
  std::vector<const TunedConfiguration *> order;
  for (const TunedConfiguration &tuned : configurations)
    order.push_back(&tuned);
  llvm::stable_sort(order, [](const auto *left, const auto *right) {
    return kernelTime(*left) > kernelTime(*right);
  });
  return order;
}

std::string corvane::tuneTable(ArrayRef<TunedConfiguration> configurations) {
  std::set<std::string> programs;
  std::set<ProfileDevice> devices;
  for (const TunedConfiguration &tuned : configurations) {
    programs.insert(tuned.program);
    devices.insert(tuned.device);
  }

  // A column without a title has empty cells, and is left out of the text.
  std::vector<Row> rows = {{"kernel", "sizes", "winner", "original", "winner's",
                            "gain", "check",
                            programs.size() > 1 ? "program" : "",
                            devices.size() > 1 ? "device" : ""}};
  for (const TunedConfiguration *tuned : byKernelTime(configurations)) {
    if (rows.size() > maxRows)
      break;
    rows.push_back(rowOf(*tuned));
    if (programs.size() > 1)
      rows.back()[7] = printable(tuned->program).substr(0, 8);
    if (devices.size() > 1)
      rows.back()[8] =
          printable(tuned->device.name + ", driver " + tuned->device.driver)
              .substr(0, 60);
  }
  std::string text = textOf(rows);
  if (configurations.size() > maxRows)
    text +=
        "and " + std::to_string(configurations.size() - maxRows) + " more\n";
  return text;
}

std::optional<double>
corvane::partSaved(ArrayRef<TunedConfiguration> configurations) {
  double before = 0.0, after = 0.0;
  for (const TunedConfiguration &tuned : configurations) {
    const TunedVersion *const winner = winnerOf(tuned);
    before += kernelTime(tuned);
    after += winner
                 ? winner->figures.median * static_cast<double>(tuned.launches)
                 : kernelTime(tuned);
  }
  if (!(before > 0.0))
    return std::nullopt;
  return std::clamp(1.0 - after / before, 0.0, 1.0);
}
