// A condition that answers as a test says and logs what it was asked.
#pragma once

#include "variants/Transform.h"

#include <string>
#include <vector>

namespace corvane::test {

/// What a probe and its clones have been asked; outlives them all.
struct ProbeLog {
  std::vector<std::string> asked; ///< the names of those asked, in order
  int alive = 0;                  ///< probes that exist now
};

/// Gives one answer to every question; the sizes that it adjusts grow by one.
struct ProbeCondition : llvm::Transform {
  ProbeCondition(ProbeLog &shared, std::uint32_t kindOfProbe,
                 std::uint32_t coarsened, std::string called, bool answers)
      : Transform(kindOfProbe, coarsened), log(&shared),
        name(std::move(called)), answer(answers) {
    ++log->alive;
  }
  ProbeCondition(const ProbeCondition &other)
      : Transform(other), log(other.log), name(other.name),
        answer(other.answer) {
    ++log->alive;
  }
  ProbeCondition &operator=(const ProbeCondition &) = delete;
  ~ProbeCondition() override { --log->alive; }

  bool acceptsLaunch(std::uint32_t, const std::size_t *,
                     const std::size_t *) const override {
    log->asked.push_back(name);
    return answer;
  }
  void adjustLaunch(std::uint32_t, std::size_t *globalSizes,
                    std::size_t *localSizes) const override {
    log->asked.push_back(name + " saw " + std::to_string(globalSizes[0]));
    ++globalSizes[0];
    ++localSizes[0];
  }
  bool acceptsArgument(std::uint32_t index, std::size_t size,
                       const void *) const override {
    log->asked.push_back(name + " argument " + std::to_string(index) + " of " +
                         std::to_string(size));
    return answer;
  }
  std::string specText() const override { return name; }
  std::unique_ptr<Transform> clone() const override {
    return std::make_unique<ProbeCondition>(*this);
  }
  bool precedes(const Transform &) const override { return false; }

  ProbeLog *log;
  std::string name;
  bool answer;
};

} // namespace corvane::test
