// How many references to a kernel the application holds.

#include "layer/KernelReferences.h"

#include <mutex>
#include <unordered_map>

using namespace corvane::layer;

namespace {
/// Where the calls went before.
struct NextCalls {
  decltype(cl_icd_dispatch::clCreateKernel) createKernel;
  decltype(cl_icd_dispatch::clCreateKernelsInProgram) createKernelsInProgram;
  decltype(cl_icd_dispatch::clRetainKernel) retainKernel;
  decltype(cl_icd_dispatch::clReleaseKernel) releaseKernel;
  decltype(cl_icd_dispatch::clGetKernelInfo) getKernelInfo;
};

/// References by kernel. A kernel that is not in it is none of ours.
class References {
public:
  void begin(cl_kernel kernel) {
    const std::lock_guard<std::mutex> guard(lock);
    counts[kernel] = 1;
  }

  void add(cl_kernel kernel) {
    const std::lock_guard<std::mutex> guard(lock);
    if (const auto found = counts.find(kernel); found != counts.end())
      ++found->second;
  }

  /// Takes one away; true if there was one.
  bool take(cl_kernel kernel) {
    const std::lock_guard<std::mutex> guard(lock);
    const auto found = counts.find(kernel);
    if (found == counts.end())
      return false;
    if (--found->second == 0)
      counts.erase(found);
    return true;
  }

  /// Undoes a `take`.
  void giveBack(cl_kernel kernel) {
    const std::lock_guard<std::mutex> guard(lock);
    ++counts[kernel];
  }

  /// 0 for a kernel that is none of ours.
  cl_uint of(cl_kernel kernel) {
    const std::lock_guard<std::mutex> guard(lock);
    const auto found = counts.find(kernel);
    return found == counts.end() ? 0 : found->second;
  }

private:
  std::mutex lock; ///< never held across a call
  std::unordered_map<cl_kernel, cl_uint> counts;
};
} // namespace

// Written once, before any call can come.
static NextCalls next;

static References &references() {
  // Never destroyed: calls may come until the very end of the process.
  static References &all = *new References;
  return all;
}

static cl_kernel CL_API_CALL createKernel(cl_program program, const char *name,
                                          cl_int *errcodeRet) {
  const cl_kernel kernel = next.createKernel(program, name, errcodeRet);
  if (kernel)
    references().begin(kernel);
  return kernel;
}

static cl_int CL_API_CALL createKernelsInProgram(cl_program program,
                                                 cl_uint count,
                                                 cl_kernel *kernels,
                                                 cl_uint *countRet) {
  cl_uint created = 0;
  const cl_int status =
      next.createKernelsInProgram(program, count, kernels, &created);
  if (status != CL_SUCCESS)
    return status;
  if (countRet)
    *countRet = created;
  for (cl_uint i = 0; kernels && i < created && i < count; ++i)
    references().begin(kernels[i]);
  return status;
}

static cl_int CL_API_CALL retainKernel(cl_kernel kernel) {
  const cl_int status = next.retainKernel(kernel);
  if (status == CL_SUCCESS)
    references().add(kernel);
  return status;
}

static cl_int CL_API_CALL releaseKernel(cl_kernel kernel) {
  // Taken before the call: after it, the handle may belong to a new kernel.
  const bool taken = references().take(kernel);
  const cl_int status = next.releaseKernel(kernel);
  if (taken && status != CL_SUCCESS)
    references().giveBack(kernel);
  return status;
}

static cl_int CL_API_CALL getKernelInfo(cl_kernel kernel,
                                        cl_kernel_info paramName, size_t size,
                                        void *value, size_t *sizeRet) {
  const cl_int status =
      next.getKernelInfo(kernel, paramName, size, value, sizeRet);
  if (status != CL_SUCCESS || paramName != CL_KERNEL_REFERENCE_COUNT || !value)
    return status;
  if (const cl_uint own = references().of(kernel))
    *static_cast<cl_uint *>(value) = own;
  return status;
}

void corvane::layer::countKernelReferences(LayerTable &table) {
  cl_icd_dispatch &entries = table.entries;
  replaceEntry(entries.clCreateKernel, next.createKernel, &createKernel);
  replaceEntry(entries.clCreateKernelsInProgram, next.createKernelsInProgram,
               &createKernelsInProgram);
  replaceEntry(entries.clRetainKernel, next.retainKernel, &retainKernel);
  replaceEntry(entries.clReleaseKernel, next.releaseKernel, &releaseKernel);
  replaceEntry(entries.clGetKernelInfo, next.getKernelInfo, &getKernelInfo);
}

void corvane::layer::answerKernelQueriesBelow(LayerTable &table) {
  // An agent's own hook stays, and hears of the application's references too.
  if (table.entries.clGetKernelInfo == &getKernelInfo)
    table.entries.clGetKernelInfo = next.getKernelInfo;
}
