// What the layers of these tests tell the loader of themselves.

#include <CL/cl_layer.h>

#include <cstring>

// The loader makes no other query.
extern "C" cl_int CL_API_CALL clGetLayerInfo(cl_layer_info name,
                                             size_t capacity, void *value,
                                             size_t *length) {
  const cl_layer_api_version version = CL_LAYER_API_VERSION_100;
  if (name != CL_LAYER_API_VERSION || (value && capacity < sizeof version))
    return CL_INVALID_VALUE;
  if (value)
    std::memcpy(value, &version, sizeof version);
  if (length)
    *length = sizeof version;
  return CL_SUCCESS;
}
