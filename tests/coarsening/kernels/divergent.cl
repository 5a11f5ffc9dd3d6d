// Branches, loops and returns that differ from work-item to work-item.
//! kernel walk
//! arguments buffer int 1024 below 30, buffer int 1024, int 1000
//! launch 1024 / 64
//! launch 1024
//! launch 512 / 32 + 256
//! launch 1008 / 16
__kernel void walk(__global const int *steps, __global int *out, int n) {
  int i = get_global_id(0), count = 0, extra[4] = {1, 2, 3, 4};
  if (i >= n)
    return;
  int left = steps[i];
  while (left > 0) {
    if (left % 7 == 3) {
      left -= 2;
      continue;
    }
    if (left == 29)
      break;
    left--;
    count += extra[left & 3];
  }
  if (count > 40) {
    out[i] = -count;
    return;
  }
  switch (count % 4) {
  case 0:
    out[i] = 1;
    break;
  case 1:
    out[i] = count;
  default:
    out[i] += 5;
  }
  for (int k = 0; k < 4; ++k) {
    if (k == 2)
      continue;
    out[i] += k * count;
  }
}
//! kernel gaps
//! arguments buffer float 1024, buffer float 1024, int 8
//! launch 1024 / 64
//! launch 1008 / 16
//! launch 1024 / 1
//! launch 1024
__kernel void gaps(__global float *a, __global float *b, int rounds) {
  const size_t at = get_global_id(0);
  float best = 0.0f, *where = &best;
  int r, used = 0;
  if (a[at] > 100.0f) {
    for (r = 0; r < rounds; r++) {
      *where += a[(at + r) % get_global_size(0)];
      used++;
    }
    b[at] = best + used;
  } else {
    used = 3;
    b[at] -= used;
  }
}
