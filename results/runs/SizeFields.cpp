// Writes and reads the lists "global" and "local".

#include "results/runs/SizeFields.h"

#include "results/runs/Json.h"

#include <algorithm>

using namespace corvane;
namespace json = llvm::json;

static void writeList(json::OStream &out, const Sizes &sizes,
                      std::uint32_t dimensions) {
  out.arrayBegin();
  for (std::uint32_t i = 0; i != std::clamp(dimensions, 1U, 3U); ++i)
    out.value(json::Value(sizes[i]));
  out.arrayEnd();
}

void corvane::writeSizes(json::OStream &out, const LaunchSizes &sizes) {
  out.attributeBegin("global");
  writeList(out, sizes.global, sizes.dimensions);
  out.attributeEnd();
  out.attributeBegin("local");
  if (sizes.hasLocal())
    writeList(out, sizes.local, sizes.dimensions);
  else
    out.value(nullptr);
  out.attributeEnd();
}

static Sizes readList(JsonFields &fields, const char *key,
                      std::size_t &dimensions) {
  Sizes sizes{};
  const llvm::ArrayRef<JsonValue> list = fields.list(key);
  dimensions = list.size();
  for (std::size_t i = 0; i != std::min(list.size(), sizes.size()); ++i)
    if (const std::optional<std::uint64_t> number = wholeNumber(list[i]))
      sizes[i] = *number;
    else
      fields.complain(std::string("\"") + key + "\" holds no whole number");
  return sizes;
}

LaunchSizes corvane::readSizes(JsonFields &fields) {
  LaunchSizes sizes;
  std::size_t dimensions = 0;
  sizes.global = readList(fields, "global", dimensions);
  if (dimensions < 1 || dimensions > 3)
    fields.complain("\"global\" needs one to three numbers");
  else
    sizes.dimensions = static_cast<std::uint32_t>(dimensions);

  if (fields.has("local")) {
    std::size_t localDimensions = 0;
    sizes.local = readList(fields, "local", localDimensions);
    if (localDimensions != dimensions)
      fields.complain("\"local\" and \"global\" differ in length");
    for (std::size_t i = 0; i != std::min<std::size_t>(localDimensions, 3); ++i)
      if (sizes.local[i] == 0)
        fields.complain("\"local\" holds a 0");
  }
  return sizes;
}
