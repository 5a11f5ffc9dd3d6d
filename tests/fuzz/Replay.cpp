// Tries the inputs that are kept, one after the other, in builds that do not
// search for new ones: <target> FILE_OR_FOLDER...

#include "tests/fuzz/Input.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace fs = std::filesystem;

// The files in the same order on every system.
static std::vector<fs::path> inputsIn(const fs::path &given) {
  if (!fs::is_directory(given))
    return {given};
  std::vector<fs::path> files;
  for (const auto &entry : fs::directory_iterator(given))
    if (entry.is_regular_file())
      files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

static bool replay(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "%s cannot be read\n", file.string().c_str());
    return false;
  }
  const std::string bytes(std::istreambuf_iterator<char>(in), {});
  std::printf("%s\n", file.filename().string().c_str());
  std::fflush(stdout); // so that the last line names the input that fails
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()),
                         bytes.size());
  return true;
}

int main(int count, char **arguments) {
  std::size_t tried = 0;
  for (int i = 1; i < count; ++i)
    for (const fs::path &file : inputsIn(arguments[i])) {
      if (!replay(file))
        return 1;
      ++tried;
    }
  if (tried == 0)
    std::fprintf(stderr, "There were no inputs.\n");
  return tried == 0 ? 1 : 0;
}
