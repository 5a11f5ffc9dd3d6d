// Tests the sizes of a launch and rewrites them for a coarsened variant.
#include "variants/CoarseRequest.h"

#include "variants/VariantName.h"

#include "llvm/ADT/SmallVector.h"

#include <algorithm>
#include <optional>
#include <tuple>

namespace llvm {

/// What the variant divides the global size by.
static std::uint32_t globalDivisor(const CoarseRequest &request) {
  return request.factor * request.extraFactor;
}

/// What a padded variant wants its work-groups to be a multiple of.
static std::uint32_t groupDivisor(const CoarseRequest &request) {
  return request.factor * request.localMultiple;
}

/// What a variant without padding wants its sizes to be a multiple of.
static std::uint32_t fullDivisor(const CoarseRequest &request) {
  return groupDivisor(request) * globalDivisor(request);
}

static bool divides(std::size_t divisor, std::size_t size) {
  return divisor != 0 && size % divisor == 0;
}

static bool acceptsGlobal(const CoarseRequest &request, std::size_t global,
                          std::size_t local) {
  if (!divides(fullDivisor(request), global))
    return false;
  const std::size_t coarsened = global / globalDivisor(request);
  return divides(std::max<std::size_t>(local, 1), coarsened);
}

static bool acceptsCoarse(const CoarseRequest &request, std::size_t global,
                          std::size_t local) {
  if (!divides(globalDivisor(request), global) ||
      !divides(groupDivisor(request), local))
    return false;
  // A last work-group that is not full can be padded, though not by a variant
  // with an extra factor.
  const std::size_t coarsened = global / globalDivisor(request);
  return divides(local, coarsened) || request.extraFactor <= 1;
}

bool CoarseRequest::acceptsLaunch(std::uint32_t workDim,
                                  const std::size_t *globalSizes,
                                  const std::size_t *localSizes) const {
  if (dim >= workDim)
    return false;

  const std::size_t global = globalSizes[dim];
  const std::size_t local = localSizes[dim];
  if (local == 0 && (extraFactor > 1 || mode == CoarseMode::Coarse))
    return false;

  switch (mode) {
  case CoarseMode::Local:
    return divides(fullDivisor(*this), local);
  case CoarseMode::Global:
    return acceptsGlobal(*this, global, local);
  case CoarseMode::Coarse:
    return acceptsCoarse(*this, global, local);
  }
  return false;
}

void CoarseRequest::adjustLaunch(std::uint32_t workDim,
                                 std::size_t *globalSizes,
                                 std::size_t *localSizes) const {
  const std::size_t divisor = globalDivisor(*this);
  if (dim >= workDim || divisor == 0)
    return;
  if (mode < CoarseMode::Local || mode > CoarseMode::Coarse)
    return;

  std::size_t &global = globalSizes[dim];
  std::size_t &local = localSizes[dim];
  if (mode == CoarseMode::Local)
    local /= divisor;
  global /= divisor;

  if (local != 0 && global % local != 0)
    global += local - global % local;
}

static char letterOf(CoarseMode mode) {
  switch (mode) {
  case CoarseMode::Local:
    return 'l';
  case CoarseMode::Global:
    return 'g';
  case CoarseMode::Coarse:
    return 'c';
  }
  return '?';
}

std::string CoarseRequest::specText() const {
  SmallVector<std::uint32_t, 4> numbers = {dim, factor};
  if (extraFactor != 1 || localMultiple != 1)
    numbers.push_back(extraFactor);
  if (localMultiple != 1)
    numbers.push_back(localMultiple);
  return corvane::itemText(letterOf(mode), numbers);
}

std::unique_ptr<Transform> CoarseRequest::clone() const {
  return std::make_unique<CoarseRequest>(*this);
}

bool CoarseRequest::precedes(const Transform &other) const {
  const auto &that = static_cast<const CoarseRequest &>(other);
  return std::tie(mode, factor, extraFactor, localMultiple) <
         std::tie(that.mode, that.factor, that.extraFactor, that.localMultiple);
}

} // namespace llvm

static std::string notAMultiple(const char *what, std::size_t size,
                                std::size_t divisor) {
  return what + std::to_string(size) + " is not a multiple of " +
         std::to_string(divisor);
}

static std::string whyGlobalIsRejected(const llvm::CoarseRequest &request,
                                       std::size_t global, std::size_t local,
                                       std::uint32_t divisor) {
  if (!llvm::divides(divisor, global))
    return notAMultiple("", global, divisor);
  return notAMultiple("", global / llvm::globalDivisor(request),
                      std::max<std::size_t>(local, 1));
}

std::string corvane::whyRejected(const llvm::CoarseRequest &request,
                                 std::uint32_t workDim,
                                 const std::size_t *globalSizes,
                                 const std::size_t *localSizes) {
  using llvm::CoarseMode;
  if (request.dim >= workDim)
    return "the launch has no dimension " + std::to_string(request.dim);
  const std::size_t global = globalSizes[request.dim];
  const std::size_t local = localSizes[request.dim];
  constexpr const char *groupSize = "the work-group size ";
  if (request.mode != CoarseMode::Global && local == 0)
    return "the launch has no work-group size";
  if (request.extraFactor > 1 && local == 0)
    return "the launch has no work-group size";
  if (request.mode == CoarseMode::Local)
    return notAMultiple(groupSize, local, llvm::fullDivisor(request));
  if (request.mode == CoarseMode::Global)
    return whyGlobalIsRejected(request, global, local,
                               llvm::fullDivisor(request));
  if (!llvm::divides(llvm::groupDivisor(request), local))
    return notAMultiple(groupSize, local, llvm::groupDivisor(request));
  return whyGlobalIsRejected(request, global, local,
                             llvm::globalDivisor(request));
}

static std::optional<llvm::CoarseMode> modeOf(char letter) {
  switch (letter) {
  case 'l':
    return llvm::CoarseMode::Local;
  case 'g':
    return llvm::CoarseMode::Global;
  case 'c':
    return llvm::CoarseMode::Coarse;
  default:
    return std::nullopt;
  }
}

std::unique_ptr<llvm::Transform>
corvane::makeCoarseRequest(char letter, llvm::ArrayRef<std::uint32_t> numbers) {
  const std::optional<llvm::CoarseMode> mode = modeOf(letter);
  if (numbers.size() < 2 || !mode)
    return nullptr;

  auto request = std::make_unique<llvm::CoarseRequest>();
  request->mode = *mode;
  request->dimension = request->dim = numbers[0];
  request->factor = numbers[1];
  if (numbers.size() > 2)
    request->extraFactor = numbers[2];
  if (numbers.size() > 3)
    request->localMultiple = numbers[3];
  return request;
}
