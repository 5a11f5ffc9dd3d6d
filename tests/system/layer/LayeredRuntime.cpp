// Copies layer and agent, loads both, and lets the agent end.

#include "tests/system/layer/LayeredRuntime.h"

#include "tests/support/FakeTable.h"
#include "tests/support/entries/Entries.h"

#include <array>

#include <dlfcn.h>

using namespace corvane::test;

std::string LayeredRuntime::agentCopy() const {
  return (folder.path() / agent.filename()).string();
}

std::string LayeredRuntime::copyBoth() const {
  std::filesystem::copy_file(agent, agentCopy());
  std::filesystem::copy_file(LAYER_FILE, folder.file(LAYER_FILE_NAME));
  return folder.file(LAYER_FILE_NAME);
}

// A loader unloads nothing, but what is left would meet the next test's runtime
// when the process ends.
LayeredRuntime::~LayeredRuntime() {
  if (void *unload = agentsExport("clAgent_OnUnload"))
    reinterpret_cast<void (*)(void *)>(unload)(nullptr);
}

void *LayeredRuntime::agentsExport(const char *name) const {
  void *library = dlopen(agentCopy().c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (!library)
    return nullptr;
  void *found = dlsym(library, name);
  dlclose(library); // the layer keeps it
  return found;
}

// The scripted runtime plays neither of these two. Memory that a pointer leads
// to takes no part in its launches, and a clone has no arguments yet.
static cl_int CL_API_CALL takePointer(cl_kernel /*kernel*/, cl_uint /*index*/,
                                      const void * /*pointer*/) {
  return CL_SUCCESS;
}

static cl_kernel CL_API_CALL cloneKernel(cl_kernel source, cl_int *status) {
  cl_program program = nullptr;
  std::array<char, 64> name{};
  EXPECT_EQ(fake::clGetKernelInfo(source, CL_KERNEL_PROGRAM, sizeof program,
                                  &program, nullptr),
            CL_SUCCESS);
  EXPECT_EQ(fake::clGetKernelInfo(source, CL_KERNEL_FUNCTION_NAME, name.size(),
                                  name.data(), nullptr),
            CL_SUCCESS);
  return fake::clCreateKernel(program, name.data(), status);
}

const cl_icd_dispatch &LayeredRuntime::load(const Variables &variables) {
  if (table)
    return *table;
  for (const auto &[name, value] : variables)
    environment.emplace_back(name.c_str(), value);
  const auto entries = entriesOf(runtime.ownTable());
  std::vector<void *> loaderTable;
  loaderTable.reserve(entries.size());
  for (const void *entry : entries)
    loaderTable.push_back(const_cast<void *>(entry));
  loaderTable.resize(sizeof(cl_icd_dispatch) / sizeof(void *));
  auto *const newer = reinterpret_cast<cl_icd_dispatch *>(loaderTable.data());
  newer->clSetKernelArgSVMPointer = takePointer;
  newer->clCloneKernel = cloneKernel;
  const LoadedLayer::Answer answer = layer.init(loaderTable);
  EXPECT_EQ(answer.status, CL_SUCCESS);
  EXPECT_EQ(answer.said, "");
  table = answer.table;
  runtime.forgetTranscript();
  return *table;
}

const cl_icd_dispatch &LayeredRuntime::loadAutotuning(Variables variables) {
  variables.emplace_back("CORVANE_AUTOTUNE", folder.file("out"));
  variables.emplace_back("CORVANE_INSTALL_LOCATION", folder.text());
  return load(variables);
}

cl_program LayeredRuntime::createProgram() {
  const char *source = "";
  return cl().clCreateProgramWithSource(runtime.context(), 1, &source, nullptr,
                                        nullptr);
}

cl_int LayeredRuntime::build(cl_program program) {
  return cl().clBuildProgram(program, 0, nullptr, "", nullptr, nullptr);
}

std::string LayeredRuntime::kernelNames(cl_program program) {
  char names[256] = "";
  EXPECT_EQ(cl().clGetProgramInfo(program, CL_PROGRAM_KERNEL_NAMES,
                                  sizeof names, names, nullptr),
            CL_SUCCESS);
  return names;
}

std::vector<std::string> LayeredRuntime::createKernel(cl_program program,
                                                      const char *name) {
  testing::internal::CaptureStderr();
  cl_kernel kernel = cl().clCreateKernel(program, name, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_NE(kernel, nullptr);
  std::vector<std::string> all = runtime.alive("kernel");
  EXPECT_EQ(cl().clReleaseKernel(kernel), CL_SUCCESS);
  return all;
}
