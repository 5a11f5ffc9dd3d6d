// Fuzzes sequences of calls: the input decides what application and runtime do.

#include "tests/fuzz/sequence/Play.h"

using namespace corvane::fuzz;

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const OutputFolder folder;
  static const corvane::test::TempFolder errorFolder;
  static ErrorText errors(errorFolder.file("stderr.txt"));
  Input input(data, size);
  Play(input, folder, errors).run();
  return 0;
}
