// Does the work of a kernel, and writes the row of its run.

#include "tests/support/loose/LaunchPlan.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

using namespace corvane::test::loose;

template <typename Value>
static bool readArgument(const Argument &argument, Value &value) {
  if (argument.size != sizeof value)
    return false;
  std::memcpy(&value, argument.bytes.data(), sizeof value);
  return true;
}

LaunchPlan::LaunchPlan(const Kernel &kernel, cl_uint workDim,
                       const std::size_t *global, const std::size_t *local)
    : type(kernel.type), shared(kernel.shared), dimensions(workDim) {
  for (cl_uint d = 0; d != dimensions; ++d) {
    askedGlobal[d] = global[d];
    askedLocal[d] = local ? local[d] : 0;
  }
  askedGlobal[0] *= type.factor;
  if (type.shrinksLocal)
    askedLocal[0] *= type.factor;

  for (unsigned i = 0; i != type.buffers; ++i) {
    cl_mem buffer = nullptr;
    complete = readArgument(kernel.arguments[i], buffer) && complete;
    if (buffer)
      buffers.emplace_back(objectOf(buffer));
  }
  complete = readArgument(kernel.arguments[type.buffers], number) && complete;
  if (type.hidden)
    expectGroupCounts(kernel.arguments[type.buffers + 1]);
}

void LaunchPlan::expectGroupCounts(const Argument &hidden) const {
  std::array<std::uint32_t, 4> expected{};
  for (cl_uint d = 0; d != dimensions; ++d)
    if (askedLocal[0] != 0)
      expected[d] = static_cast<std::uint32_t>(askedGlobal[d] / askedLocal[d]);
  std::array<std::uint32_t, 4> counts{};
  if (!readArgument(hidden, counts) || counts != expected)
    shared.reportMistake(
        "a variant does not know the group counts of its launch");
}

static std::string fields(const std::array<std::size_t, 3> &sizes,
                          cl_uint count) {
  std::string text;
  for (cl_uint d = 0; d != 3; ++d)
    text += d < count ? std::to_string(sizes[d]) + "," : ",";
  return text;
}

std::string LaunchPlan::row(cl_ulong nanoseconds) const {
  std::array<char, 32> time{};
  std::snprintf(time.data(), time.size(), "%llu.%03llu",
                static_cast<unsigned long long>(nanoseconds / 1000),
                static_cast<unsigned long long>(nanoseconds % 1000));
  return std::string(type.base) + "," + fields(askedGlobal, dimensions) +
         fields(askedLocal, dimensions) + type.version + "," + time.data();
}

static void compute(Words &out, const Words &in, std::uint32_t number) {
  for (std::size_t i = 0; i != out.size(); ++i)
    out[i] = out[i] * 31 + in[i % in.size()] + number;
}

void LaunchPlan::run() const {
  if (type.isVariant())
    shared.recordVariantRun();
  if (buffers.empty())
    return;
  Buffer &out = *buffers.front();
  Buffer &in = *buffers.back();
  if (type.isVariant() && shared.behaviour.variantsSpoil) {
    std::fill(out.words.begin(), out.words.end(), 0xEEEEEEEE);
    std::fill(in.words.begin(), in.words.end(), 0xDDDDDDDD);
    return;
  }
  out.expectTruth();
  in.expectTruth();
  compute(out.truth, in.truth, number);
  compute(out.words, in.words, number);
}
