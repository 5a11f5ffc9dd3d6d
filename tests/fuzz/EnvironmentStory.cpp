// The steps of the application. Each checks what the variables must lead to.

#include "tests/fuzz/EnvironmentStory.h"

#include "agent/Environment.h"
#include "tests/fuzz/Input.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <string>

using namespace corvane;
using namespace corvane::fuzz;
using namespace corvane::test;

using Value = std::optional<std::string>;

static Value valueOf(const char *name) {
  const char *value = std::getenv(name);
  return value ? Value(value) : std::nullopt;
}

static std::string rawLog(const std::string &directory) {
  return directory + "/.auto.csv";
}

// What is said of the settings of tuning and profiles: each is one line, and a
// value of any length or bytes makes a short and printable one.
static std::string withoutSettings(const std::string &said) {
  std::string rest;
  for (std::size_t begin = 0; begin < said.size();) {
    const std::size_t end = std::min(said.find('\n', begin), said.size() - 1);
    const std::string line = said.substr(begin, end + 1 - begin);
    begin = end + 1;
    const auto has = [&line](const char *text) {
      return line.find(text) != std::string::npos;
    };
    const bool isSetting =
        line.find("CV: CORVANE_") == 0 &&
        (has(", which cannot be used: ") || has("is set, so CORVANE_"));
    if (isSetting)
      check(line.size() < 200, "a setting's value is not repeated at length");
    else if (!has(" cannot be used as a profile: ") &&
             !has("CV: no run folder could be made in ") &&
             !has("CV: no kernel with variants was launched.") &&
             !has(" configurations ran a variant, in "))
      rest += line;
  }
  return rest;
}

void Story::load(ErrorText &errors) {
  const Value directory = valueOf(variable::autotune);
  agent.emplace(runtime);
  check(agent->status() == CL_SUCCESS, "the agent loads");

  const std::string said = withoutSettings(errors.take());
  tuning = directory && readBytes(rawLog(*directory)) ==
                            "kernel,x_global,y_global,z_global,x_local,"
                            "y_local,z_local,coarsed_kernel,time\n";
  const std::string complaint =
      directory && !tuning
          ? "CV: " + *directory +
                " is invalid. There will be no autotune output generated.\n"
          : "";
  check(said == complaint, "a directory that cannot be used is complained of");
}

// With a log that flags the variant the second build hides a variable.
void Story::build(bool spills) {
  auto script = runtime.addProgram();
  const auto count = [this](int Story::*runsOf) {
    return [this, runsOf](const Launch &) { ++(this->*runsOf); };
  };
  script.kernel("k", 1, count(&Story::kernelRuns))
      .kernel("k_coarsed_g0S4", 1, count(&Story::variantRuns));
  if (spills)
    script.log("calclCompile a b c k_coarsed_g0S4");
  program = script;

  const DispatchTable &cl = agent->table();
  const Value before = valueOf(variable::autotune);
  const Value shadow = valueOf(variable::autotuneShadow);
  check(cl.clBuildProgram(program, 0, nullptr, nullptr, nullptr, nullptr) ==
            CL_SUCCESS,
        "the program builds");
  const bool hidden = spills && tuning;
  check(valueOf(variable::autotune) == (hidden && !before ? shadow : before),
        "the variable comes back after it was hidden");
  check(valueOf(variable::autotuneShadow) == (hidden ? std::nullopt : shadow),
        "no shadow is left");

  kernel = cl.clCreateKernel(program, "k", nullptr);
  buffer = cl.clCreateBuffer(runtime.context(), CL_MEM_READ_WRITE, 8, nullptr,
                             nullptr);
  check(kernel && buffer, "kernel and buffer are made");
  cl.clSetKernelArg(kernel, 0, sizeof buffer, &buffer);
}

void Story::launch() {
  const std::size_t global = 64;
  const int before = kernelRuns;
  const int variantsBefore = variantRuns;
  check(agent->table().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1,
                                              nullptr, &global, nullptr, 0,
                                              nullptr, nullptr) == CL_SUCCESS,
        "a launch works");
  const int kernels = kernelRuns - before;
  const int variants = variantRuns - variantsBefore;
  if (!hasState)
    check(kernels == (tuning ? 0 : 1) && variants == 0,
          "after a flush calls go straight to the runtime");
  else if (tuning)
    check(kernels == 1 && variants <= 1, "the kernel runs last, and once");
  else
    check(kernels + variants == 1, "kernel or variant run");
}

// Checks whether the flush has made the results.
void Story::checkFlush(ErrorText &errors, bool had) {
  const std::string said = withoutSettings(errors.take());
  if (!had || !tuning) {
    check(said.empty(), "a flush without results is silent");
    return;
  }
  const Value location = valueOf(variable::installLocation);
  const std::string directory = valueOf(variable::autotune).value_or("");
  if (!location)
    check(said == "CV: unable to find $CORVANE_INSTALL_LOCATION.\n",
          "a missing install location is complained of");
  else if (!said.empty())
    check(said == "ensureOutputDir() error\n",
          "only missing directories are complained of");
  else
    check(!readBytes(directory + "/main.html").empty() &&
              !readBytes(directory + "/autotune.csv").empty(),
          "the report is written");
}

void Story::flushAtContext(ErrorText &errors) {
  const Value flush = valueOf(variable::flushOnReleaseContext);
  const cl_context context = runtime.context();
  const DispatchTable &cl = agent->table();
  errors.take();
  cl.clRetainContext(context);
  check(cl.clReleaseContext(context) == CL_SUCCESS, "a context is released");
  if (flush && !flush->empty()) {
    checkFlush(errors, hasState);
    hasState = false;
  } else {
    check(withoutSettings(errors.take()).empty(),
          "an empty value asks for nothing");
  }
}

void Story::unload(ErrorText &errors) {
  const DispatchTable &cl = agent->table();
  cl.clReleaseKernel(kernel);
  cl.clReleaseMemObject(buffer);
  cl.clReleaseProgram(program);
  errors.take();
  agent->unload();
  checkFlush(errors, hasState);
  check(runtime.misuses().empty(), "no object is used after its end");
  check(runtime.alive("event").empty(), "no event is left");
}
