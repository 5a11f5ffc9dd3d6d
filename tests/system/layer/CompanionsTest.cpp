// Generated variants of programs that carry none, over the scripted runtime:
// what the application sees, what the agent gets, and what is left at the end.

#include "tests/system/layer/LayeredRuntime.h"
#include "tests/system/layer/TuningAgent.h"

#include "base/ProgramHash.h"
#include "results/profile/ProfileFile.h"

#include <array>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <mutex>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::string source = "kernel void k(global int *p) {}";

/// A program of the kernels "k" and "other". A folder has a variant of "k" that
/// was generated for it, and a profile that uses it.
class LayeredCompanions : public LayeredRuntime {
protected:
  explicit LayeredCompanions(
      const std::filesystem::path &agentFile = AGENT_FILE)
      : LayeredRuntime(agentFile) {}

  void SetUp() override { start(); }

  void start(Variables variables = {}) {
    writeVariants("// Variants of kernels, format 1\n"
                  "// variant 0 4 k_coarsed_g0S4\n"
                  "// program 4\ntext");
    writeProfile();
    variables.emplace_back("CORVANE_PROFILE", folder.text());
    variables.emplace_back("CORVANE_VARIANTS", folder.file("variants"));
    load(variables);
  }

  void writeVariants(const std::string &text) const {
    std::filesystem::create_directories(folder.path() / "variants");
    EXPECT_TRUE(folder.write(
        "variants/" + programHashText("source", "", source) + ".cl", text));
  }

  void writeProfile() const {
    Profile profile;
    profile.devices = {{"device 1", "maker", "1.0"}};
    profile.programs = {programHashText("source", "", source)};
    ProfileEntry entry;
    entry.kernel = "k";
    entry.sizes.dimensions = 1;
    entry.sizes.global = {64, 0, 0};
    entry.sizes.local = {4, 0, 0};
    entry.use = "g0S4";
    entry.versions[""] = {10.0, 7, Agreement::Equal};
    entry.versions["g0S4"] = {5.0, 7, Agreement::Equal};
    profile.entries = {entry};
    EXPECT_TRUE(folder.write("profile.json", profileText(profile)));
  }

  ProgramScript ofTwoKernels(ProgramScript program) {
    return program.source(source).kernel("k").kernel("other");
  }
  ProgramScript itsCompanion(ProgramScript program) {
    return ofTwoKernels(std::move(program)).kernel("k_coarsed_g0S4");
  }

  cl_program builtProgram() {
    ofTwoKernels(runtime.sourceMakes());
    itsCompanion(runtime.sourceMakes());
    cl_program program = createProgram();
    EXPECT_EQ(build(program), CL_SUCCESS);
    return program;
  }

  cl_int launch(cl_kernel kernel) {
    const size_t global = 64;
    const size_t local = 4;
    return cl().clEnqueueNDRangeKernel(runtime.queue(), kernel, 1, nullptr,
                                       &global, &local, 0, nullptr, nullptr);
  }
  std::vector<std::string> launchedBy(cl_kernel kernel) {
    runtime.forgetTranscript();
    EXPECT_EQ(launch(kernel), CL_SUCCESS);
    return runtime.transcript({"clEnqueueNDRangeKernel"});
  }

  static std::string launchOf(const std::string &kernel,
                              const std::string &size) {
    return "clEnqueueNDRangeKernel(queue 1, kernel " + kernel + ", 1, null, [" +
           size + "], [4], [], null)";
  }
};

/// The same with an agent that runs variants that were not measured.
class LayeredCarelessAgent : public LayeredCompanions {
protected:
  LayeredCarelessAgent() : LayeredCompanions(TUNING_AGENT_FILE) {}
  void SetUp() override { start({{"CORVANE_TUNE", folder.file("tuned")}}); }
};

/// The same without one of the variables that companions need.
class LayeredWithoutCompanions : public LayeredCompanions {
protected:
  void SetUp() override {}
};

} // namespace

TEST_F(LayeredCompanions, AreNotSeenByTheApplication) {
  cl_program program = builtProgram();
  EXPECT_EQ(kernelNames(program), "k;other");
  size_t count = 0;
  EXPECT_EQ(cl().clGetProgramInfo(program, CL_PROGRAM_NUM_KERNELS, sizeof count,
                                  &count, nullptr),
            CL_SUCCESS);
  EXPECT_EQ(count, 2u);
  cl_int status = CL_SUCCESS;
  EXPECT_EQ(cl().clCreateKernel(program, "k_coarsed_g0S4", &status), nullptr);
  EXPECT_EQ(status, CL_INVALID_KERNEL_NAME);
  std::array<cl_kernel, 3> kernels{};
  cl_uint created = 0;
  EXPECT_EQ(cl().clCreateKernelsInProgram(program, 3, kernels.data(), &created),
            CL_SUCCESS);
  EXPECT_EQ(created, 2u);
}

TEST_F(LayeredCompanions, GiveTheAgentTheirVariants) {
  cl_program program = builtProgram();
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_THAT(createKernel(program, "other"), ElementsAre("kernel other"));
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
}

TEST_F(LayeredCompanions, HaveTheirVariantsLaunched) {
  cl_kernel kernel = cl().clCreateKernel(builtProgram(), "k", nullptr);
  EXPECT_THAT(launchedBy(kernel),
              ElementsAre(launchOf("k_coarsed_g0S4", "16")));
}

TEST_F(LayeredCompanions, LeaveALaunchToTheKernelWhereTheVariantFails) {
  cl_kernel kernel = cl().clCreateKernel(builtProgram(), "k", nullptr);
  runtime.answer("clEnqueueNDRangeKernel", CL_OUT_OF_RESOURCES, 1);
  EXPECT_THAT(launchedBy(kernel), ElementsAre(launchOf("k_coarsed_g0S4", "16"),
                                              launchOf("k", "64")));
}

TEST_F(LayeredCompanions, EndWithTheirProgram) {
  cl_program program = builtProgram();
  EXPECT_THAT(runtime.alive("program"), SizeIs(2));
  EXPECT_EQ(cl().clRetainProgram(program), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), SizeIs(2));
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
}

TEST_F(LayeredCompanions, EndWithTheLastKernelOfTheirProgram) {
  cl_program program = builtProgram();
  cl_kernel first = cl().clCreateKernel(program, "k", nullptr);
  cl_kernel second = cl().clCreateKernel(program, "other", nullptr);
  // The scripted runtime lets a program go before its kernels, so its hash has
  // to be known by then.
  EXPECT_EQ(launch(first), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(launchedBy(first), ElementsAre(launchOf("k_coarsed_g0S4", "16")));
  EXPECT_EQ(cl().clReleaseKernel(first), CL_SUCCESS);
  EXPECT_EQ(cl().clReleaseKernel(second), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("kernel"), IsEmpty());
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
}

TEST_F(LayeredCompanions, AreThoseOfTheLatestBuild) {
  cl_program program = builtProgram();
  itsCompanion(runtime.sourceMakes());
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), SizeIs(2));
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_EQ(cl().clReleaseProgram(program), CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), IsEmpty());
}

TEST_F(LayeredCompanions, AreOnlyForTheBuildThatTheyWereMadeFor) {
  cl_program program = builtProgram();
  EXPECT_EQ(
      cl().clBuildProgram(program, 0, nullptr, "-DOTHER", nullptr, nullptr),
      CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), SizeIs(1));
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

TEST_F(LayeredCompanions, ThatCannotBeBuiltLeaveTheProgramAsItIs) {
  ofTwoKernels(runtime.sourceMakes());
  itsCompanion(runtime.sourceMakes()).buildStatus(CL_BUILD_PROGRAM_FAILURE);
  cl_program program = createProgram();
  testing::internal::CaptureStderr();
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  EXPECT_THAT(runtime.alive("program"), SizeIs(1));
  EXPECT_EQ(kernelNames(program), "k;other");
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

TEST_F(LayeredCompanions, ThatCannotBeCreatedLeaveTheProgramAsItIs) {
  ofTwoKernels(runtime.sourceMakes());
  cl_program program = createProgram();
  runtime.answer("clCreateProgramWithSource", CL_OUT_OF_RESOURCES, 1);
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
}

TEST_F(LayeredCompanions, AreNotBuiltForAProgramThatFails) {
  ofTwoKernels(runtime.sourceMakes()).buildStatus(CL_BUILD_PROGRAM_FAILURE);
  cl_program program = createProgram();
  testing::internal::CaptureStderr();
  EXPECT_EQ(build(program), CL_BUILD_PROGRAM_FAILURE);
  testing::internal::GetCapturedStderr();
  EXPECT_THAT(runtime.alive("program"), SizeIs(1));
}

TEST_F(LayeredCompanions, BringInNoKernelThatIsNotListed) {
  ofTwoKernels(runtime.sourceMakes());
  itsCompanion(runtime.sourceMakes()).kernel("k_coarsed_g0S2").kernel("added");
  cl_program program = createProgram();
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
}

TEST_F(LayeredCompanions, DoNotReplaceVariantsOfTheProgramItself) {
  ofTwoKernels(runtime.sourceMakes()).kernel("k_coarsed_g0S4");
  itsCompanion(runtime.sourceMakes());
  cl_program program = createProgram();
  EXPECT_EQ(build(program), CL_SUCCESS);
  EXPECT_EQ(kernelNames(program), "k;other");
  runtime.forgetTranscript();
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
  EXPECT_THAT(
      runtime.transcript({"clCreateKernel"}),
      ElementsAre(testing::HasSubstr("(program 1, \"k\""),
                  testing::HasSubstr("(program 1, \"k_coarsed_g0S4\"")));
}

namespace {
using Notify = void(CL_CALLBACK *)(cl_program, void *);

/// A runtime that notifies of a build on a thread of its own, late.
class LayeredLateCompanions : public LayeredCompanions {
protected:
  LayeredLateCompanions() {
    real = runtime.ownTable();
    runtime.ownTable().clBuildProgram = buildLater;
  }

  static void CL_CALLBACK hear(cl_program, void *data) {
    auto &self = *static_cast<LayeredLateCompanions *>(data);
    const std::lock_guard<std::mutex> guard(self.lock);
    self.isHeard = true;
    self.changed.notify_all();
  }
  void waitForNotification() {
    std::unique_lock<std::mutex> guard(lock);
    changed.wait(guard, [this] { return isHeard; });
  }

  /// What the runtime's thread does.
  static void notifyNow() { std::thread(std::move(work)).join(); }

private:
  static cl_int CL_API_CALL buildLater(cl_program program, cl_uint count,
                                       const cl_device_id *devices,
                                       const char *options, Notify notify,
                                       void *userData) {
    if (notify)
      work = [=] { notify(program, userData); };
    return real.clBuildProgram(program, count, devices, options, nullptr,
                               nullptr);
  }

  static inline DispatchTable real;
  static inline std::function<void()> work;
  std::mutex lock;
  std::condition_variable changed;
  bool isHeard = false;
};
} // namespace

TEST_F(LayeredLateCompanions, AreThereWhenTheApplicationHearsOfTheBuild) {
  ofTwoKernels(runtime.sourceMakes());
  itsCompanion(runtime.sourceMakes());
  cl_program program = createProgram();
  EXPECT_EQ(cl().clBuildProgram(program, 0, nullptr, "", hear, this),
            CL_SUCCESS);
  EXPECT_THAT(runtime.alive("program"), SizeIs(1));
  notifyNow();
  waitForNotification();
  EXPECT_THAT(createKernel(program, "k"),
              ElementsAre("kernel k", "kernel k_coarsed_g0S4"));
}

TEST_F(LayeredCarelessAgent, RunsNoGeneratedVariantThatWasNotMeasured) {
  auto *careless =
      reinterpret_cast<TuningAgent *(*)()>(agentsExport("tuningAgent"))();
  careless->context = runtime.context();
  careless->asks = false;
  careless->runsVariants = true;
  cl_kernel kernel = cl().clCreateKernel(builtProgram(), "k", nullptr);
  EXPECT_THAT(careless->variants, SizeIs(1));
  EXPECT_THAT(launchedBy(kernel),
              ElementsAre(testing::HasSubstr("kernel k, 1, null, [64], [4]")));
}

TEST_F(LayeredWithoutCompanions, NothingIsBuiltWithoutAProfileOrTuning) {
  writeVariants("// Variants of kernels, format 1\n"
                "// variant 0 4 k_coarsed_g0S4\n// program 4\ntext");
  load({{"CORVANE_VARIANTS", folder.file("variants")},
        {"CORVANE_GENERATE", "/bin/false"}});
  cl_program program = builtProgram();
  EXPECT_THAT(createKernel(program, "k"), ElementsAre("kernel k"));
  EXPECT_THAT(runtime.transcript({"clCreateProgramWithSource"}), SizeIs(1));
}
