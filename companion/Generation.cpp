// Looks into the cache, runs the generator, and believes neither.

#include "companion/Generation.h"

#include "base/ProgramHash.h"

#include <filesystem>
#include <system_error>
#include <utility>

using namespace corvane;
namespace fs = std::filesystem;

// A longer source is the output of another generator, or no program.
static constexpr std::size_t mostSource = std::size_t{1} << 20;

// After so many failures there is something wrong with the generator itself.
static constexpr unsigned mostFailures = 3;

Generation::Generation(std::string generator, const std::string &cacheFolder,
                       const ChildLimits &childLimits)
    : tool(std::move(generator)), limits(childLimits),
      cache(cacheFolder, std::uintmax_t{64} << 20) {}

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static constexpr bool isSanitized = true;
#elif defined(__has_feature)
static constexpr bool isSanitized =
    __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
static constexpr bool isSanitized = false;
#endif

// A sanitizer needs more addresses than any limit allows; a generator that was
// built beside this library has the same one.
ChildLimits corvane::generatorLimits() {
  ChildLimits limits;
  if (isSanitized)
    limits.memory = 0;
  return limits;
}

// Another generator at the same place is another one: it has another size or
// another time.
static std::string stampOf(const std::string &file) {
  std::error_code unknown;
  const auto written = fs::last_write_time(file, unknown);
  return file + "\n" + std::to_string(fs::file_size(file, unknown)) + "\n" +
         std::to_string(written.time_since_epoch().count()) + "\n";
}

std::string Generation::keyOf(llvm::StringRef source, llvm::StringRef options,
                              llvm::StringRef device) const {
  const std::string about = stampOf(tool) + std::to_string(options.size()) +
                            "\n" + std::to_string(device.size()) + "\n";
  return sha256Text({about, options, device, source});
}

Generated Generation::failed(std::string why, bool isHopeless) {
  Generated result;
  result.failure = tool + " " + std::move(why);
  const std::lock_guard<std::mutex> guard(lock);
  result.isFirstFailure = failures++ == 0;
  if (isHopeless || failures == mostFailures)
    lastFailure = result.failure;
  return result;
}

Generated Generation::run(llvm::StringRef source, llvm::StringRef options) {
  {
    const std::lock_guard<std::mutex> guard(lock);
    if (!lastFailure.empty())
      return {std::nullopt, lastFailure, false};
  }
  ChildRun child = runChild({tool, "-", "--listed", "--options", options.str()},
                            source, limits);
  switch (child.end) {
  case ChildRun::End::Done:
    break;
  case ChildRun::End::Failed:
  case ChildRun::End::TooMuchOutput:
    return failed(std::move(child.why), false);
  case ChildRun::End::NotStarted:
  case ChildRun::End::TooSlow:
    return failed(std::move(child.why), true);
  }
  Generated result;
  result.file = readVariants(child.output);
  return result.file ? std::move(result)
                     : failed("wrote something else than variants", false);
}

Generated Generation::generate(llvm::StringRef source, llvm::StringRef options,
                               llvm::StringRef device) {
  Generated result;
  if (source.size() > mostSource) {
    result.file.emplace().whyNone = "the source is longer than 1 MiB";
    return result;
  }
  const std::string key = keyOf(source, options, device) + ".cl";
  if (const auto bytes = cache.find(key, mostVariantsBytes)) {
    result.file = readVariants(*bytes);
    if (result.file && includesAreUnchanged(*result.file))
      return result;
  }
  result = run(source, options);
  if (result.file)
    cache.keep(key, variantsText(*result.file));
  return result;
}
