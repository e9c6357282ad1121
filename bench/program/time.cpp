#include <stdexcept>

#include "bench/program/started_program.h"
#include "bench/program/stopwatch.h"
#include "bench/program/subcommands.h"

namespace vorthmere::bench {

void timeProgram(Arguments arguments) {
    const Stopwatch stopwatch;
    const DWORD exitCode = runProgram(arguments);
    const double seconds = stopwatch.seconds();
    if (exitCode != 0) throw std::runtime_error("the program ended with exit code " + std::to_string(exitCode));
    printSeconds(seconds);
}

}  // namespace vorthmere::bench
