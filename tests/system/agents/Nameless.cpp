// A test agent that lacks one of the two exports.

#include <CL/cl.h>

extern "C" cl_int CL_API_CALL clAgent_OnLoad(void *) { return CL_SUCCESS; }
