// Local memory: contents that work-groups share, and contents that differ.
//! options -D TILE=8
//! kernel tiles
//! arguments buffer float 4096 below 8, buffer float 4096 below 8, buffer float 4096, int 64
//! launch 64x64 / 8x8
//! launch 64x64 / 8x8 + 0x0
//! launch 40x24 / 8x8
//! launch 64x8 / 8x8
__kernel void tiles(__global const float *a, __global const float *b,
                    __global float *c, int depth) {
  __local float left[TILE][TILE];
  __local float right[TILE][TILE];
  const int lx = get_local_id(0), ly = get_local_id(1);
  const int x = get_group_id(0) * TILE + lx;
  const int y = get_group_id(1) * TILE + ly;
  float sum = 0.0f;
  for (int base = 0; base < depth; base += TILE) {
    left[ly][lx] = a[y * 64 + base + lx];
    right[ly][lx] = b[(base + ly) * 64 + x];
    barrier(CLK_LOCAL_MEM_FENCE);
    for (int k = 0; k < TILE; ++k)
      sum += left[ly][k] * right[k][lx];
    barrier(CLK_LOCAL_MEM_FENCE);
  }
  c[y * 64 + x] = sum;
}
