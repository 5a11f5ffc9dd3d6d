// Kernels whose variants do what no kernel may, each something else.

kernel void sound(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = x[i] + times;
}
kernel void sound_coarsed_g0S2(global uint *y, global const uint *x,
                               uint times) {
  for (size_t lane = 0; lane != 2; ++lane) {
    const size_t i = 2 * get_global_id(0) + lane;
    y[i] = x[i] + times;
  }
}

kernel void beyond(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = x[i] + times;
}
kernel void beyond_coarsed_g0S2(global uint *y, global const uint *x,
                                uint times) {
  for (size_t lane = 0; lane != 2; ++lane) {
    const size_t i = 2 * get_global_id(0) + lane;
    y[i + 1] = x[i] + times;
  }
}

kernel void racing(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = x[i] + times;
}
kernel void racing_coarsed_g0S2(global uint *y, global const uint *x,
                                uint times) {
  for (size_t lane = 0; lane != 2; ++lane)
    y[lane] = x[lane] + (uint)get_global_id(0);
}

kernel void unset(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = x[i] + times;
}
kernel void unset_coarsed_g0S2(global uint *y, global const uint *x,
                               uint times) {
  local uint cells[64];
  if (get_local_id(0) != 3)
    cells[get_local_id(0)] = times;
  for (size_t lane = 0; lane != 2; ++lane) {
    const size_t i = 2 * get_global_id(0) + lane;
    y[i] = x[i] + cells[get_local_id(0)];
  }
}

kernel void both(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i + 1] = x[i] + times;
}
kernel void both_coarsed_g0S2(global uint *y, global const uint *x,
                                uint times) {
  for (size_t lane = 0; lane != 2; ++lane) {
    const size_t i = 2 * get_global_id(0) + lane;
    y[i + 1] = x[i] + times;
  }
}

kernel void other(global uint *y, global const uint *x, uint times) {
  const size_t i = get_global_id(0);
  y[i] = x[i] + times;
}
kernel void other_coarsed_g0S2(global uint *y, global const uint *x,
                               uint times) {
  for (size_t lane = 0; lane != 2; ++lane) {
    const size_t i = 2 * get_global_id(0) + lane;
    y[i] = x[i] + times + 1;
  }
}
