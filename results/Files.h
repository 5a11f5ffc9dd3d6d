// Reads files line by line and writes files, with errors that can be shown.

#pragma once

#include "base/Platform.h"

#include "llvm/Support/Error.h"
#include "llvm/Support/raw_ostream.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace corvane {

/// Why a file could not be used.
class FileError : public llvm::ErrorInfo<FileError> {
public:
  enum class Reason {
    NotOpened,
    Refused, ///< a link, a pipe or a device is in its place
    NotRead,
    LineTooLong,
    NotWritten
  };

  FileError(std::string pathOfFile, Reason whatHappened)
      : file(std::move(pathOfFile)), why(whatHappened) {}

  const std::string &path() const { return file; }
  Reason reason() const { return why; }

  /// "PATH: cannot be opened".
  void log(llvm::raw_ostream &out) const override;
  std::error_code convertToErrorCode() const override;
  static char ID; // NOLINT(readability-identifier-naming): LLVM's name

private:
  std::string file;
  Reason why;
};

/// Creates one level of folders, or finds it there.
llvm::Error createFolder(const std::string &path);

/// The lines of a file of any bytes.
class LineReader {
public:
  explicit LineReader(const std::string &path);

  /// Puts the next line into \p line, without its line feed, which the last
  /// line may lack. The text lasts until the next call. False at the end of the
  /// file, or after an error, for good.
  bool next(std::string_view &line);

  /// What ended the lines before the end of the file. Call it once, after next
  /// has returned false.
  llvm::Error takeError();

private:
  bool fill();
  bool fail(FileError::Reason reason);

  std::string path;
  std::optional<FileError::Reason> failure;
  platform::FileHandle file; ///< null: there are no (more) lines
  std::vector<char> buffer;  ///< grows only for a line that does not fit
  std::size_t begin = 0;     ///< of the bytes that were not handed out yet
  std::size_t end = 0;       ///< of the bytes that were read
};

/// Writes a file anew, over the one that was there. Bytes are written as they
/// are; those that cannot be written are dropped. LLVM's own file stream would
/// end the process for an error that was not looked at.
class OutputFile : public llvm::raw_ostream {
public:
  explicit OutputFile(const std::string &path);
  ~OutputFile() override;

  /// Writes what is left and returns the first thing that went wrong.
  llvm::Error finish();

private:
  void write_impl(const char *bytes, std::size_t count) override;
  std::uint64_t current_pos() const override { return position; }

  std::string path;
  std::optional<FileError::Reason> failure;
  platform::FileHandle file; ///< null: drop everything
  std::uint64_t position = 0;
};

} // namespace corvane
