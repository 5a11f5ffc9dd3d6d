// What the tests of tuned programs have in common: a folder to tune into, and
// the program corvane.

#pragma once

#include "results/profile/ProfileFile.h"
#include "results/runs/RunReader.h"
#include "tests/support/TempFolder.h"
#include "tests/system/Subprocess.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace corvane::test {

using Words = std::vector<std::string>;

/// Tunes and runs programs of these tests by corvane.
class TunedFolderTest : public testing::Test {
protected:
  /// The variables that every program gets. The layer that is named first is
  /// the last one before the runtime.
  virtual Environment environment() const {
    std::filesystem::create_directories(KERNEL_CACHE_FOLDER);
    return {{"POCL_CACHE_DIR", KERNEL_CACHE_FOLDER},
            {"OPENCL_LAYERS", STEADY_CLOCK_FILE}};
  }

  ProgramRun alone(const Words &command) const {
    return runProgram(command, environment());
  }
  ProgramRun tuned(const Words &command, const Words &options = {}) const {
    return corvane("tune", "--output", options, command);
  }
  ProgramRun run(const Words &command, const Words &options = {}) const {
    return corvane("run", "--profile", options, command);
  }

  /// Tunes and runs a program, which must say what it says alone.
  void expectSameResults(const Words &command,
                         const Words &options = {}) const {
    const ProgramRun bare = alone(command);
    EXPECT_EQ(bare.exitCode, 0) << bare.err;
    EXPECT_FALSE(bare.out.empty());
    const ProgramRun whileTuned = tuned(command, options);
    EXPECT_EQ(whileTuned.exitCode, 0) << whileTuned.err;
    EXPECT_EQ(whileTuned.out, bare.out) << whileTuned.err;
    const ProgramRun withProfile = run(command);
    EXPECT_EQ(withProfile.exitCode, 0) << withProfile.err;
    EXPECT_EQ(withProfile.out, bare.out) << withProfile.err;
  }

  Profile profile() const {
    llvm::Expected<Profile> read = readProfile(folder.read("profile.json"));
    if (read)
      return *read;
    ADD_FAILURE() << llvm::toString(read.takeError());
    return {};
  }

  /// What the profile's entries use; "original" for none.
  std::vector<std::string> uses() const {
    std::vector<std::string> all;
    for (const ProfileEntry &entry : profile().entries)
      all.push_back(entry.use.value_or("original"));
    return all;
  }

  std::vector<RunRecord> records() const {
    std::vector<RunRecord> all;
    for (const auto &entry :
         std::filesystem::directory_iterator(folder.path() / "runs")) {
      all.push_back(readRun(readBytes(entry.path() / "run.jsonl")));
      EXPECT_EQ(all.back().problemCount, 0U) << entry.path();
    }
    return all;
  }

  TempFolder folder;

private:
  ProgramRun corvane(const char *command, const char *folderOption,
                     const Words &options, const Words &program) const {
    Words words = {CORVANE_FILE, command, folderOption, folder.text()};
    words.insert(words.end(), options.begin(), options.end());
    words.push_back("--");
    words.insert(words.end(), program.begin(), program.end());
    return runProgram(words, environment());
  }
};

} // namespace corvane::test
