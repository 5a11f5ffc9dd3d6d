// A test agent that hooks the plain creation of buffers and can be recognised:
// it adds a flag to what it forwards.

#include <CL/cl_icd.h>

using Operation = cl_int(CL_API_CALL *)(void *agent, void *table, size_t size);

static cl_icd_dispatch table;
static decltype(table.clCreateBuffer) nextCreateBuffer;

static constexpr size_t tableSize = 119 * sizeof(void *);

static cl_mem CL_API_CALL createBuffer(cl_context context, cl_mem_flags flags,
                                       size_t size, void *hostPtr,
                                       cl_int *errcodeRet) {
  return nextCreateBuffer(context, flags | CL_MEM_ALLOC_HOST_PTR, size, hostPtr,
                          errcodeRet);
}

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *agent) {
  const Operation *operations = static_cast<Operation *>(agent);
  const cl_int status = operations[7](agent, &table, tableSize);
  if (status != CL_SUCCESS)
    return status;
  nextCreateBuffer = table.clCreateBuffer;
  table.clCreateBuffer = createBuffer;
  return operations[8](agent, &table, tableSize);
}

extern "C" void CL_API_CALL clAgent_OnUnload(void *) {}
