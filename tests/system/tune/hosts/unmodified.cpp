// Builds programs without variants in one of many ways, launches their kernels
// and prints the results, and what the runtime tells of the programs. It knows
// nothing of the agent.
//
//   unmodified STORY [FILE]
//
// FILE is where the stories "store" and "load" keep a binary.

#include "tests/system/autotune/hosts/Host.h"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <mutex>
#include <string>
#include <thread>

using namespace hosts;

extern const char plainKernels[];

using Bytes = std::vector<unsigned char>;

static Program makeProgram(cl_context context,
                           const std::string &text = plainKernels) {
  const char *string = text.c_str();
  cl_int status = CL_SUCCESS;
  Program program(
      clCreateProgramWithSource(context, 1, &string, nullptr, &status));
  check(status, "clCreateProgramWithSource");
  return program;
}

static void build(const Program &program, const char *options = "") {
  check(clBuildProgram(program.get(), 0, nullptr, options, nullptr, nullptr),
        "clBuildProgram");
}

static Kernel makeKernel(const Program &program, const char *name) {
  cl_int status = CL_SUCCESS;
  Kernel kernel(clCreateKernel(program.get(), name, &status));
  check(status, "clCreateKernel");
  return kernel;
}

// Three times, so that a tuned run measures, waits and uses what it has found.
static void launchKernel(const Session &session, const Kernel &kernel,
                         const std::string &label) {
  const cl_uint references = referencesTo(kernel.get());
  const Queue queue = session.queue();
  for (int round = 0; round != 3; ++round)
    for (const size_t size : {size_t{1024}, size_t{2048}}) {
      const Buffer y = session.bufferOf(Values(size, 0));
      const Buffer x = session.bufferOf(someValues(size, 7));
      setArgument(kernel.get(), 0, y.get());
      setArgument(kernel.get(), 1, x.get());
      setArgument(kernel.get(), 2, cl_uint{2000});
      launch(queue.get(), kernel, size, 64);
      print(label, read(queue.get(), y.get(), size));
    }
  finish(queue.get(), kernel.get(), references);
}

template <typename Ask> static std::string textOf(Ask ask) {
  size_t size = 0;
  check(ask(size_t{0}, static_cast<char *>(nullptr), &size), "a question");
  std::string text(size, '\0');
  check(ask(size, text.data(), nullptr), "a question");
  return text.c_str();
}

static cl_uint countOf(const Program &program, cl_program_info name) {
  cl_uint count = 0;
  check(clGetProgramInfo(program.get(), name, sizeof count, &count, nullptr),
        "clGetProgramInfo");
  return count;
}

// A runtime may hold references of its own once kernels were launched.
static void describeContext(const Session &session) {
  cl_uint references = 0;
  check(clGetContextInfo(session.context(), CL_CONTEXT_REFERENCE_COUNT,
                         sizeof references, &references, nullptr),
        "clGetContextInfo");
  std::printf("references to the context %u\n", references);
}

// All that an application can see of a program.
static void describe(const Session &session, const Program &program) {
  const auto ask = [&](cl_program_info name) {
    return textOf([&](size_t room, char *place, size_t *size) {
      return clGetProgramInfo(program.get(), name, room, place, size);
    });
  };
  const auto askBuild = [&](cl_program_build_info name) {
    return textOf([&](size_t room, char *place, size_t *size) {
      return clGetProgramBuildInfo(program.get(), session.device(), name, room,
                                   place, size);
    });
  };
  size_t kernels = 0;
  check(clGetProgramInfo(program.get(), CL_PROGRAM_NUM_KERNELS, sizeof kernels,
                         &kernels, nullptr),
        "clGetProgramInfo");
  cl_int status = CL_SUCCESS;
  const Kernel variant(
      clCreateKernel(program.get(), "scaled_coarsed_g0S8", &status));
  std::printf("kernels %zu: %s\nsource %zu, options \"%s\", log \"%s\"\n"
              "references %u; a variant: %d\n",
              kernels, ask(CL_PROGRAM_KERNEL_NAMES).c_str(),
              ask(CL_PROGRAM_SOURCE).size(),
              askBuild(CL_PROGRAM_BUILD_OPTIONS).c_str(),
              askBuild(CL_PROGRAM_BUILD_LOG).c_str(),
              countOf(program, CL_PROGRAM_REFERENCE_COUNT), status);
}

static void plain(const char *kernelName) {
  const Session session;
  const Program program = makeProgram(session.context());
  build(program);
  describe(session, program);
  describeContext(session);
  const Kernel kernel = makeKernel(program, kernelName);
  launchKernel(session, kernel, kernelName);
  describe(session, program);
}

static void rebuilt() {
  const Session session;
  const Program program = makeProgram(session.context());
  for (const char *options : {"-DADDED=1", "-DADDED=2", "-DADDED=1"}) {
    build(program, options);
    describe(session, program);
    Kernel kernel = makeKernel(program, "scaled");
    launchKernel(session, kernel, options);
    kernel.reset();
  }
}

// The program is released while its kernel is used.
static void released() {
  const Session session;
  Program program = makeProgram(session.context());
  build(program);
  const Kernel kernel = makeKernel(program, "scaled");
  program.reset();
  launchKernel(session, kernel, "released");
  const Program second = makeProgram(session.context());
  build(second, "-DADDED=7");
  launchKernel(session, makeKernel(second, "scaled"), "second");
}

static void failing() {
  const Session session;
  const Program broken = makeProgram(
      session.context(), "kernel void broken(global int *p) { no }");
  std::printf("build: %d\n",
              clBuildProgram(broken.get(), 0, nullptr, "", nullptr, nullptr));
  // What runs before cannot be built again with kernels that the application
  // has.
  const Program program = makeProgram(session.context());
  build(program);
  const Kernel kernel = makeKernel(program, "scaled");
  std::printf(
      "build with a kernel: %d\n",
      clBuildProgram(program.get(), 0, nullptr, "-DADDED=3", nullptr, nullptr));
  launchKernel(session, kernel, "scaled");
}

static void contexts() {
  const Session first;
  const Session second;
  const Program one = makeProgram(first.context());
  const Program two = makeProgram(second.context());
  build(one);
  build(two, "-DADDED=5");
  launchKernel(first, makeKernel(one, "scaled"), "first");
  launchKernel(second, makeKernel(two, "scaled"), "second");
  describe(first, one);
  describe(second, two);
}

// Their lines come in the order of the threads' numbers.
static void threads() {
  const Session session;
  std::vector<std::thread> all;
  std::vector<Values> results(4);
  for (cl_uint number = 0; number != results.size(); ++number)
    all.emplace_back([&, number] {
      const Queue queue = session.queue();
      for (int round = 0; round != 3; ++round) {
        const Program program = makeProgram(session.context());
        build(program, ("-DADDED=" + std::to_string(number)).c_str());
        const Kernel kernel = makeKernel(program, "scaled");
        const Buffer y = session.bufferOf(Values(1024, 0));
        const Buffer x = session.bufferOf(someValues(1024, number));
        setArgument(kernel.get(), 0, y.get());
        setArgument(kernel.get(), 1, x.get());
        setArgument(kernel.get(), 2, cl_uint{2000});
        launch(queue.get(), kernel, 1024, 64);
        results[number] = read(queue.get(), y.get(), 1024);
      }
    });
  for (std::thread &each : all)
    each.join();
  for (const Values &values : results)
    print("thread", values);
}

namespace {
struct Told {
  std::mutex lock;
  std::condition_variable changed;
  bool isBuilt = false;
};
} // namespace

static void CL_CALLBACK tell(cl_program, void *data) {
  Told &told = *static_cast<Told *>(data);
  const std::lock_guard<std::mutex> guard(told.lock);
  told.isBuilt = true;
  told.changed.notify_all();
}

static void notified() {
  const Session session;
  const Program program = makeProgram(session.context());
  Told told;
  check(clBuildProgram(program.get(), 0, nullptr, "", tell, &told),
        "clBuildProgram");
  {
    std::unique_lock<std::mutex> guard(told.lock);
    told.changed.wait(guard, [&] { return told.isBuilt; });
  }
  describe(session, program);
  launchKernel(session, makeKernel(program, "scaled"), "notified");
}

static void linked() {
  const Session session;
  const Program compiled = makeProgram(session.context());
  check(clCompileProgram(compiled.get(), 0, nullptr, "", 0, nullptr, nullptr,
                         nullptr, nullptr),
        "clCompileProgram");
  const cl_program input = compiled.get();
  cl_int status = CL_SUCCESS;
  const Program program(clLinkProgram(session.context(), 0, nullptr, "", 1,
                                      &input, nullptr, nullptr, &status));
  check(status, "clLinkProgram");
  launchKernel(session, makeKernel(program, "scaled"), "linked");
}

static void store(const char *file) {
  const Session session;
  const Program program = makeProgram(session.context());
  build(program, "-DADDED=9");
  size_t size = 0;
  check(clGetProgramInfo(program.get(), CL_PROGRAM_BINARY_SIZES, sizeof size,
                         &size, nullptr),
        "clGetProgramInfo");
  Bytes bytes(size);
  unsigned char *place = bytes.data();
  check(clGetProgramInfo(program.get(), CL_PROGRAM_BINARIES, sizeof place,
                         &place, nullptr),
        "clGetProgramInfo");
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char *>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

static void load(const char *file) {
  const Session session;
  std::ifstream stream(file, std::ios::binary);
  const Bytes bytes{std::istreambuf_iterator<char>(stream), {}};
  const unsigned char *place = bytes.data();
  const size_t size = bytes.size();
  const cl_device_id device = session.device();
  cl_int status = CL_SUCCESS;
  const Program program(clCreateProgramWithBinary(
      session.context(), 1, &device, &size, &place, nullptr, &status));
  check(status, "clCreateProgramWithBinary");
  build(program);
  describe(session, program);
  launchKernel(session, makeKernel(program, "scaled"), "loaded");
}

int main(int argumentCount, char **arguments) {
  examples::setProgramName("unmodified");
  const std::string story = argumentCount > 1 ? arguments[1] : "scaled";
  const char *const file = argumentCount > 2 ? arguments[2] : "binary";
  const std::map<std::string, std::function<void()>> stories = {
      {"scaled", [] { plain("scaled"); }},
      {"guarded", [] { plain("guarded"); }},
      {"shared", [] { plain("shared"); }},
      {"rebuilt", rebuilt},
      {"released", released},
      {"failing", failing},
      {"contexts", contexts},
      {"threads", threads},
      {"notified", notified},
      {"linked", linked},
      {"store", [=] { store(file); }},
      {"load", [=] { load(file); }},
  };
  const auto found = stories.find(story);
  if (found == stories.end())
    return EXIT_FAILURE;
  found->second();
  return EXIT_SUCCESS;
}
