// Has the library write a report of launches that never took place.
//
// makeReport <agent library> [--hostile]: the environment configures the
// library as usual. The rows are in the log as if an application had run.

#include "Rows.h"
#include "tests/host/AgentHost.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include <dlfcn.h>

using namespace corvane;

static bool writeReport(void *library, const std::string &folder,
                        void (*writeRows)(std::ostream &)) {
  const auto load = reinterpret_cast<cl_int (*)(AgentOperations *)>(
      dlsym(library, "clAgent_OnLoad"));
  const auto unload = reinterpret_cast<void (*)(AgentOperations *)>(
      dlsym(library, "clAgent_OnUnload"));
  test::AgentHost host;
  if (!load || !unload || load(host.operations()) != CL_SUCCESS)
    return false;

  std::ofstream log(folder + "/.auto.csv", std::ios::app | std::ios::binary);
  writeRows(log);
  log.close();
  unload(host.operations());
  return !log.fail() && std::filesystem::exists(folder + "/main.html");
}

int main(int count, char **arguments) {
  const char *folder = std::getenv("CORVANE_AUTOTUNE");
  const bool hostile =
      count == 3 && std::strcmp(arguments[2], "--hostile") == 0;
  if (!folder || (count != 2 && !hostile)) {
    std::fprintf(stderr, "usage: CORVANE_AUTOTUNE=... makeReport <library> "
                         "[--hostile]\n");
    return 2;
  }
  // The report of an earlier call must not be taken for this one's.
  std::filesystem::remove_all(std::string(folder) + "/html");
  std::filesystem::remove(std::string(folder) + "/main.html");

  void *library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    std::fprintf(stderr, "%s\n", dlerror());
    return 1;
  }
  // The library stays loaded; otherwise a leak checker would report its lock.
  const bool written =
      writeReport(library, folder,
                  hostile ? test::writeHostileRows : test::writeOrdinaryRows);
  if (!written)
    std::fprintf(stderr, "The library wrote no report to %s\n", folder);
  return written ? 0 : 1;
}
