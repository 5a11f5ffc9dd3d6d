// Keeps the layer's own references out of what the application is told.

#pragma once

#include "layer/LayerTable.h"

namespace corvane::layer {

/// Has reference counts told as they would be without the events that the layer
/// holds, and events given back before a queue or a context goes. \p next are
/// the calls to make; it must live as long as the process.
void watchQuestions(cl_icd_dispatch &calls, const cl_icd_dispatch &next);

} // namespace corvane::layer
