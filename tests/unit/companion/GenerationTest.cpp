// Tests of generation with generators that are shell scripts.

#include "companion/Generation.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

using namespace corvane;
using namespace corvane::test;
using testing::EndsWith;
using testing::HasSubstr;
namespace fs = std::filesystem;

namespace {

class GeneratedFor : public testing::Test {
protected:
  /// A generator that counts its runs and then does as \p script says.
  std::string generatorThat(const std::string &script) const {
    const std::string file = folder.file("generator");
    EXPECT_TRUE(folder.write("generator", "#!/bin/sh\necho run >> " +
                                              folder.file("runs") + "\n" +
                                              script + "\n"));
    fs::permissions(file, fs::perms::owner_all);
    return file;
  }

  /// One that says why there are no variants, in the words of its input.
  std::string goodGenerator() const {
    return generatorThat("read line\n"
                         "echo '// Variants of kernels, format 1'\n"
                         "echo \"// none $line for $4\"\n"
                         "echo '// program 0'");
  }

  std::size_t runs() const {
    const std::string text = folder.read("runs");
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  }

  Generation with(const std::string &generator,
                  const ChildLimits &limits) const {
    return Generation(generator, folder.file("cache"), limits);
  }

  static ChildLimits patient() {
    ChildLimits limits = generatorLimits();
    limits.time = std::chrono::minutes(5);
    return limits;
  }

  const TempFolder folder;
};

} // namespace

TEST_F(GeneratedFor, SourceAndOptionsWhatTheGeneratorSays) {
  Generation generation(goodGenerator(), "", patient());
  const Generated made = generation.generate("source\n", "-DA -DB", "device");
  ASSERT_TRUE(made.file) << made.failure;
  EXPECT_EQ(made.file->whyNone, "source for -DA -DB");
}

TEST_F(GeneratedFor, TheSameOnlyOnce) {
  const std::string generator = goodGenerator();
  for (int process = 0; process != 2; ++process) {
    Generation generation(generator, folder.file("cache"), patient());
    EXPECT_TRUE(generation.generate("source\n", "-DA", "device").file);
  }
  EXPECT_EQ(runs(), 1U);
  Generation generation(generator, folder.file("cache"), patient());
  EXPECT_TRUE(generation.generate("other\n", "-DA", "device").file);
  EXPECT_TRUE(generation.generate("source\n", "-DB", "device").file);
  EXPECT_TRUE(generation.generate("source\n", "-DA", "another").file);
  EXPECT_EQ(runs(), 4U);
}

TEST_F(GeneratedFor, TheSameAgainWhenTheGeneratorIsAnother) {
  Generation(goodGenerator(), folder.file("cache"), patient())
      .generate("source\n", "", "device");
  const std::string other = generatorThat(
      "printf '// Variants of kernels, format 1\\n// none other\\n"
      "// program 0\\n'");
  Generation generation(other, folder.file("cache"), patient());
  EXPECT_EQ(generation.generate("source\n", "", "device").file->whyNone,
            "other");
}

TEST_F(GeneratedFor, TheSameAgainWhenAnIncludedFileHasChanged) {
  EXPECT_TRUE(folder.write("a.h", "one"));
  const std::string generator = generatorThat(
      "printf '// Variants of kernels, format 1\\n// included %s " +
      folder.file("a.h") + "\\n// none n\\n// program 0\\n' `sha256sum < " +
      folder.file("a.h") + " | cut -c-64`");
  Generation generation(generator, folder.file("cache"), patient());
  EXPECT_TRUE(generation.generate("source\n", "", "device").file);
  EXPECT_TRUE(generation.generate("source\n", "", "device").file);
  EXPECT_EQ(runs(), 1U);
  EXPECT_TRUE(folder.write("a.h", "two"));
  EXPECT_TRUE(generation.generate("source\n", "", "device").file);
  EXPECT_EQ(runs(), 2U);
}

TEST_F(GeneratedFor, NothingThatIsTooLong) {
  Generation generation(goodGenerator(), "", patient());
  const std::string source(std::size_t{2} << 20, 'x');
  EXPECT_EQ(generation.generate(source, "", "").file->whyNone,
            "the source is longer than 1 MiB");
  EXPECT_EQ(runs(), 0U);
}

TEST_F(GeneratedFor, NothingByAGeneratorThatIsMissing) {
  Generation generation(folder.file("missing"), folder.file("cache"),
                        patient());
  const Generated first = generation.generate("source", "", "");
  EXPECT_FALSE(first.file);
  EXPECT_TRUE(first.isFirstFailure);
  EXPECT_THAT(first.failure,
              EndsWith("cannot be started: No such file or directory"));
  const Generated second = generation.generate("source", "", "");
  EXPECT_FALSE(second.file);
  EXPECT_FALSE(second.isFirstFailure);
  EXPECT_EQ(second.failure, first.failure);
}

TEST_F(GeneratedFor, NothingByAGeneratorThatCrashes) {
  Generation generation(generatorThat("kill -SEGV $$"), folder.file("cache"),
                        patient());
  for (int i = 0; i != 5; ++i) {
    const Generated made = generation.generate("source", "", "");
    EXPECT_FALSE(made.file);
    EXPECT_THAT(made.failure, EndsWith("was ended by signal 11"));
    EXPECT_EQ(made.isFirstFailure, i == 0);
  }
  EXPECT_EQ(runs(), 3U); // then it is given up
  EXPECT_FALSE(folder.has("cache"));
}

TEST_F(GeneratedFor, NothingByAGeneratorThatHangs) {
  ChildLimits limits = generatorLimits();
  limits.time = std::chrono::milliseconds(500);
  Generation generation(generatorThat("sleep 1000"), "", limits);
  EXPECT_THAT(generation.generate("source", "", "").failure,
              HasSubstr("did not end"));
  EXPECT_FALSE(generation.generate("source", "", "").isFirstFailure);
  EXPECT_LE(runs(), 1U); // then it is given up
}

TEST_F(GeneratedFor, NothingByAGeneratorThatBabbles) {
  Generation generation(generatorThat("while :; do echo babble; done"), "",
                        patient());
  EXPECT_THAT(generation.generate("source", "", "").failure,
              HasSubstr("wrote more than "));
}

TEST_F(GeneratedFor, NothingByAGeneratorThatWritesSomethingElse) {
  Generation generation(generatorThat("cat; echo hello"), "", patient());
  EXPECT_THAT(generation.generate("source", "", "").failure,
              EndsWith("wrote something else than variants"));
}
