// The lines of a run record: what one process told of its tuning. Data only.
//
// A run record is the file of one process, one JSON object a line.
// Numbers that name a device, a program or a configuration hold within one
// record; each line comes after the lines that it refers to.
//
// Versions are named by the spec text of the variant; the application's own
// kernel has the empty name here and is "baseline" in the file.

#pragma once

#include "results/LaunchSizes.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace corvane {

/// The version of the format that is written, and the highest that is read.
inline constexpr std::uint32_t runFormatVersion = 1;

/// The first line: who writes, and with which settings.
struct ProcessLine {
  std::uint32_t version = runFormatVersion;
  std::string library; ///< version of this library, as "1.0.0"
  std::string program; ///< path of the executable
  std::string host;
  std::uint64_t pid = 0;
  std::string start;                 ///< UTC, as "2024-02-29T23:59:58Z"
  std::optional<std::uint64_t> rank; ///< of a parallel program
  /// Variables that configure the library, with their values.
  std::vector<std::pair<std::string, std::string>> settings;
};

/// A device, before the first configuration on it.
struct DeviceLine {
  std::uint32_t device = 0;
  std::string name;
  std::string vendor;
  std::string version;     ///< CL_DEVICE_VERSION
  std::string driver;      ///< CL_DRIVER_VERSION
  std::string type;        ///< "CPU", "GPU", "accelerator", "custom" or "other"
  std::uint32_t units = 0; ///< compute units
  std::uint64_t localMemory = 0; ///< in bytes
};

/// A kernel of a program and the specs of its variants.
struct KernelVariants {
  std::string kernel;
  std::vector<std::string> variants;
};

/// A kernel whose name looks like a variant's and is not.
struct LookAlike {
  std::string name;
  std::string reason; ///< a sentence; may suggest the name that was meant
};

/// A program, before the first configuration of a kernel of it.
struct ProgramLine {
  std::uint32_t program = 0;
  std::string hash;    ///< of source and build options, in hexadecimal digits
  std::string options; ///< for the build
  std::vector<KernelVariants> kernels;
  std::vector<LookAlike> lookAlikes;
  bool spills = false; ///< the build log complains of a variant's registers
  /// Why it has no generated variants; empty if it has, or none were wanted.
  std::string whyNotGenerated;
};

/// What the conditions of one variant say to the sizes of a configuration.
struct VariantVerdict {
  std::string spec;
  /// Empty: accepted. Otherwise the first condition that refuses, with its
  /// values, as "1022 is not a multiple of 16".
  std::string refusal;
};

/// A kernel with sizes on a device, at its first launch.
struct ConfigurationLine {
  std::uint32_t configuration = 0;
  std::uint32_t program = 0;
  std::uint32_t device = 0;
  std::string kernel;
  LaunchSizes sizes;
  std::vector<VariantVerdict> variants;
  /// Why launches of this configuration cannot be tuned; empty when they can.
  std::string untunable;
};

/// One timed run.
struct SampleLine {
  std::uint32_t configuration = 0;
  std::string version;
  double microseconds = 0.0;
  bool warmUp = false; ///< the version's first run, which does not count
  /// The sample that the run repeats, counted from 0 among those of the version
  /// that count. None: the run makes a sample.
  std::optional<std::uint64_t> repeats = std::nullopt;
};

enum class CheckResult {
  Equal,       ///< to the last bit
  WithinBound, ///< elements differ by less than CORVANE_VERIFY allows
  Different,   ///< the version is out for its program
};

/// A comparison of what a version wrote with what the original wrote. One of
/// the original compares the reference run with the application's own: where
/// these differ, none of the kernel's variants may be chosen.
struct CheckLine {
  std::uint32_t configuration = 0;
  std::string version;
  CheckResult result = CheckResult::Equal;
  /// Where it is not equal: the place that differs first (Different) or most
  /// (WithinBound). Zero and empty otherwise.
  std::uint32_t argument = 0; ///< index of the kernel's argument
  std::uint64_t element = 0;  ///< index in the buffer, in elements of its type
  std::string expected;       ///< the original's value, as text
  std::string actual;         ///< the version's
};

/// The lowest and the highest ratio of two times that the samples allow. \c
/// high may be infinite.
struct RatioInterval {
  double low = 0.0;
  double high = 0.0;
};

/// What the samples of one version amount to.
struct VersionFigures {
  std::string version;
  double median = 0.0; ///< in microseconds
  std::uint64_t samples = 0;
  /// Of the version's time to the original's; none for the original, and where
  /// samples are too few.
  std::optional<RatioInterval> interval;
  bool dropped = false; ///< after two samples, as hopelessly slow
};

/// From here on launches of the configuration run the winner.
struct DecisionLine {
  std::uint32_t configuration = 0;
  std::string winner; ///< empty: the original
  std::vector<VersionFigures> versions;
};

/// How often a version ran for the application in one configuration.
struct VersionLaunches {
  std::uint32_t configuration = 0;
  std::string version;
  std::uint64_t launches = 0;
};

/// The last line; a process that was killed has none.
struct EndLine {
  std::uint64_t launches = 0;      ///< of the application, all of them
  std::uint64_t tunedLaunches = 0; ///< of these, with samples taken
  std::vector<VersionLaunches> byVersion;
  double secondsAdded = 0.0; ///< by tuning, to the program's time
};

using RunLine =
    std::variant<ProcessLine, DeviceLine, ProgramLine, ConfigurationLine,
                 SampleLine, CheckLine, DecisionLine, EndLine>;

} // namespace corvane
