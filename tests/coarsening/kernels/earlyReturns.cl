// Kernels that do their work in a branch and return there, and local memory
// whose size is a constant of the kernel's.
//! kernel worksAndReturns
//! arguments buffer int 1024, buffer int 1024, int 700
//! launch 1024 / 64
//! launch 1008 / 16
//! launch 768 / 32 + 256
__kernel void worksAndReturns(__global const int *in, __global int *out,
                              int end) {
  const int i = get_global_id(0);
  if (i < end) {
    int sum = 0;
    for (int k = 0; k < 5; ++k)
      sum += in[(i + k) & 1023] * k;
    out[i] = sum;
    return;
  }
  out[i] = in[i] + end;
}
//! kernel returnsTwice
//! arguments buffer int 1024, buffer int 1024, int 300, int 600
//! launch 1024 / 64
//! launch 1008 / 16
__kernel void returnsTwice(__global const int *in, __global int *out, int first,
                           int second) {
  const int i = get_global_id(0);
  int sum = first;
  if (i < first) {
    sum += in[i];
    out[i] = sum;
    return;
  }
  sum *= 3;
  if (i >= second) {
    sum -= in[i];
    out[i] = sum;
    return;
  }
  for (int k = 0; k < 4; ++k)
    sum += in[(i * k) & 1023];
  out[i] = sum;
}
//! kernel returnsAtTheEnd
//! arguments buffer int 1024, buffer int 1024, int 700
//! launch 1024 / 64
//! launch 1008 / 16
__kernel void returnsAtTheEnd(__global const int *in, __global int *out,
                              int end) {
  const int i = get_global_id(0);
  if (i < end) {
    out[i] = 2 * in[i];
    return;
  }
}
//! kernel sizedByAConstant
//! arguments buffer int 1024, buffer int 1024
//! launch 1024 / 64
//! launch 768 / 64 + 256
__kernel void sizedByAConstant(__global const int *in, __global int *out) {
  const int columns = 32, rows = 2;
  __local int tile[rows][columns + 1];
  const int lid = get_local_id(0);
  tile[lid / columns][lid % columns] = in[get_global_id(0)];
  barrier(CLK_LOCAL_MEM_FENCE);
  out[get_global_id(0)] = tile[1 - lid / columns][lid % columns];
}
