// Asks for the console by the calls of Windows.

#include "tools/corvane/Terminal.h"

#include <windows.h>

using namespace corvane;

static bool takesEscapes(HANDLE console) {
  constexpr DWORD virtualTerminal = 0x0004;
  DWORD mode = 0;
  return GetConsoleMode(console, &mode) &&
         ((mode & virtualTerminal) != 0 ||
          SetConsoleMode(console, mode | virtualTerminal));
}

std::optional<TerminalSize> corvane::errorTerminal() {
  const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
  CONSOLE_SCREEN_BUFFER_INFO info = {};
  if (!takesEscapes(console) || !GetConsoleScreenBufferInfo(console, &info))
    return std::nullopt;
  const SMALL_RECT &window = info.srWindow;
  return TerminalSize{static_cast<unsigned>(window.Bottom - window.Top + 1),
                      static_cast<unsigned>(window.Right - window.Left + 1)};
}

void corvane::writeToTerminal(llvm::StringRef bytes) {
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), bytes.data(),
            static_cast<DWORD>(bytes.size()), &written, nullptr);
}

std::thread corvane::startThread(std::function<void()> work) {
  return std::thread(std::move(work));
}
