// Kernels without variants. Nearly all that they compute is the same for all
// work-items, so that work-items that do the work of several save nearly all.

#ifndef ADDED
#define ADDED 0
#endif

uint slowly(uint v, uint times) {
  for (uint i = 0; i != times; ++i)
    v = 3 * v + 1;
  return v;
}

kernel void scaled(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  const uint factor = slowly(times, times);
  y[i] = factor * x[i] + (uint)i + ADDED;
}

kernel void guarded(global uint *y, global const uint *x, uint times) {
  const uint i = get_global_id(0);
  if (i + 3 >= get_global_size(0))
    return;
  y[i] = slowly(times, times) ^ x[i + 3];
}

// The sum of differences to the neighbour in the work-group.
kernel void shared(global uint *y, global const uint *x, uint times) {
  local uint tile[64];
  const uint i = get_local_id(0);
  tile[i] = x[get_global_id(0)] * slowly(times, times);
  barrier(CLK_LOCAL_MEM_FENCE);
  y[get_global_id(0)] = tile[i] - tile[(i + 1) % 64];
}
