#include <cstdio>

#include "bench/program/subcommands.h"

namespace vorthmere::bench {

void idle(Arguments) {
    std::puts("idle");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
}

}  // namespace vorthmere::bench
