// C = A * B for matrices of floats, stored row by row. A is `depth` wide, B and
// C are `width` wide; one work-item a value of C.
__kernel void matmul(__global float *c, __global const float *a,
                     __global const float *b, int depth, int width) {
  const size_t column = get_global_id(0);
  const size_t row = get_global_id(1);
  float sum = 0.0f;
  for (int k = 0; k < depth; ++k)
    sum += a[row * depth + k] * b[(size_t)k * width + column];
  c[row * width + column] = sum;
}

// Four neighbouring values of a row in one work-item, and four steps of the sum
// at a time, which is why `depth` must be divisible by four.
__kernel void matmul_coarsed_g0S4d3S4(__global float *c,
                                      __global const float *a,
                                      __global const float *b, int depth,
                                      int width) {
  const size_t column = 4 * get_global_id(0);
  const size_t row = get_global_id(1);
  float4 sum = (float4)(0.0f);
  for (int k = 0; k < depth; k += 4) {
    const float4 factors = vload4(0, a + row * depth + k);
    __global const float *rows = b + (size_t)k * width + column;
    sum += factors.x * vload4(0, rows);
    sum += factors.y * vload4(0, rows + width);
    sum += factors.z * vload4(0, rows + 2 * width);
    sum += factors.w * vload4(0, rows + 3 * width);
  }
  vstore4(sum, 0, c + row * width + column);
}
