// What the file of a DLL imports and exports, and its version.

#pragma once

#include <string>
#include <vector>

namespace corvane::test {

/// The tables of a DLL in the running program's folder. A file that cannot be
/// read as a DLL fails the test.
class DllFile {
public:
  explicit DllFile(const std::string &name);
  ~DllFile();
  DllFile(const DllFile &) = delete;
  DllFile &operator=(const DllFile &) = delete;

  std::vector<std::string> imported() const; ///< names of other DLLs
  std::vector<std::string> exported() const; ///< names of functions

  /// A text of the version resource, such as "FileVersion"; empty without it.
  std::string versionText(const std::string &key) const;

  /// The version in numbers, "1.0.0.0".
  std::string versionNumber() const;

private:
  template <typename Table> const Table *table(unsigned index) const;
  const char *textAt(unsigned long offset) const;
  std::vector<char> versionResource() const;

  std::string path;
  void *library = nullptr;
};

} // namespace corvane::test
