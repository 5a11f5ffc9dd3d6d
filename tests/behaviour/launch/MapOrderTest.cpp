// Tests of which of several accepting variants runs: the first in map order.

#include "tests/behaviour/launch/Application.h"
#include "tests/support/ErrorCapture.h"

#include "llvm/ADT/DenseMap.h"

#include "gmock/gmock.h"
#include "gtest/gtest.h"

using namespace corvane;
using namespace corvane::test;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;

namespace {
struct Created {
  std::string name;
  cl_kernel kernel;
};
std::vector<Created> *createdKernels = nullptr;
decltype(DispatchTable::clCreateKernel) honestCreation = nullptr;

cl_kernel CL_API_CALL createAndNote(cl_program program, const char *name,
                                    cl_int *status) {
  cl_kernel kernel = honestCreation(program, name, status);
  createdKernels->push_back({name, kernel});
  return kernel;
}

/// Records which handles the runtime gives out, and knows the order that the
/// variants' names have in a map of the same kind.
class MapOrder : public testing::Test {
protected:
  MapOrder() { createdKernels = &created; }
  ~MapOrder() override { createdKernels = nullptr; }

  static void prepare(DispatchTable &table) {
    honestCreation = table.clCreateKernel;
    table.clCreateKernel = createAndNote;
  }

  // The first kernel that was created is the application's own.
  std::vector<std::string> variantsInOrder() const {
    llvm::DenseMap<cl_kernel, std::string> map;
    for (std::size_t i = 1; i < created.size(); ++i)
      map.try_emplace(created[i].kernel, created[i].name);
    std::vector<std::string> names;
    for (const auto &entry : map)
      names.push_back(entry.second);
    return names;
  }

  std::vector<Created> created;
};

// With a few variants each has its own bucket in the map; with this many some
// share one.
constexpr std::size_t manyVariants = 40;

// Each variant accepts a range of 16 and leaves it as it is. Their names differ
// by a restriction, which is no condition.
void addVariants(Application &app, std::size_t count) {
  app.program.kernel("k");
  for (std::size_t i = 0; i != count; ++i)
    app.program.kernel("k_coarsed_r" + std::to_string(i) + "g0S1");
}
} // namespace

TEST_F(MapOrder, DecidesWhichAcceptingVariantRunsEveryTime) {
  Application app({}, prepare);
  addVariants(app, manyVariants);
  cl_kernel kernel = app.create("k");
  for (int i = 0; i != 3; ++i)
    EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);
  EXPECT_THAT(app.launches(),
              testing::AllOf(SizeIs(3), Each(plainLaunch(
                                            variantsInOrder().at(0), "[16]"))));
}

TEST_F(MapOrder, IsTheOrderInWhichVariantsAreTunedHoweverManyThereAre) {
  for (const std::size_t count : {1, 2, 3, 5, 40, 47, 48, 100}) {
    created.clear();
    TuningApplication app({}, prepare);
    addVariants(app, count);
    EXPECT_EQ(app.launch(app.create("k"), {16}), CL_SUCCESS);
    std::string rows;
    for (const std::string &name : variantsInOrder())
      rows += "k,16,,,0,,," + name.substr(std::string("k_coarsed_").size()) +
              ",1.000\n";
    EXPECT_EQ(app.log(), app.header + rows + "k,16,,,0,,,baseline,1.000\n")
        << count;
  }
}

TEST_F(MapOrder, TriesNoSecondVariantWhenTheFirstRejectsAnArgument) {
  Application app({}, prepare);
  app.program.kernel("k", 1).kernel("k_coarsed_g0S4", 1);
  app.program.kernel("k_coarsed_g0S2d0S4", 1);
  cl_kernel kernel = app.create("k");
  app.set(kernel, 0, cl_int{3});
  ErrorCapture errors;
  EXPECT_EQ(app.launch(kernel, {16}), CL_SUCCESS);

  const bool pickyIsFirst = variantsInOrder().at(0) == "k_coarsed_g0S2d0S4";
  EXPECT_THAT(app.launches(),
              ElementsAre(pickyIsFirst ? plainLaunch("k", "[16]")
                                       : plainLaunch("k_coarsed_g0S4", "[4]")));
  EXPECT_EQ(errors.text().empty(), !pickyIsFirst);
}
