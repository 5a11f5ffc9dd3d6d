// A matrix product: a guard, a loop that lanes share, a helper.
//! kernel product
//! arguments buffer float 4096 below 8, buffer float 4096 below 8, buffer float 4096, int 61, int 19
//! launch 64x64 / 8x4
//! launch 64x64
//! launch 64x16 / 16x1
//! launch 64x64 / 8x8 + 64x64
//! launch 64x64 / 64x1
//! launch 64x64 / 1x64
//! launch 40x24 / 8x8
float scaled(float x) { return x * 0.5f; }
__kernel void product(__global const float *a, __global const float *b,
                      __global float *c, int n, int depth) {
  int x = get_global_id(0) - get_global_offset(0);
  int y = get_global_id(1) - get_global_offset(1);
  if (x >= n || y >= n)
    return;
  float sum = 0, left;
  int k;
  for (k = 0; k < depth; ++k) {
    left = a[y * 64 + k];
    sum += left * b[k * 64 + x];
  }
  c[y * 64 + x] = scaled(sum);
}
