// Sizes of launches as fields of a JSON object.

#pragma once

#include "results/LaunchSizes.h"

#include "llvm/Support/JSON.h"

namespace corvane {

class JsonFields;

/// Writes the fields "global", a list with one number a dimension, and "local",
/// such a list or null.
void writeSizes(llvm::json::OStream &out, const LaunchSizes &sizes);

/// Reads the two fields; complains there if they are no sizes.
LaunchSizes readSizes(JsonFields &fields);

} // namespace corvane
