// Tells in one line what a profile has done.

#include "session/ProfileSummary.h"

#include "agent/ErrorStream.h"

#include <string>

using namespace corvane;

void ProfileSummary::tell() const {
  if (configurations == 0)
    return writeError("CV: no kernel with variants was launched.\n");
  const auto text = [](std::uint64_t number) { return std::to_string(number); };
  writeError("CV: " + text(withVariant) + " of " + text(configurations) +
             " configurations ran a variant, in " + text(byVariant) + " of " +
             text(launches) +
             " launches; unknown to the profile: " + text(unknown) + ".\n");
}
