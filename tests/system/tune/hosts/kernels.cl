// Kernels whose variants are much faster and do the same, nearly the same or
// something else. What takes the kernels long, their variants do in few steps.

#ifndef EXTRA
#define EXTRA 0
#endif

// "times" times v = 3 v + 1, one by one.
uint slowly(uint v, uint times) {
  for (uint i = 0; i != times; ++i)
    v = 3 * v + 1;
  return v;
}

// The same by squaring.
uint quickly(uint v, uint times) {
  uint factor = 3, term = 1;
  for (; times != 0; times >>= 1) {
    if (times & 1)
      v = factor * v + term;
    term = factor * term + term;
    factor = factor * factor;
  }
  return v;
}

kernel void good(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = slowly(x[i], times);
}
kernel void good_coarsed_g0S2(global uint *y, global const uint *x,
                              uint times) {
  for (size_t i = get_global_id(0); i < 2 * get_global_size(0);
       i += get_global_size(0))
    y[i] = quickly(x[i], times) + EXTRA;
}

kernel void empty(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = slowly(x[i], times);
}
kernel void empty_coarsed_g0S2(global uint *y, global const uint *x,
                               uint times) {}

kernel void offByOne(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = slowly(x[i], times);
}
kernel void offByOne_coarsed_g0S2(global uint *y, global const uint *x,
                                  uint times) {
  const size_t items = get_global_size(0);
  for (size_t i = get_global_id(0); i < 2 * items; i += items)
    y[i] = quickly(x[i], times) + (i == 2 * items - 1 ? 1 : 0);
}

kernel void someSizes(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = slowly(x[i], times);
}
kernel void someSizes_coarsed_g0S2(global uint *y, global const uint *x,
                                   uint times) {
  const size_t items = get_global_size(0);
  for (size_t i = get_global_id(0); i < 2 * items; i += items)
    y[i] = quickly(x[i], times) + (items > 512 ? 1 : 0);
}

kernel void lastBit(global float *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = (float)(slowly(x[i], times) | 1);
}
kernel void lastBit_coarsed_g0S2(global float *y, global const uint *x,
                                 uint times) {
  for (size_t i = get_global_id(0); i < 2 * get_global_size(0);
       i += get_global_size(0))
    y[i] = as_float(as_uint((float)(quickly(x[i], times) | 1)) + 1);
}

// The order in which work-items come is another one each time.
kernel void racing(global uint *y, global uint *x, uint times) {
  y[atomic_inc(x)] = slowly((uint)get_global_id(0), times);
}
kernel void racing_coarsed_g0S2(global uint *y, global uint *x, uint times) {
  for (size_t i = get_global_id(0); i < 2 * get_global_size(0);
       i += get_global_size(0))
    y[i] = quickly((uint)i, times);
}

kernel void inPlace(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] += slowly(y[i] ^ x[i], times);
}
kernel void inPlace_coarsed_g0S2(global uint *y, global const uint *x,
                                 uint times) {
  for (size_t i = get_global_id(0); i < 2 * get_global_size(0);
       i += get_global_size(0))
    y[i] += quickly(y[i] ^ x[i], times);
}
