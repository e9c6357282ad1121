#include "updater/download_progress.h"

#include <algorithm>
#include <string>

namespace vorthmere::update {

ByteProgressCallback downloadProgress(const Manifest& manifest, const ProgressCallback& progress) {
    return [&manifest, &progress](std::uint64_t received, std::uint64_t expected) {
        constexpr StepRange range = timetable::downloadingPackage;
        const std::uint64_t whole = expected != 0 ? expected : manifest.size;
        const std::uint64_t share = whole != 0 ? received * 100 / whole : 0;
        const auto percent = static_cast<std::uint32_t>(std::min<std::uint64_t>(share, 100));
        reportProgress(progress, std::wstring(range.text) + L"... " + std::to_wstring(percent) + L"%",
                       percent * range.span / 100 + range.first);
    };
}

}  // namespace vorthmere::update
