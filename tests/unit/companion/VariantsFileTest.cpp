// Tests of the file that has a program with its variants.

#include "companion/VariantsFile.h"
#include "base/ProgramHash.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::ElementsAre;
using testing::Field;

static const std::string firstLine = "// Variants of kernels, format 1\n";

static const std::string twoVariants = firstLine +
                                       "// variant 5 3 k_coarsed_g0S2\n"
                                       "// variant 8 4 k_coarsed_g0S4\n"
                                       "// program 15\n"
                                       "HEAD\nTWOFOUREND";

TEST(VariantsFile, IsWrittenAsItIsRead) {
  const auto file = readVariants(twoVariants);
  ASSERT_TRUE(file);
  EXPECT_THAT(file->variants,
              ElementsAre(Field(&ListedVariant::name, "k_coarsed_g0S2"),
                          Field(&ListedVariant::name, "k_coarsed_g0S4")));
  EXPECT_EQ(file->program, "HEAD\nTWOFOUREND");
  EXPECT_EQ(variantsText(*file), twoVariants);
}

TEST(VariantsFile, TellsWhyThereAreNoVariants) {
  const std::string text = firstLine + "// none it prints\n// program 0\n";
  const auto file = readVariants(text);
  ASSERT_TRUE(file);
  EXPECT_EQ(file->whyNone, "it prints");
  EXPECT_EQ(file->program, "");
  EXPECT_EQ(variantsText(*file), text);
}

TEST(VariantsFile, KeepsTheTextOfSomeVariants) {
  for (const auto &[kept, program] :
       std::vector<std::pair<std::set<std::string>, std::string>>{
           {{"k_coarsed_g0S2"}, "HEAD\nTWOEND"},
           {{"k_coarsed_g0S4"}, "HEAD\nFOUREND"},
           {{"k_coarsed_g0S2", "k_coarsed_g0S4", "none"}, "HEAD\nTWOFOUREND"},
           {{}, ""},
           {{"none"}, ""}}) {
    auto file = readVariants(twoVariants);
    ASSERT_TRUE(file);
    keepVariants(*file, kept);
    EXPECT_EQ(file->program, program);
    EXPECT_TRUE(readVariants(variantsText(*file)));
    for (const ListedVariant &variant : file->variants)
      EXPECT_EQ(file->program.substr(variant.begin, variant.size),
                variant.name == "k_coarsed_g0S2" ? "TWO" : "FOUR");
  }
}

TEST(VariantsFile, IsRefusedWhereItBreaksTheFormat) {
  for (const std::string &text : {
           std::string(),
           std::string("kernel void k() {}"),
           firstLine,
           firstLine + "// variant 0 1 k_coarsed_g0S2\n",
           firstLine + "// program 1\n",
           firstLine + "// program 0\nmore",
           firstLine + "// program -1\n",
           firstLine + "// program 18446744073709551617\n",
           firstLine + "kernel void k() {}\n// program 0\n",
           firstLine + "// something else\n// program 0\n",
           firstLine + "// variant 0 1\n// program 1\nk",
           firstLine + "// variant 0 1 k\n// program 1\nk",
           firstLine + "// variant 0 1 k_coarsed_g0S2;k2\n// program 1\nk",
           firstLine + "// variant 0 2 k_coarsed_g0S2\n// program 1\nk",
           firstLine + "// variant 2 0 k_coarsed_g0S2\n// program 1\nk",
           firstLine + "// variant 1 18446744073709551615 k_coarsed_g0S2\n"
                       "// program 2\nkk",
           firstLine + "// variant 18446744073709551615 1 k_coarsed_g0S2\n"
                       "// program 2\nkk",
           // One lies in the other, comes twice, or is out of order.
           firstLine + "// variant 0 2 k_coarsed_g0S2\n// variant 1 1 "
                       "k_coarsed_g0S4\n// program 2\nkk",
           firstLine + "// variant 0 1 k_coarsed_g0S2\n// variant 1 1 "
                       "k_coarsed_g0S2\n// program 2\nkk",
           firstLine + "// variant 1 1 k_coarsed_g0S2\n// variant 0 1 "
                       "k_coarsed_g0S4\n// program 2\nkk",
           // A program without variants is for no use.
           firstLine + "// program 1\nk",
           firstLine + "// included 0\n// none n\n// program 0\n",
       })
    EXPECT_FALSE(readVariants(text)) << text;
}

TEST(VariantsFile, HoldsOnlyForTheIncludedFilesThatItWasMadeWith) {
  const TempFolder folder;
  EXPECT_TRUE(folder.write("a.h", "one"));
  VariantsFile file;
  EXPECT_TRUE(includesAreUnchanged(file));
  file.included = {{sha256Text({"one"}), folder.file("a.h")}};
  EXPECT_TRUE(includesAreUnchanged(file));
  EXPECT_TRUE(folder.write("a.h", "two"));
  EXPECT_FALSE(includesAreUnchanged(file));
  file.included = {{sha256Text({""}), folder.file("missing.h")}};
  EXPECT_FALSE(includesAreUnchanged(file));
  file.included = {{sha256Text({""}), folder.text()}};
  EXPECT_FALSE(includesAreUnchanged(file));
}

TEST(ProgramHash, IsFitForAFileName) {
  EXPECT_TRUE(isHashText(programHashText("source", "-DA", "kernel")));
  EXPECT_FALSE(isHashText(""));
  EXPECT_FALSE(isHashText(std::string(63, 'a')));
  EXPECT_FALSE(isHashText(std::string(64, 'A')));
  EXPECT_FALSE(isHashText("../" + std::string(61, 'a')));
}

TEST(ProgramHash, TellsOptionsFromSource) {
  EXPECT_NE(programHashText("source", "-DA", "B"),
            programHashText("source", "-D", "AB"));
  EXPECT_NE(programHashText("source", "", "B"),
            programHashText("binary", "", "B"));
}

static VariantsFile fileWith(const std::string &list,
                             const std::string &program) {
  const auto file =
      readVariants(firstLine + list + "// program " +
                   std::to_string(program.size()) + "\n" + program);
  EXPECT_TRUE(file);
  return file.value_or(VariantsFile());
}

TEST(VariantsFile, TakesTheVariantsOfAnotherThatItDoesNotHave) {
  VariantsFile file = fileWith("// variant 5 3 k_coarsed_g0S2\n"
                               "// variant 14 3 m_coarsed_g0S2\n",
                               "HEAD\nTWOMIDDLETWOEND");
  EXPECT_TRUE(addVariants(file, fileWith("// variant 5 3 k_coarsed_g0S2\n"
                                         "// variant 8 4 k_coarsed_g0S4\n",
                                         "HEAD\nANYFOURMIDDLEEND")));
  EXPECT_EQ(variantsText(file), firstLine + "// variant 5 3 k_coarsed_g0S2\n"
                                            "// variant 8 4 k_coarsed_g0S4\n"
                                            "// variant 18 3 m_coarsed_g0S2\n"
                                            "// program 24\n"
                                            "HEAD\nTWOFOURMIDDLETWOEND");
}

TEST(VariantsFile, TakesNoVariantsOfAnotherSource) {
  VariantsFile file = *readVariants(twoVariants);
  EXPECT_FALSE(addVariants(
      file, fileWith("// variant 5 4 k_coarsed_g0S8\n", "TAIL\nEIGHEND")));
  EXPECT_EQ(variantsText(file), twoVariants);
}

TEST(VariantsFile, MayBeJoinedWithOneThatHasNone) {
  const VariantsFile none = *readVariants(firstLine + "// none it prints\n"
                                                      "// program 0\n");
  VariantsFile file = *readVariants(twoVariants);
  EXPECT_TRUE(addVariants(file, none));
  EXPECT_EQ(variantsText(file), twoVariants);
  VariantsFile empty = none;
  EXPECT_TRUE(addVariants(empty, file));
  EXPECT_EQ(variantsText(empty), twoVariants);
}
