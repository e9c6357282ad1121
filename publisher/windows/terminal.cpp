#include "publisher/terminal.h"

#include <windows.h>

namespace vorthmere::publish {

bool outputIsTerminal() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

unsigned outputWidth() {
    constexpr unsigned kUsualWidth = 80;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info)) return kUsualWidth;
    return static_cast<unsigned>(info.srWindow.Right - info.srWindow.Left + 1);
}

}  // namespace vorthmere::publish
