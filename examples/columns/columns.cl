// The sums of the columns of a matrix of integers that is `width` wide; a
// work-item sums COUNT columns that are STEP apart.
#define SUM_COLUMNS(COUNT, FIRST, STEP)                                        \
  const size_t first = (FIRST);                                                \
  uint sum[COUNT] = {0};                                                       \
  for (int row = 0; row < height; ++row)                                       \
    for (int i = 0; i < COUNT; ++i)                                            \
      sum[i] += in[(size_t)row * width + first + (size_t)i * (STEP)];          \
  for (int i = 0; i < COUNT; ++i)                                              \
    out[first + (size_t)i * (STEP)] = sum[i];

#define ARGUMENTS                                                              \
  __global uint *out, __global const uint *in, int width, int height

__kernel void columns(ARGUMENTS) { SUM_COLUMNS(1, get_global_id(0), 1) }

// Neighbouring columns in one work-item. What is best differs between devices:
// that is why there are so many.
__kernel void columns_coarsed_g0S2(ARGUMENTS) {
  SUM_COLUMNS(2, 2 * get_global_id(0), 1)
}
__kernel void columns_coarsed_g0S4(ARGUMENTS) {
  SUM_COLUMNS(4, 4 * get_global_id(0), 1)
}
__kernel void columns_coarsed_g0S8(ARGUMENTS) {
  SUM_COLUMNS(8, 8 * get_global_id(0), 1)
}

// A work-group of a quarter of the size for the same columns, which lie a
// work-group apart.
__kernel void columns_coarsed_l0S4(ARGUMENTS) {
  SUM_COLUMNS(4, get_group_id(0) * 4 * get_local_size(0) + get_local_id(0),
              get_local_size(0))
}
