#include "transfer/fetch_progress.h"

#include <string>

namespace vorthmere::update {
namespace {

constexpr std::uint32_t kFirstFetchPercent = 12;
constexpr std::uint32_t kFetchPercentSpan = 65;

}  // namespace

void FetchProgress::reportFile(std::uint64_t number, std::uint64_t bytesDone) const {
    const std::uint64_t base = bytes_ == 0 ? 0 : bytesDone * kFetchPercentSpan / bytes_;
    reportProgress(
        progress_,
        L"Downloading changed files (" + std::to_wstring(number) + L" of " + std::to_wstring(files_) + L")...",
        kFirstFetchPercent + static_cast<std::uint32_t>(base));
}

void FetchProgress::reportBytes(std::uint64_t bytesDone) const {
    const std::uint64_t percent = bytes_ == 0 ? 100 : bytesDone * 100 / bytes_;
    reportProgress(progress_, L"Downloading changed files... " + std::to_wstring(percent) + L"%",
                   kFirstFetchPercent + static_cast<std::uint32_t>(percent * kFetchPercentSpan) / 100);
}

}  // namespace vorthmere::update
