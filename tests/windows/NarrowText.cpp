// Letters outside ASCII as programs with char get them.

#include "tests/windows/NarrowText.h"

#include <windows.h>

std::string corvane::test::narrow(const std::wstring &text) {
  std::string bytes(4 * text.size(), '\0');
  BOOL lacking = FALSE;
  const int length = WideCharToMultiByte(
      CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()),
      bytes.data(), static_cast<int>(bytes.size()), nullptr, &lacking);
  if (lacking)
    return "";
  bytes.resize(static_cast<std::size_t>(length));
  return bytes;
}
