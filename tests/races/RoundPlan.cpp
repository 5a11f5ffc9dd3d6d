// Reads the variables that choose the rounds.

#include "tests/races/RoundPlan.h"

#include <cstdlib>
#include <ostream>
#include <random>

using namespace corvane::test;

static const char *turnText(Turn turn) {
  switch (turn) {
  case Turn::None:
    return "no turn";
  case Turn::ContextReleases:
    return "context releases";
  case Turn::Unload:
    return "an unload";
  case Turn::SecondLoad:
    return "a second load";
  case Turn::UnloadAndLoad:
    return "an unload and a load";
  case Turn::ContextAndUnload:
    return "context releases and an unload";
  }
  return "";
}

std::string corvane::test::nameOf(Mode mode) {
  switch (mode) {
  case Mode::Normal:
    return "Normal";
  case Mode::Profiled:
    return "Profiled";
  case Mode::Autotuning:
    return "Tuned";
  case Mode::Measuring:
    return "Measured";
  }
  return "";
}

std::string corvane::test::textOf(const RoundPlan &plan) {
  return nameOf(plan.mode) + ", " + (plan.atOnce ? "at once" : "late") + ", " +
         turnText(plan.turn) +
         ", CORVANE_RACES_SEED=" + std::to_string(plan.seed);
}

void corvane::test::PrintTo(const RoundPlan &plan, std::ostream *out) {
  *out << textOf(plan);
}

// The variable as a number; zero without it.
static unsigned numberFrom(const char *variable) {
  const char *value = std::getenv(variable);
  return value ? static_cast<unsigned>(std::strtoul(value, nullptr, 10)) : 0;
}

unsigned corvane::test::wantedRounds() {
  const unsigned wanted = numberFrom("CORVANE_RACES_ROUNDS");
  return wanted != 0 ? wanted : 5;
}

unsigned corvane::test::firstSeed() {
  const unsigned wanted = numberFrom("CORVANE_RACES_SEED");
  return wanted != 0 ? wanted : std::random_device()() % 1000000 + 1;
}
