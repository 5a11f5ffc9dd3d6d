// Tests of the layer's two exports, called by a loader that the test plays.

#include "tests/support/TempFolder.h"
#include "tests/system/ExampleRun.h"
#include "tests/system/LoadedLayer.h"
#include "tests/system/agents/Findings.h"

#include <gmock/gmock.h>

#include <cstddef>

#include <dlfcn.h>

using namespace corvane::test;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

constexpr size_t knownEntries = sizeof(cl_icd_dispatch) / sizeof(void *);

/// A layer with an agent that tries every operation. Both are copies that only
/// this test has, because they start only once.
class InspectedLayer : public testing::Test {
protected:
  /// What the agent found, or null when it was not loaded.
  const Findings *findings() const {
    const auto get = exported<FindingsFunction>("findings");
    return get ? get() : nullptr;
  }

  template <typename Function> Function exported(const char *name) const {
    void *agent =
        dlopen((copies.path() / agentName()).c_str(), RTLD_NOW | RTLD_NOLOAD);
    return agent ? reinterpret_cast<Function>(dlsym(agent, name)) : nullptr;
  }

private:
  static std::filesystem::path agentName() {
    return std::filesystem::path(agentLibrary()).filename();
  }

  std::string copyBoth() const {
    const std::filesystem::path from = layerBeside("InspectingAgent");
    for (const auto &name : {from.filename(), agentName()})
      std::filesystem::copy_file(from.parent_path() / name,
                                 copies.path() / name);
    return copies.path() / from.filename();
  }

  const TempFolder copies;

protected:
  const LoadedLayer layer{copyBoth()};
};

} // namespace

TEST_F(InspectedLayer, GivesTheAgentTheLoadersEntriesButForTheLowerHooks) {
  const std::vector<void *> loaderTable = loaderTableOf(knownEntries);
  ASSERT_EQ(layer.init(loaderTable).status, CL_SUCCESS);
  const Findings *found = findings();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->get, CL_SUCCESS);
  for (unsigned i = 0; i < agentEntries; ++i)
    EXPECT_EQ(found->table[i] != loaderTable[i], isLowerHook(i))
        << "entry " << i;
}

TEST_F(InspectedLayer, GivesTheLoaderTheAgentsEntriesButForTheUpperHooks) {
  const std::vector<void *> loaderTable = loaderTableOf(knownEntries);
  const LoadedLayer::Answer answer = layer.init(loaderTable);
  EXPECT_EQ(answer.status, CL_SUCCESS);
  EXPECT_EQ(answer.said, "");
  ASSERT_EQ(answer.count, knownEntries);
  ASSERT_NE(answer.table, nullptr);
  for (unsigned i = 0; i < agentEntries; ++i)
    EXPECT_EQ(answer.entry(i) != agentEntry(i), isUpperHook(i))
        << "entry " << i;
  for (unsigned i = agentEntries; i < knownEntries; ++i)
    EXPECT_EQ(answer.entry(i) != loaderTable[i], isUpperHook(i))
        << "entry " << i;
}

TEST_F(InspectedLayer, WorksOverATableOfJustTheEntriesThatTheAgentNeeds) {
  const LoadedLayer::Answer answer = layer.init(loaderTableOf(agentEntries));
  EXPECT_EQ(answer.status, CL_SUCCESS);
  EXPECT_EQ(answer.said, "");
  ASSERT_EQ(answer.count, agentEntries);
  EXPECT_EQ(answer.entry(0), agentEntry(0));
  EXPECT_EQ(answer.entry(agentEntries - 1), agentEntry(agentEntries - 1));
}

TEST_F(InspectedLayer, SpeaksOnlyOfEntriesThatItKnows) {
  const LoadedLayer::Answer answer = layer.init(loaderTableOf(1000));
  EXPECT_EQ(answer.status, CL_SUCCESS);
  EXPECT_EQ(answer.said, "");
  EXPECT_EQ(answer.count, knownEntries);
}

TEST_F(InspectedLayer, ShowsTheAgentWhatItInstalled) {
  layer.init(loaderTableOf(knownEntries));
  const Findings *found = findings();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->set, CL_SUCCESS);
  for (unsigned i = 0; i < agentEntries; ++i)
    EXPECT_EQ(found->tableAgain[i], agentEntry(i)) << "entry " << i;
}

TEST_F(InspectedLayer, AnswersAnErrorAtEveryOtherPosition) {
  layer.init(loaderTableOf(knownEntries));
  const Findings *found = findings();
  ASSERT_NE(found, nullptr);
  for (unsigned i = 0; i < agentOperations; ++i) {
    EXPECT_FALSE(found->isNull[i]) << "position " << i;
    const bool worksOnTables = i == 7 || i == 8;
    EXPECT_EQ(found->statuses[i],
              worksOnTables ? CL_INVALID_VALUE : CL_INVALID_OPERATION)
        << "position " << i;
  }
}

TEST_F(InspectedLayer, RefusesTablesOfAnotherSize) {
  layer.init(loaderTableOf(knownEntries));
  const Findings *found = findings();
  ASSERT_NE(found, nullptr);
  EXPECT_EQ(found->getShort, CL_INVALID_VALUE);
  EXPECT_EQ(found->getLong, CL_INVALID_VALUE);
  EXPECT_EQ(found->setShort, CL_INVALID_VALUE);
  EXPECT_EQ(found->setLong, CL_INVALID_VALUE);
}

TEST_F(InspectedLayer, TakesNoTableOnceTheLoaderHasIt) {
  layer.init(loaderTableOf(knownEntries));
  const auto installAgain = exported<InstallFunction>("installAgain");
  ASSERT_NE(installAgain, nullptr);
  EXPECT_EQ(installAgain(), CL_INVALID_OPERATION);
}

TEST_F(InspectedLayer, ServesALoaderThatIsOpenedOnceMore) {
  const LoadedLayer::Answer first = layer.init(loaderTableOf(knownEntries));
  for (int opening = 2; opening <= 3; ++opening) {
    const LoadedLayer::Answer again = layer.init(loaderTableOf(knownEntries));
    EXPECT_EQ(again.status, CL_SUCCESS);
    EXPECT_EQ(again.said, "");
    EXPECT_EQ(again.count, first.count);
    EXPECT_EQ(again.table, first.table);
  }
}

TEST_F(InspectedLayer, SpeaksToASecondLoaderOnlyOfEntriesThatItHas) {
  layer.init(loaderTableOf(knownEntries));
  EXPECT_EQ(layer.init(loaderTableOf(agentEntries)).count, agentEntries);
}

// A loader does this if OPENCL_LAYERS names the layer twice.
TEST_F(InspectedLayer, PassesATableThroughThatLeadsToItselfAlready) {
  const LoadedLayer::Answer first = layer.init(loaderTableOf(knownEntries));
  std::vector<void *> second;
  for (size_t i = 0; i < knownEntries; ++i)
    second.push_back(first.entry(i));
  second[0] = &second; // another layer is between the two
  const LoadedLayer::Answer answer = layer.init(second);
  EXPECT_EQ(answer.status, CL_SUCCESS);
  ASSERT_EQ(answer.count, knownEntries);
  for (size_t i = 0; i < knownEntries; ++i)
    EXPECT_EQ(answer.entry(i), second[i]) << "entry " << i;
  EXPECT_THAT(linesOf(answer.said), ElementsAre(HasSubstr("once")));
}

TEST_F(InspectedLayer, PassesATooSmallTableThroughAndSaysWhy) {
  const std::vector<void *> small = loaderTableOf(agentEntries - 1);
  const LoadedLayer::Answer answer = layer.init(small);
  EXPECT_EQ(answer.status, CL_SUCCESS);
  ASSERT_EQ(answer.count, agentEntries - 1);
  for (size_t i = 0; i < small.size(); ++i)
    EXPECT_EQ(answer.entry(i), small[i]) << "entry " << i;
  EXPECT_THAT(linesOf(answer.said),
              ElementsAre(AllOf(StartsWith("CorvaneLayer: "), HasSubstr("118"),
                                HasSubstr("119"))));
  EXPECT_EQ(findings(), nullptr) << "the agent was loaded for nothing";
}

TEST_F(InspectedLayer, RefusesALoaderThatGivesOrTakesNoTable) {
  const std::vector<void *> table = loaderTableOf(knownEntries);
  const auto *given = reinterpret_cast<const cl_icd_dispatch *>(table.data());
  const cl_icd_dispatch *taken = nullptr;
  cl_uint count = 0;
  EXPECT_EQ(layer.initLayer(knownEntries, nullptr, &count, &taken),
            CL_INVALID_VALUE);
  EXPECT_EQ(layer.initLayer(knownEntries, given, nullptr, &taken),
            CL_INVALID_VALUE);
  EXPECT_EQ(layer.initLayer(knownEntries, given, &count, nullptr),
            CL_INVALID_VALUE);
}

TEST_F(InspectedLayer, TellsTheVersionOfTheInterface) {
  cl_layer_api_version version = 0;
  size_t size = 0;
  EXPECT_EQ(layer.getLayerInfo(CL_LAYER_API_VERSION, sizeof(version), &version,
                               &size),
            CL_SUCCESS);
  EXPECT_EQ(version, cl_layer_api_version(CL_LAYER_API_VERSION_100));
  EXPECT_EQ(size, sizeof(version));
}

TEST_F(InspectedLayer, TellsItsName) {
  size_t size = 0;
  ASSERT_EQ(layer.getLayerInfo(CL_LAYER_NAME, 0, nullptr, &size), CL_SUCCESS);
  std::vector<char> name(size);
  EXPECT_EQ(layer.getLayerInfo(CL_LAYER_NAME, size, name.data(), nullptr),
            CL_SUCCESS);
  EXPECT_EQ(std::string(name.data(), size),
            std::string("CorvaneLayer", sizeof("CorvaneLayer")));
}

TEST_F(InspectedLayer, RefusesAQueryThatItDoesNotKnowOrThatIsTooSmall) {
  char capacity[64] = "untouched";
  size_t size = 7;
  EXPECT_EQ(layer.getLayerInfo(0x4242, sizeof(capacity), capacity, &size),
            CL_INVALID_VALUE);
  EXPECT_EQ(layer.getLayerInfo(CL_LAYER_API_VERSION, 3, capacity, &size),
            CL_INVALID_VALUE);
  EXPECT_EQ(layer.getLayerInfo(CL_LAYER_NAME, 12, capacity, &size),
            CL_INVALID_VALUE);
  EXPECT_STREQ(capacity, "untouched");
  EXPECT_EQ(size, 7u);
}
