// Global ids computed from groups, sizes and local ids.
//! kernel shifted
//! arguments buffer int 1024, buffer int 1024
//! launch 1024 / 64
//! launch 1008 / 16
//! launch 768 / 32 + 256
__kernel void shifted(__global const int *in, __global int *out) {
  const int lid = get_local_id(0);
  const uint size = get_local_size(0);
  int at = (int)get_group_id(0) * size + lid;
  out[at] += in[at] + get_global_id(0) + (lid + get_group_id(0) * size);
}
uint where(uint extra) {
  return get_local_size(0) * get_group_id(0) + get_local_id(0) + extra;
}
//! kernel helped
//! arguments buffer int 1024, buffer int 1024
//! launch 1024 / 64
//! launch 1008 / 16
__kernel void helped(__global const int *in, __global int *out) {
  out[where(0)] = in[where(3) & 1023] + get_num_groups(0);
}
//! kernel multiplied
//! arguments buffer int 1024, buffer int 1024
//! launch 1024 / 64
//! launch 1008 / 16
//! launch 768 / 32 + 256
__kernel void multiplied(__global const int *in, __global int *out) {
  const int at = mad24((int)get_group_id(0), (int)get_local_size(0),
                       (int)get_local_id(0));
  const int lid = get_local_id(0);
  const int same =
      mul24((int)get_local_size(0), (int)get_group_id(0)) + lid;
  out[at] += in[same];
}
