// Reads whole files that anyone may have put there.

#pragma once

#include "llvm/Support/Error.h"

#include <cstdint>
#include <string>

namespace corvane {

/// The bytes of the regular file \p path, of at most \p limit bytes. Never
/// waits and never follows a link in the last part of the path: links, pipes,
/// devices and folders are refused. The error says in a few words what is wrong
/// with the file, without its name. Any thread.
llvm::Expected<std::string> readRegularFile(const std::string &path,
                                            std::uint64_t limit);

} // namespace corvane
