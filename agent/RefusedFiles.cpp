// Tells the user once of each file that was refused.

#include "agent/RefusedFiles.h"

#include "agent/DebugLog.h"

#include <mutex>
#include <set>

using namespace corvane;

// A row that finds its log replaced would say so at each launch.
static bool isFirstTime(const std::string &path) {
  static std::mutex lock;
  // Never destroyed: a file may be refused while the process ends.
  static auto &reported = *new std::set<std::string>;
  // Never waited for: a thread that is gone by now may hold it.
  const std::unique_lock<std::mutex> guard(lock, std::try_to_lock);
  return guard.owns_lock() && reported.insert(path).second;
}

void corvane::reportRefusedFile(const std::string &path) {
  if (isFirstTime(path))
    writeError("CV: " + path + " is not a regular file and is not used.\n");
}
