// Tests of the origins of binaries.

#include "base/ProgramHash.h"
#include "companion/ProgramOrigin.h"
#include "tests/support/TempFolder.h"

#include <gmock/gmock.h>

using namespace corvane;
using namespace corvane::test;
using testing::Optional;

static const ProgramOrigin origin = {"kernel void k() {}", "-DA=1"};

TEST(KnownBinaries, AreFoundByTheirBytes) {
  const TempFolder folder;
  KnownBinaries(folder.text()).remember("binary", origin);
  const KnownBinaries others(folder.text());
  EXPECT_THAT(others.find("binary"), Optional(origin));
  EXPECT_EQ(others.find("binarx"), std::nullopt);
}

TEST(KnownBinaries, MayHaveNoOptions) {
  const TempFolder folder;
  const KnownBinaries known(folder.text());
  const ProgramOrigin plain = {"5\nkernel", ""};
  known.remember("binary", plain);
  EXPECT_THAT(known.find("binary"), Optional(plain));
}

TEST(KnownBinaries, AreUnknownWhereTheirFileIsDamaged) {
  const TempFolder folder;
  const KnownBinaries known(folder.text());
  for (const char *bytes :
       {"", "origin1", "origin1 ", "origin1 5", "origin1 5\n",
        "origin1 5\n12345", "origin1 -1\nsource",
        "origin1 99999999999999999999\nsource", "origin2 0\nsource",
        "origin1 0\n"}) {
    EXPECT_TRUE(folder.write(sha256Text({"binary"}), bytes));
    EXPECT_EQ(known.find("binary"), std::nullopt) << bytes;
  }
}

TEST(KnownBinaries, OfHugeProgramsAreNotKept) {
  const TempFolder folder;
  const KnownBinaries known(folder.text());
  known.remember("binary", {std::string(std::size_t{5} << 20, 'x'), ""});
  EXPECT_EQ(known.find("binary"), std::nullopt);
}
