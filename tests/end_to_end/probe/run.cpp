#include <cstdio>

#include "tests/end_to_end/probe/started_process.h"
#include "tests/end_to_end/probe/subcommands.h"

namespace vorthmere::probe {

int run(Arguments arguments) {
    if (arguments.empty()) return kUsageError;
    const StartedProcess started = startProcess(arguments);
    if (!started.process) return 1;
    std::printf("0x%08lX\n", started.waitForExitCode());
    return 0;
}

}  // namespace vorthmere::probe
