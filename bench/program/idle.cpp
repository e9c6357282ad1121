#include <cstdio>

#include "bench/program/subcommands.h"

namespace vorthmere::bench {

void idle(Arguments) {
    while (std::getchar() != EOF) {
    }
}

}  // namespace vorthmere::bench
