// Opens regular files only, and reads and writes them in large blocks.

#include "results/Files.h"

#include <cstring>

using namespace corvane;
using platform::FileUse;
using Reason = FileError::Reason;

char FileError::ID = 0;

static const char *describe(Reason reason) {
  switch (reason) {
  case Reason::NotOpened:
    return "cannot be opened";
  case Reason::Refused:
    return "is not a regular file";
  case Reason::NotRead:
    return "cannot be read to its end";
  case Reason::LineTooLong:
    return "has a line that is too long";
  case Reason::NotWritten:
    return "cannot be written";
  }
  return "";
}

void FileError::log(llvm::raw_ostream &out) const {
  out << file << ": " << describe(why);
}

std::error_code FileError::convertToErrorCode() const {
  return std::make_error_code(std::errc::io_error);
}

llvm::Error corvane::createFolder(const std::string &path) {
  if (platform::createDirectory(path.c_str()))
    return llvm::Error::success();
  return llvm::make_error<FileError>(path, Reason::NotOpened);
}

static llvm::Error errorOf(const std::string &path,
                           std::optional<Reason> failure) {
  if (!failure)
    return llvm::Error::success();
  return llvm::make_error<FileError>(path, *failure);
}

static platform::FileHandle openFile(const std::string &path, FileUse use,
                                     std::optional<Reason> &failure) {
  platform::OpenedFile opened = platform::openRegularFile(path, use);
  if (!opened.file)
    failure = opened.refused ? Reason::Refused : Reason::NotOpened;
  return std::move(opened.file);
}

static constexpr std::size_t blockSize = 262144;

// No run writes a line of nearly this length. Without a limit a file that lacks
// line feeds would take all memory.
static constexpr std::size_t longestLine = 64 * blockSize;

LineReader::LineReader(const std::string &pathOfFile)
    : path(pathOfFile), file(openFile(path, FileUse::Read, failure)) {
  if (file)
    buffer.resize(blockSize);
}

bool LineReader::fail(Reason reason) {
  failure = reason;
  begin = end;
  file.reset();
  return false;
}

// Moves the bytes that were not handed out to the begin of the buffer and reads
// a block after them. Returns false at the end of the file.
bool LineReader::fill() {
  if (!file)
    return false;
  std::memmove(buffer.data(), buffer.data() + begin, end - begin);
  end -= begin;
  begin = 0;
  if (end == buffer.size()) {
    if (end >= longestLine)
      return fail(Reason::LineTooLong);
    buffer.resize(2 * buffer.size());
  }
  const std::size_t count =
      std::fread(buffer.data() + end, 1, buffer.size() - end, file.get());
  end += count;
  if (count == 0 && std::ferror(file.get()) != 0)
    return fail(Reason::NotRead);
  return count != 0;
}

bool LineReader::next(std::string_view &line) {
  std::size_t searched = 0;
  do {
    const std::string_view rest(buffer.data() + begin, end - begin);
    const std::size_t length = rest.find('\n', searched);
    if (length != std::string_view::npos) {
      begin += length + 1;
      line = rest.substr(0, length);
      return true;
    }
    searched = rest.size();
  } while (fill());

  line = std::string_view(buffer.data() + begin, end - begin);
  begin = end;
  return !line.empty();
}

llvm::Error LineReader::takeError() { return errorOf(path, failure); }

static constexpr std::size_t outputBufferSize = 65536;

OutputFile::OutputFile(const std::string &pathOfFile)
    : path(pathOfFile), file(openFile(path, FileUse::Replace, failure)) {
  SetBufferSize(outputBufferSize);
}

OutputFile::~OutputFile() { flush(); }

llvm::Error OutputFile::finish() {
  flush();
  return errorOf(path, failure);
}

void OutputFile::write_impl(const char *bytes, std::size_t count) {
  position += count;
  if (file && platform::writeBytes(file.get(), bytes, count) != count)
    failure = Reason::NotWritten;
}
