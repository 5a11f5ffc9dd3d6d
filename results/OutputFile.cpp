// Hands the stream's buffer to the C library, whose errors end nobody.

#include "results/OutputFile.h"

using namespace corvane;

static constexpr std::size_t bufferSize = 65536;

OutputFile::OutputFile(const std::string &path)
    : file(openFile(path, platform::FileUse::Replace)) {
  SetBufferSize(bufferSize);
}

OutputFile::~OutputFile() { flush(); }

void OutputFile::write_impl(const char *bytes, std::size_t count) {
  position += count;
  if (file)
    (void)platform::writeBytes(file.get(), bytes, count);
}
