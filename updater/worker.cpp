#include "updater/worker.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <utility>

#include "update/exit_code.h"
#include "updater/posted_record.h"
#include "updater/update_run.h"

namespace vorthmere::update {

void runWorker(Arguments arguments, HWND window) noexcept {
    // Some C libraries keep a terminate handler for each thread.
    std::set_terminate(endAbnormally);
    auto outcome = std::make_unique<OutcomeRecord>();
    outcome->code = runUpdate(std::move(arguments), outcome->text, progressPoster(window));
    postRecord(window, std::move(outcome));
}

ProgressCallback progressPoster(HWND window) {
    return [window, shown = ProgressRecord()](std::wstring text, std::uint32_t percent) mutable {
        if (text == shown.text && percent == shown.percent) return;
        ProgressRecord step{std::move(text), percent};
        if (postRecord(window, std::make_unique<ProgressRecord>(step))) shown = std::move(step);
    };
}

void endAbnormally() noexcept {
    static_assert(kAbnormalExitCode == STATUS_FATAL_APP_EXIT);
    TerminateProcess(GetCurrentProcess(), kAbnormalExitCode);
    std::abort();
}

}  // namespace vorthmere::update
