// The objects of the runtime that does nothing: only what it needs to answer
// the agent's queries.

#pragma once

#include <CL/cl.h>

#include <string>
#include <unordered_map>
#include <vector>

struct _cl_program {
  std::vector<std::string> names; ///< of the kernels
  std::unordered_map<std::string, cl_uint> places;
  cl_uint references = 1;
};

struct _cl_kernel {
  cl_program program;
  cl_uint place; ///< of the name in the program
  cl_uint arguments;
  cl_uint references = 1;
};

struct _cl_mem {
  void(CL_CALLBACK *released)(cl_mem, void *) = nullptr;
  void *userData = nullptr;
};
