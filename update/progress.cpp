#include "update/progress.h"

#include <algorithm>
#include <utility>

namespace vorthmere::update {

void reportProgress(const ProgressCallback& progress, std::wstring text, std::uint32_t percent) {
    if (progress) progress(std::move(text), std::min(percent, kWholePercent));
}

void reportStep(const ProgressCallback& progress, const Step& step) {
    reportProgress(progress, std::wstring(step.text), step.percent);
}

}  // namespace vorthmere::update
