// Launches kernels and all variants of them that corvane-coarsen makes, and
// compares every byte of every buffer.
//
//   compareVariants PLANS FILE.cl...
//
// Prints one line for each difference. Every variant must have been launched by
// one of the launches that the file names, unless the file says "partly".
#include "tests/coarsening/Comparison.h"

#include <iostream>

int main(int argc, char **argv) {
  if (argc < 3) {
    std::cerr << "usage: compareVariants PLANS FILE.cl...\n";
    return 2;
  }
  corvane::test::Comparison comparison(COARSENER_FILE, argv[1]);
  for (int i = 2; i < argc; ++i)
    comparison.compareFile(argv[i]);
  std::cout << comparison.summary() << "\n";
  return comparison.failures() == 0 && comparison.launches() > 0 ? 0 : 1;
}
