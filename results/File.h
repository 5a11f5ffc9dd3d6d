// Opens the files of the results.

#pragma once

#include "base/Platform.h"

#include <string>

namespace corvane {

/// Opens a regular file as platform::openRegularFile does; null when that
/// fails. Anything but a file or folder in its place is refused, and one line
/// on the error stream says so. Any thread, holding any lock.
platform::FileHandle openFile(const std::string &path, platform::FileUse use);

} // namespace corvane
