#include "updater/worker.h"

#include <memory>
#include <string>
#include <utility>

#include "updater/posted_record.h"
#include "updater/update_run.h"

namespace vorthmere::update {

void runWorker(Arguments arguments, HWND window) noexcept {
    auto outcome = std::make_unique<OutcomeRecord>();
    outcome->code = runUpdate(std::move(arguments), outcome->text, progressPoster(window));
    postRecord(window, std::move(outcome));
}

ProgressCallback progressPoster(HWND window) {
    return [window](std::wstring text, std::uint32_t percent) {
        postRecord(window, std::make_unique<ProgressRecord>(ProgressRecord{std::move(text), percent}));
    };
}

}  // namespace vorthmere::update
