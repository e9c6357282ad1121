#include "updater/abnormal_end.h"

#include <windows.h>

#include <cstdlib>

#include "update/exit_code.h"

namespace vorthmere::update {

void endAbnormally() noexcept {
    static_assert(kAbnormalExitCode == STATUS_FATAL_APP_EXIT);
    TerminateProcess(GetCurrentProcess(), kAbnormalExitCode);
    std::abort();
}

}  // namespace vorthmere::update
