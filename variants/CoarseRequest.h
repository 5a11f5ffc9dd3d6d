// The conditions on sizes, of a variant that does several work-items' work in
// one.
#pragma once

#include "variants/Transform.h"

#include "llvm/ADT/ArrayRef.h"

namespace llvm {

/// Which sizes a coarsened variant shrinks, and what they must divide by.
enum class CoarseMode : std::int32_t {
  Local = 0,  ///< 'l': work-groups shrink together with the global size
  Global = 1, ///< 'g': work-groups keep their size, and all of them are full
  Coarse = 2, ///< 'c': as Global, but the last work-group may be padded
};

/// A variant coarsened along one dimension of the ND range.
///
/// The divisors that follow from the numbers are 32 bits wide and wrap. One
/// that is 0 divides nothing: such a request accepts no launch.
struct CoarseRequest : Transform {
  CoarseMode mode = CoarseMode::Local;
  std::uint32_t dim = 0; ///< the dimension coarsened; equal to `dimension`
  std::uint32_t factor = 1;
  std::uint32_t extraFactor = 1;
  std::uint32_t localMultiple = 1;

  CoarseRequest() : Transform(CoarseKind, 0) {}

  bool acceptsLaunch(std::uint32_t workDim, const std::size_t *globalSizes,
                     const std::size_t *localSizes) const override;
  void adjustLaunch(std::uint32_t workDim, std::size_t *globalSizes,
                    std::size_t *localSizes) const override;
  std::string specText() const override;
  std::unique_ptr<Transform> clone() const override;
  bool precedes(const Transform &other) const override;
};

} // namespace llvm

namespace corvane {

/// Why `request`, which rejects a launch of these sizes, does so: "1022 is not
/// a multiple of 16". For the parameters see Transform.
std::string whyRejected(const llvm::CoarseRequest &request,
                        std::uint32_t workDim, const std::size_t *globalSizes,
                        const std::size_t *localSizes);

/// The request that an item of a spec makes: null unless the letter is 'c', 'g'
/// or 'l' and there are at least two numbers.
std::unique_ptr<llvm::Transform>
makeCoarseRequest(char letter, llvm::ArrayRef<std::uint32_t> numbers);

} // namespace corvane
