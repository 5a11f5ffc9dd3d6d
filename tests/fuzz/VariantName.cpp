// Fuzzes kernel names: the input is a line that is the name, then the choices
// for launches.

#include "variants/VariantName.h"

#include "tests/fuzz/Input.h"
#include "tests/fuzz/ReferenceName.h"
#include <limits>

using namespace corvane;
using namespace corvane::fuzz;

using Record = llvm::TransformedKernelAgent;
using Sizes = ReferenceName::Sizes;

static std::string specOf(const Record &record) {
  return record.llvm::TransformedKernel::specText();
}

// Whether the name that the record writes can be read. A negative number is
// written as the large unsigned one that it means, which is too large to be
// read.
static bool canBeReadAgain(const ReferenceName &reference) {
  for (const Item &item : reference.items)
    for (const std::uint32_t number : item.numbers)
      if (number > std::numeric_limits<std::int32_t>::max())
        return false;
  return true;
}

static void checkRebuilt(const Record &record) {
  const std::string name = record.kernelName();
  check(record.specText() == name, "the text of a record is its kernel's name");
  const auto again = parseVariantName(name);
  check(again != nullptr, "a rebuilt name is a variant's name");
  check(again->baseName == record.baseName, "a rebuilt name keeps the base");
  check(again->kernelName() == name, "a rebuilt name is canonical");
}

static void checkCopies(const Record &record) {
  const Record copy(record);
  check(Record(copy).kernelName() == record.kernelName(),
        "the copy of a copy is the same");
  check(specOf(copy).size() == specOf(record).size(),
        "a copy has the same conditions");
}

// A small, a large or an odd size.
static std::size_t someSize(Input &input) {
  const std::size_t factor = input.byte();
  return (factor << input.below(56)) + input.below(3);
}

static void checkPrepared(const Record &record, bool wraps,
                          std::uint32_t workDim, const Sizes &global,
                          const Sizes &local) {
  constexpr std::size_t untouched = 0x5a5a5a5a;
  Sizes newGlobal = {untouched, untouched, untouched};
  Sizes newLocal = newGlobal;
  const bool prepared =
      prepareLaunch(record, workDim, global.data(), local.data(),
                    newGlobal.data(), newLocal.data());
  check(prepared == record.acceptsLaunch(workDim, global.data(), local.data()),
        "exactly the launches that are accepted are prepared");
  for (std::uint32_t d = 0; d != 3; ++d) {
    const bool written = prepared && d < workDim;
    check(written || (newGlobal[d] == untouched && newLocal[d] == untouched),
          "nothing else is written");
    check(!written || newLocal[d] <= local[d], "work-groups never grow");
    // Only where a divisor is not what the name says.
    check(!written || newLocal[d] != 0 || local[d] == 0 || wraps,
          "a work-group never becomes empty");
  }
}

static void checkLaunch(const Record &record, const ReferenceName &reference,
                        Input &input) {
  const auto workDim = static_cast<std::uint32_t>(input.below(4));
  Sizes global{};
  Sizes local{};
  for (std::uint32_t d = 0; d != 3; ++d) {
    global[d] = someSize(input);
    local[d] = input.flag() ? someSize(input) : 0;
  }
  check(record.acceptsLaunch(workDim, global.data(), local.data()) ==
            reference.acceptsLaunch(workDim, global, local),
        "a launch is accepted as the name says");
  checkPrepared(record, reference.wraps(), workDim, global, local);
}

static void checkArgument(const Record &record, const ReferenceName &reference,
                          Input &input) {
  const auto index = static_cast<std::uint32_t>(input.below(8));
  std::string value(input.bytes(input.flag() ? 4 : 8));
  value.resize(value.size() <= 4 ? 4 : 8);
  check(record.acceptsArgument(index, value.size(), value.data()) ==
            reference.acceptsArgument(index, value),
        "an argument is accepted as the name says");
  (void)record.acceptsArgument(index, value.size() - 1, value.data());
  (void)record.acceptsArgument(index, 8, nullptr);
}

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input(data, size);
  const std::string name(input.textUntil('\n'));
  const auto record = parseVariantName(name);
  const auto reference = ReferenceName::read(name);
  check((record != nullptr) == reference.has_value(),
        "a name is a variant's exactly if it reads like one");
  if (!record)
    return 0;

  check(record->baseName == reference->base,
        "the base is what precedes the marker");
  checkCopies(*record);
  if (canBeReadAgain(*reference))
    checkRebuilt(*record);
  do {
    checkLaunch(*record, *reference, input);
    checkArgument(*record, *reference, input);
  } while (!input.empty());
  return 0;
}
