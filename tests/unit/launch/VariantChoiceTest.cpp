// Tests of which variant takes a launch, and why others do not.

#include "launch/VariantChoice.h"

#include "variants/VariantName.h"

#include "gmock/gmock.h"
#include <gtest/gtest.h>

using namespace corvane;
using testing::ElementsAre;
using testing::IsEmpty;
using Reason = Refusal::Reason;

namespace {
/// A kernel with variants of these specs, in their order.
class VariantChoices : public testing::Test {
protected:
  void create(const std::vector<std::string> &specs) {
    auto prototype = std::make_shared<KernelPrototype>();
    prototype->name = "k";
    for (const std::string &spec : specs)
      prototype->variants.push_back(std::make_unique<VariantDescription>(
          *parseVariantName("k_coarsed_" + spec)));
    record.emplace(nullptr, nullptr, prototype);
    std::uintptr_t handle = 0;
    for (const auto &description : prototype->variants)
      record->variants.push_back(
          {reinterpret_cast<cl_kernel>(handle += 64), description.get()});
  }

  template <typename Value> void set(cl_uint index, const Value &value) {
    record->arguments.reserve(index, sizeof value, &value);
    record->arguments.record(index, sizeof value, &value);
  }

  Launch launchOf(const std::vector<std::size_t> &global,
                  const std::vector<std::size_t> &local = {}) {
    std::copy(global.begin(), global.end(), globalSize.begin());
    std::copy(local.begin(), local.end(), localSize.begin());
    return {
        nullptr, nullptr,           static_cast<cl_uint>(global.size()),
        nullptr, globalSize.data(), local.empty() ? nullptr : localSize.data(),
        0,       nullptr,           nullptr};
  }

  static std::string specOf(const VariantChoice &choice) {
    return choice.variant ? choice.variant->description->spec : "none";
  }
  std::vector<std::string> tuned(const Launch &launch) {
    std::vector<std::string> specs;
    for (const VariantChoice &choice : variantsToAutotune(*record, launch))
      specs.push_back(specOf(choice));
    return specs;
  }
  // The explanation for each variant.
  std::vector<std::string> explanations(const Launch &launch) {
    std::vector<std::string> lines;
    for (VariantKernel &variant : record->variants)
      lines.push_back(
          explain(examine(*record, variant, launch).refusal, sizesOf(launch)));
    return lines;
  }

  std::optional<KernelRecord> record;

private:
  std::array<std::size_t, 4> globalSize{};
  std::array<std::size_t, 4> localSize{};
};
} // namespace

TEST_F(VariantChoices, OfANormalLaunchAreTheFirstThatAcceptsTheSizes) {
  create({"g0S8", "g0S4", "g0S2"});
  const VariantChoice choice = chooseVariant(*record, launchOf({48}, {4}));
  EXPECT_EQ(specOf(choice), "g0S4");
  EXPECT_FALSE(choice.refusal);
  EXPECT_THAT(choice.range.global, ElementsAre(12, 0, 0));
  EXPECT_THAT(choice.range.local, ElementsAre(4, 0, 0));
}

TEST_F(VariantChoices, OfANormalLaunchStayWithAVariantThatRejectsAnArgument) {
  create({"g0S4d0S4", "g0S2"});
  set(0, cl_int{6});
  const VariantChoice choice = chooseVariant(*record, launchOf({48}));
  EXPECT_EQ(specOf(choice), "g0S4d0S4");
  EXPECT_EQ(choice.refusal.reason, Reason::RejectedArgument);
}

TEST_F(VariantChoices, OfATunedLaunchAreAllThatAcceptSizesAndArguments) {
  create({"g0S4d0S4", "g0S8", "g0S4", "g0S2"});
  set(0, cl_int{6});
  EXPECT_THAT(tuned(launchOf({48})), ElementsAre("g0S4", "g0S2"));
}

TEST_F(VariantChoices, LeaveOutVariantsThatWereNotCreated) {
  create({"g0S4", "g0S2"});
  record->variants.front().kernel = nullptr;
  EXPECT_EQ(specOf(chooseVariant(*record, launchOf({48}))), "g0S2");
  EXPECT_THAT(tuned(launchOf({48})), ElementsAre("g0S2"));
}

TEST_F(VariantChoices, AreNoneForALocalSizeOfZeroUnlessTheLaunchIsTuned) {
  create({"g0S2"});
  const Launch launch = launchOf({16, 16}, {4, 0});
  EXPECT_EQ(chooseVariant(*record, launch).refusal.reason,
            Reason::ZeroLocalSize);
  EXPECT_THAT(tuned(launch), ElementsAre("g0S2"));
}

TEST_F(VariantChoices, AreNoneOnceAnArgumentCannotBeReplayed) {
  create({"g0S2"});
  record->arguments.reserve(1U << 16, 0, nullptr);
  record->arguments.record(1U << 16, 0, nullptr);
  const VariantChoice choice = chooseVariant(*record, launchOf({48}));
  EXPECT_EQ(specOf(choice), "none");
  EXPECT_EQ(choice.refusal.reason, Reason::LostArgument);
  EXPECT_THAT(tuned(launchOf({48})), IsEmpty());
}

TEST_F(VariantChoices, SayWhichConditionRefusesWhichSizes) {
  create({"g0S4", "c1S2", "l0S4g0S2"});
  EXPECT_THAT(explanations(launchOf({48, 6}, {8, 3})),
              ElementsAre("12 is not a multiple of 8",
                          "the work-group size 3 is not a multiple of 2",
                          "the work-group size 8 is not a multiple of 16"));
}

TEST_F(VariantChoices, SayWhichConditionRefusesWhichArgument) {
  create({"g0S2d0S4", "d1S2", "d2S2", "d3S2", "d4S2"});
  set(0, cl_int{6});
  set(1, cl_ulong{1} << 40 | 1U);
  set(2, cl_short{2});
  record->arguments.reserve(3, 8, nullptr);
  record->arguments.record(3, 8, nullptr);
  EXPECT_THAT(explanations(launchOf({48})),
              ElementsAre("d0S4 rejects argument 0 = 6",
                          "d1S2 rejects argument 1 = 1099511627777",
                          "d2S2 rejects argument 2, which has 2 bytes",
                          "d3S2 rejects argument 3, which has no value",
                          "the variant takes the launch"));
}

TEST_F(VariantChoices, SayWhatIsMissingOrTooMuch) {
  create({"r0", "g0S2"});
  record->variants.back().kernel = nullptr;
  Launch launch = launchOf({48});
  launch.globalSize = nullptr;
  EXPECT_THAT(explanations(launch),
              ElementsAre("the launch has no global size",
                          "the runtime did not create the variant's kernel"));
  EXPECT_THAT(explanations(launchOf({16, 16, 16, 16})),
              ElementsAre("the launch has 4 dimensions",
                          "the launch has 4 dimensions"));
}

TEST_F(VariantChoices, SayThatAKernelHasNone) {
  create({});
  const VariantChoice choice = chooseVariant(*record, launchOf({48}));
  EXPECT_EQ(explain(choice.refusal, {}), "the kernel has no variants");
}
