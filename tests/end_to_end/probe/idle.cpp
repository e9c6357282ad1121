#include <windows.h>

#include <cstdio>

#include "tests/end_to_end/probe/subcommands.h"

namespace vorthmere::probe {

int idle(Arguments) {
    std::printf("%lu\n", GetCurrentProcessId());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

}  // namespace vorthmere::probe
