// A file to write a page or a table into.

#pragma once

#include "results/File.h"

#include "llvm/Support/raw_ostream.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane {

/// Replaces the file and writes bytes as they are. When it cannot be opened or
/// written, what it gets is dropped in silence. LLVM's own file stream would
/// end the application's process for an error that nobody looked at.
class OutputFile : public llvm::raw_ostream {
public:
  explicit OutputFile(const std::string &path);
  ~OutputFile() override;

private:
  void write_impl(const char *bytes, std::size_t count) override;
  std::uint64_t current_pos() const override { return position; }

  platform::FileHandle file; ///< null: drop everything
  std::uint64_t position = 0;
};

} // namespace corvane
