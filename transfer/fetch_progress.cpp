#include "transfer/fetch_progress.h"

#include <string>

namespace vorthmere::update {
namespace {

constexpr StepRange kRange = timetable::fetchingChangedFiles;

}  // namespace

void FetchProgress::reportFile(std::uint64_t number, std::uint64_t bytesDone) const {
    const std::uint64_t base = bytes_ == 0 ? 0 : bytesDone * kRange.span / bytes_;
    const std::wstring count = std::to_wstring(number) + L" of " + std::to_wstring(files_);
    reportProgress(progress_, std::wstring(kRange.text) + L" (" + count + L")...",
                   kRange.first + static_cast<std::uint32_t>(base));
}

void FetchProgress::reportBytes(std::uint64_t bytesDone) const {
    const std::uint64_t percent = bytes_ == 0 ? 100 : bytesDone * 100 / bytes_;
    reportProgress(progress_, std::wstring(kRange.text) + L"... " + std::to_wstring(percent) + L"%",
                   kRange.first + static_cast<std::uint32_t>(percent * kRange.span) / 100);
}

}  // namespace vorthmere::update
