// One row of the blur: five neighbours with the weights 1 4 6 4 1. A neighbour
// beyond the picture's edge is taken to be like the pixel at the edge.
static uint4 blurredRow(__global const uchar4 *in, int width, int height, int x,
                        int y) {
  __global const uchar4 *row = in + (size_t)clamp(y, 0, height - 1) * width;
  const uint4 outer = convert_uint4(row[max(x - 2, 0)]) +
                      convert_uint4(row[min(x + 2, width - 1)]);
  const uint4 inner = convert_uint4(row[max(x - 1, 0)]) +
                      convert_uint4(row[min(x + 1, width - 1)]);
  return outer + 4u * inner + 6u * convert_uint4(row[x]);
}

// Five blurred rows make a pixel. The weights add up to 256.
static uchar4 blurredPixel(uint4 a, uint4 b, uint4 c, uint4 d, uint4 e) {
  return convert_uchar4((a + e + 4u * (b + d) + 6u * c + 128u) / 256u);
}

// Blurs a picture a little; one work-item a pixel.
__kernel void blur(__global uchar4 *out, __global const uchar4 *in, int width,
                   int height) {
  const int x = get_global_id(0);
  const int y = get_global_id(1);
  if (x >= width || y >= height)
    return;
  out[(size_t)y * width + x] =
      blurredPixel(blurredRow(in, width, height, x, y - 2),
                   blurredRow(in, width, height, x, y - 1),
                   blurredRow(in, width, height, x, y),
                   blurredRow(in, width, height, x, y + 1),
                   blurredRow(in, width, height, x, y + 2));
}

// Four pixels below each other in one work-item: they need eight blurred rows
// together, not twenty. The two pictures must not overlap. The ND range may
// have been rounded up, so each pixel is checked against the edge.
__kernel void blur_coarsed_r0S1c1S4(__global uchar4 *restrict out,
                                    __global const uchar4 *restrict in,
                                    int width, int height) {
  const int x = get_global_id(0);
  const int y = 4 * (int)get_global_id(1);
  if (x >= width)
    return;
  uint4 rows[8];
  for (int i = 0; i < 8; ++i)
    rows[i] = blurredRow(in, width, height, x, y - 2 + i);
  for (int i = 0; i < 4; ++i)
    if (y + i < height)
      out[(size_t)(y + i) * width + x] = blurredPixel(
          rows[i], rows[i + 1], rows[i + 2], rows[i + 3], rows[i + 4]);
}
