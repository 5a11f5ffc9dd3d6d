// Cuts a buffer at its line feeds and refills it behind what is left.

#include "results/LineReader.h"

#include <cstring>

using namespace corvane;

static constexpr std::size_t blockSize = 262144;

LineReader::LineReader(const std::string &path)
    : file(openFile(path, platform::FileUse::Read)) {
  if (file)
    buffer.resize(blockSize);
}

// Makes room and reads a block; false at the end of the file.
bool LineReader::fill() {
  if (!file)
    return false;
  std::memmove(buffer.data(), buffer.data() + begin, end - begin);
  end -= begin;
  begin = 0;
  if (end == buffer.size())
    buffer.resize(2 * buffer.size());
  const std::size_t count =
      std::fread(buffer.data() + end, 1, buffer.size() - end, file.get());
  end += count;
  return count != 0;
}

std::optional<std::string_view> LineReader::next() {
  std::size_t searched = 0;
  do {
    const std::string_view rest(buffer.data() + begin, end - begin);
    const std::size_t length = rest.find('\n', searched);
    if (length != std::string_view::npos) {
      begin += length + 1;
      return rest.substr(0, length);
    }
    searched = rest.size();
  } while (fill());

  const std::string_view last(buffer.data() + begin, end - begin);
  begin = end;
  if (last.empty())
    return std::nullopt;
  return last;
}
