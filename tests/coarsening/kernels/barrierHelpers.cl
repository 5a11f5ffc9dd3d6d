// Functions with barriers, which are inlined into the kernels that call them.
//! kernel summed
//! arguments buffer int 1024 below 50, buffer int 1024, int 3
//! launch 1024 / 32
//! launch 768 / 16
//! launch 512 / 64 + 128
//! launch 160 / 32
void fill(__local int *tile, int lid, const int value) {
  tile[lid] = value;
  barrier(CLK_LOCAL_MEM_FENCE);
}
int sum(__local int *tile, int n) {
  int lid = 0, total = 0;
  for (lid = 0; lid < n; ++lid)
    total += tile[lid] * (lid + 1);
  barrier(CLK_LOCAL_MEM_FENCE);
  return total;
}
int both(__local int *tile, int lid, int value, int n) {
  int result;
  fill(tile, lid, value);
  result = sum(tile, n);
  return result + value;
}
__kernel void summed(__global const int *in, __global int *out, int rounds) {
  __local int tile[64];
  const int at = get_global_id(0) - get_global_offset(0);
  const int lid = get_local_id(0);
  int total = both(tile, lid, in[at], get_local_size(0));
  for (int round = 0; round < rounds; ++round) {
    if (rounds > 1)
      fill(tile, lid, total + round);
    else
      fill(tile, lid, 1);
    total ^= sum(tile, 8);
  }
  out[at] = total;
}
