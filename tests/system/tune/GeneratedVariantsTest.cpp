// Programs without variants: tuned with those that are generated for them, and
// run with what was found.

#include "tests/system/tune/TunedFolderTest.h"

#include <algorithm>
#include <fstream>

using namespace corvane;
using namespace corvane::test;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

namespace {

class GeneratedVariants : public TunedFolderTest {
protected:
  Environment environment() const override {
    Environment variables = TunedFolderTest::environment();
    variables["XDG_CACHE_HOME"] = caches.text();
    return variables;
  }

  static Words host(Words words) {
    words.insert(words.begin(), std::string(HOSTS_FOLDER) + "/unmodified");
    return words;
  }

  /// The names of the files in a folder within the tuned one.
  std::vector<std::string> filesIn(const char *name) const {
    return namesIn(folder.path() / name);
  }
  std::vector<std::string> cachedIn(const char *name) const {
    return namesIn(caches.path() / "corvane" / name);
  }

  /// The file in the cache with the variants of the kernel "scaled". The
  /// program's other kernels have another one.
  std::string cachedScaled() const {
    for (const std::string &name : cachedIn("variants"))
      if (caches.read("corvane/variants/" + name).find("scaled_coarsed_") !=
          std::string::npos)
        return "corvane/variants/" + name;
    ADD_FAILURE() << "nothing is cached";
    return "none";
  }

  /// Tunes and runs a story, and wants the same results and variants in use.
  void expectGain(const std::string &story) const {
    expectSameResults(host({story}));
    EXPECT_THAT(uses(), AllOf(Not(IsEmpty()), Each(Not("original"))));
    EXPECT_THAT(run(host({story}), {"--summary"}).err,
                HasSubstr("unknown to the profile: 0.\n"));
  }

  TempFolder caches;

private:
  static std::vector<std::string> namesIn(const std::filesystem::path &path) {
    std::vector<std::string> names;
    std::error_code missing;
    for (const auto &entry : std::filesystem::directory_iterator(path, missing))
      names.push_back(entry.path().filename().string());
    return names;
  }
};

} // namespace

TEST_F(GeneratedVariants, AreMeasuredKeptAndUsed) {
  expectSameResults(host({"scaled"}));
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each(Not("original"))));
  EXPECT_THAT(run(host({"scaled"}), {"--summary"}).err,
              HasSubstr("CV: 2 of 2 configurations ran a variant, in 6 of 6 "
                        "launches; unknown to the profile: 0.\n"));
  ASSERT_THAT(filesIn("variants"), SizeIs(1));
  const std::string text = folder.read("variants/" + filesIn("variants")[0]);
  for (const std::string &use : uses())
    EXPECT_THAT(text, HasSubstr("void scaled_coarsed_" + use + "("));
  EXPECT_THAT(text, Not(HasSubstr("guarded_coarsed_")));
}

TEST_F(GeneratedVariants, AreNotMadeWhereTheyAreNotWanted) {
  EXPECT_THAT(tuned(host({"scaled"}), {"--no-generate"}).err,
              HasSubstr("no program had variants"));
  EXPECT_THAT(filesIn("generated"), IsEmpty());
  EXPECT_THAT(cachedIn("variants"), IsEmpty());
}

TEST_F(GeneratedVariants, AreFoundWithoutTheGeneratorAndItsCache) {
  EXPECT_EQ(tuned(host({"scaled"})).exitCode, 0);
  std::filesystem::remove_all(caches.path() / "corvane");
  std::filesystem::remove_all(folder.path() / "generated");
  EXPECT_THAT(run(host({"scaled"}), {"--summary"}).err,
              HasSubstr("ran a variant, in 6 of 6 launches"));
}

TEST_F(GeneratedVariants, ComeFromTheCacheTheSecondTime) {
  EXPECT_EQ(tuned(host({"scaled"})).exitCode, 0);
  EXPECT_TRUE(caches.write(cachedScaled(), "// Variants of kernels, format 1\n"
                                           "// none it is marked\n"
                                           "// program 0\n"));
  std::filesystem::remove_all(folder.path() / "runs");
  EXPECT_THAT(tuned(host({"scaled"})).err,
              HasSubstr("no program had variants: it is marked"));
}

TEST_F(GeneratedVariants, AreMadeAgainWhereTheCacheIsDamaged) {
  EXPECT_EQ(tuned(host({"scaled"})).exitCode, 0);
  const std::string cached = cachedScaled();
  const std::string text = caches.read(cached);
  for (const std::string &damaged :
       {std::string(), text.substr(0, text.size() / 2), text + "more",
        std::string(1000, '\0')}) {
    EXPECT_TRUE(caches.write(cached, damaged));
    EXPECT_THAT(tuned(host({"scaled"})).err, HasSubstr("kernel time saved"));
    EXPECT_EQ(caches.read(cached), text);
  }
}

TEST_F(GeneratedVariants, OfAFileThatWasDamagedAreNotUsed) {
  EXPECT_EQ(tuned(host({"scaled"})).exitCode, 0);
  ASSERT_THAT(filesIn("variants"), SizeIs(1));
  const std::string bare = alone(host({"scaled"})).out;
  const std::string file = "variants/" + filesIn("variants")[0];
  const std::string text = folder.read(file);
  for (const std::string &damaged :
       {std::string(), text.substr(0, text.size() / 2),
        "kernel void scaled() {}\n" + text}) {
    EXPECT_TRUE(folder.write(file, damaged));
    const ProgramRun ran = run(host({"scaled"}), {"--summary"});
    EXPECT_EQ(ran.out, bare);
    EXPECT_THAT(ran.err, HasSubstr("no kernel with variants was launched"));
  }
}

TEST_F(GeneratedVariants, MayHaveGuards) { expectGain("guarded"); }

TEST_F(GeneratedVariants, MayHaveLocalMemoryAndBarriers) {
  expectGain("shared");
}

TEST_F(GeneratedVariants, BelongToOneBuildOfTheirProgram) {
  expectGain("rebuilt");
  EXPECT_THAT(profile().programs, SizeIs(2));
}

TEST_F(GeneratedVariants, OutliveTheProgramWithItsKernel) {
  expectGain("released");
}

TEST_F(GeneratedVariants, AreNotThereForAProgramThatCannotBeBuilt) {
  expectGain("failing");
}

TEST_F(GeneratedVariants, MayBeInManyContexts) { expectGain("contexts"); }

TEST_F(GeneratedVariants, MayBeBuiltByManyThreads) {
  expectSameResults(host({"threads"}));
}

TEST_F(GeneratedVariants, AreThereWhenABuildIsNotified) {
  expectGain("notified");
}

TEST_F(GeneratedVariants, AreThoseOfTheSourceThatABinaryWasMadeOf) {
  const std::string file = caches.file("binary");
  EXPECT_EQ(tuned(host({"store", file})).exitCode, 0);
  EXPECT_THAT(cachedIn("binaries"), SizeIs(1));
  expectSameResults(host({"load", file}));
  EXPECT_THAT(uses(), AllOf(SizeIs(2), Each(Not("original"))));
}

TEST_F(GeneratedVariants, OfABinaryThatWasNeverSeenAreNone) {
  const std::string file = caches.file("binary");
  EXPECT_EQ(alone(host({"store", file})).exitCode, 0);
  const std::string bare = alone(host({"load", file})).out;
  const ProgramRun ran = tuned(host({"load", file}));
  EXPECT_EQ(ran.out, bare);
  const std::string reason =
      "made from a binary that was never seen: nothing to work on; PyOpenCL: "
      "set PYOPENCL_NO_CACHE=1 once";
  EXPECT_THAT(ran.err, HasSubstr("no program had variants: " + reason));
  ASSERT_THAT(records(), SizeIs(1));
  EXPECT_EQ(records()[0].programs.begin()->second.whyNotGenerated, reason);
}

TEST_F(GeneratedVariants, OfALinkedProgramAreNone) {
  const std::string bare = alone(host({"linked"})).out;
  const ProgramRun ran = tuned(host({"linked"}));
  EXPECT_EQ(ran.out, bare);
  ASSERT_THAT(records(), SizeIs(1));
  EXPECT_EQ(records()[0].programs.begin()->second.whyNotGenerated,
            "it was linked from compiled programs");
}

// Autotuning runs all variants that there are, which its report then names.
TEST_F(GeneratedVariants, AreNotThereWhileTheProcessAutotunes) {
  EXPECT_EQ(tuned(host({"scaled"})).exitCode, 0);
  ASSERT_THAT(filesIn("variants"), SizeIs(1));
  Environment variables = environment();
  variables["OPENCL_LAYERS"] = LAYER_FILE;
  variables["CORVANE_AUTOTUNE"] = folder.file("results");
  variables["CORVANE_PROFILE"] = folder.text();
  variables["CORVANE_VARIANTS"] = folder.file("variants");
  variables["CORVANE_TUNE"] = folder.text();
  variables["CORVANE_GENERATE"] = "/bin/false";
  const ProgramRun ran = runProgram(host({"scaled"}), variables);
  EXPECT_EQ(ran.out, alone(host({"scaled"})).out);
  const std::string rows = folder.read("results/.auto.csv");
  EXPECT_THAT(rows, HasSubstr("baseline"));
  EXPECT_THAT(rows, Not(HasSubstr("g0S")));
}
