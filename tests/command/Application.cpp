// The program that corvane runs in tests, in place of one that uses OpenCL. Its
// arguments say what it does, one thing after the other.
//
//   print VARIABLE       writes "VARIABLE=value", or "no VARIABLE"
//   say TEXT             writes the text, with a line feed
//   record NAME FILE     leaves FILE as the record of a run called NAME
//   exit CODE, raise N   ends, by a signal
//   await                writes "ready" and ends with 7 when SIGTERM comes

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace fs = std::filesystem;

static void print(const char *name) {
  const char *const value = std::getenv(name);
  std::printf(value ? "%s=%s\n" : "no %s\n", name, value);
}

static void record(const char *name, const char *file) {
  const char *const folder = std::getenv("CORVANE_TUNE");
  const fs::path run = fs::path(folder ? folder : "") / "runs" / name;
  fs::create_directories(run);
  fs::copy_file(file, run / "run.jsonl");
}

#ifndef _WIN32
static void endBySignal(int) { ::_exit(7); }

static void await() {
  std::signal(SIGTERM, endBySignal);
  std::puts("ready");
  std::fflush(stdout);
  while (true)
    ::pause();
}
#else
static void await() {}
#endif

int main(int count, char **arguments) {
  for (int i = 1; i < count; ++i) {
    const std::string what = arguments[i];
    const auto next = [&] { return i + 1 < count ? arguments[++i] : ""; };
    if (what == "print") {
      print(next());
    } else if (what == "say") {
      std::puts(next());
    } else if (what == "record") {
      const char *const name = next();
      record(name, next());
    } else if (what == "exit") {
      return std::atoi(next());
    } else if (what == "raise") {
      std::fflush(stdout);
      std::raise(std::atoi(next()));
    } else if (what == "await") {
      await();
    } else {
      std::fprintf(stderr, "unknown: %s\n", what.c_str());
      return 99;
    }
  }
  return 0;
}
