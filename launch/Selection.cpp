// Asks the variants' conditions.

#include "launch/Selection.h"

using namespace corvane;

// The first variant whose conditions accept the sizes; null if none does.
static VariantKernel *findAcceptingVariant(KernelRecord &record,
                                           const LaunchSizes &sizes) {
  for (VariantKernel &variant : record.variantKernels)
    if (variant.kernel &&
        variant.variant->record.acceptsLaunch(
            sizes.workDim, sizes.global.data(), sizes.local.data()))
      return &variant;
  return nullptr;
}

// Copies are made size by size: a wider read would wait for the writes.
void corvane::select(KernelRecord &record, const Launch &launch) {
  Selection &selection = record.selection;
  const LaunchSizes sizes = sizesOf(launch);
  selection.sizes.workDim = launch.workDim;
  copySizes(launch.workDim, sizes.global.data(), selection.sizes.global);
  copySizes(launch.workDim, sizes.local.data(), selection.sizes.local);
  selection.variant = findAcceptingVariant(record, selection.sizes);
  if (!selection.variant)
    return;
  VariantRange &range = selection.range;
  copySizes(launch.workDim, sizes.global.data(), range.global);
  copySizes(launch.workDim, sizes.local.data(), range.local);
  selection.variant->variant->record.adjustLaunch(
      launch.workDim, range.global.data(), range.local.data());
}
