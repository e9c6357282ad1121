#include "publisher/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace vorthmere::publish {

bool outputIsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

unsigned outputWidth() {
    constexpr unsigned kUsualWidth = 80;
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col != 0 ? size.ws_col : kUsualWidth;
}

}  // namespace vorthmere::publish
