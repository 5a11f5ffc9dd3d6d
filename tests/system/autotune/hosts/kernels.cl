// Kernels of unsigned numbers, so every version gives the same bits. A program
// that is built without the variants is what an application would have alone.

// In place: a second run on its own results would be noticed.
__kernel void accumulate(__global uint *y, __global const uint *x, uint a) {
  const size_t i = get_global_id(0);
  y[i] = y[i] * a + x[i];
}

#ifndef WITHOUT_VARIANTS
__kernel void accumulate_coarsed_g0S4(__global uint *y, __global const uint *x,
                                      uint a) {
  const size_t first = 4 * get_global_id(0);
  for (size_t i = first; i < first + 4; ++i)
    y[i] = y[i] * a + x[i];
}

__kernel void accumulate_coarsed_l0S2(__global uint *y, __global const uint *x,
                                      uint a) {
  const size_t first = 2 * get_global_id(0);
  for (size_t i = first; i < first + 2; ++i)
    y[i] = y[i] * a + x[i];
}

// Takes one value from either half. The range may have been rounded up, so only
// the groups there were before coarsening tell how long a half is.
__kernel void accumulate_coarsed_c0S2(__global uint *y, __global const uint *x,
                                      uint a, uint4 groups) {
  const size_t half_ = groups.x * get_local_size(0) / 2;
  const size_t i = get_global_id(0);
  if (i < half_) {
    y[i] = y[i] * a + x[i];
    y[i + half_] = y[i + half_] * a + x[i + half_];
  }
}

// No range of these programs is a multiple of 4096.
__kernel void accumulate_coarsed_g0S64(__global uint *y,
                                       __global const uint *x, uint a) {
  const size_t first = 64 * get_global_id(0);
  for (size_t i = first; i < first + 64; ++i)
    y[i] = y[i] * a + x[i];
}
#endif

// The same in a part of the buffers.
__kernel void accumulatePart(__global uint *y, __global const uint *x, uint a,
                             uint from) {
  const size_t i = from + get_global_id(0);
  y[i] = y[i] * a + x[i];
}

#ifndef WITHOUT_VARIANTS
__kernel void accumulatePart_coarsed_g0S4(__global uint *y,
                                          __global const uint *x, uint a,
                                          uint from) {
  const size_t first = from + 4 * get_global_id(0);
  for (size_t i = first; i < first + 4; ++i)
    y[i] = y[i] * a + x[i];
}
#endif

__kernel void scale(__global uint *y, uint a) {
  y[get_global_id(0)] *= a;
}

#ifndef WITHOUT_VARIANTS
// Right for even factors only.
__kernel void scale_coarsed_g0S2d1S2(__global uint *y, uint a) {
  const size_t first = 2 * get_global_id(0);
  const uint half_ = a / 2;
  y[first] = y[first] * half_ * 2;
  y[first + 1] = y[first + 1] * half_ * 2;
}
#endif

__kernel void grid(__global uint *cells, uint a) {
  const size_t at = get_global_id(1) * get_global_size(0) + get_global_id(0);
  cells[at] = cells[at] * a + (uint)at;
}

#ifndef WITHOUT_VARIANTS
__kernel void grid_coarsed_g1S2(__global uint *cells, uint a) {
  const size_t width = get_global_size(0);
  const size_t at = 2 * get_global_id(1) * width + get_global_id(0);
  cells[at] = cells[at] * a + (uint)at;
  cells[at + width] = cells[at + width] * a + (uint)(at + width);
}

__kernel void grid_coarsed_l0S2(__global uint *cells, uint a) {
  const size_t at =
      2 * (get_global_id(1) * get_global_size(0) + get_global_id(0));
  cells[at] = cells[at] * a + (uint)at;
  cells[at + 1] = cells[at + 1] * a + (uint)(at + 1);
}
#endif

// A kernel without versions.
__kernel void negate(__global uint *y) {
  const size_t i = get_global_id(0);
  y[i] = ~y[i];
}

#ifdef MORE_KERNELS
__kernel void halve(__global uint *y) {
  y[get_global_id(0)] /= 2;
}

#ifndef WITHOUT_VARIANTS
__kernel void halve_coarsed_g0S2(__global uint *y) {
  const size_t first = 2 * get_global_id(0);
  y[first] /= 2;
  y[first + 1] /= 2;
}
#endif
#endif

#ifdef UNRESOLVED
uint elsewhere(uint a);

__kernel void unresolved(__global uint *y) {
  *y = elsewhere(*y);
}
#endif

#ifdef FAULTY
__kernel void faulty(__global uint *y) { this is wrong }
#endif
