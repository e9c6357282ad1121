#include "update/progress.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace vorthmere::update {
namespace {

using Reports = std::vector<std::pair<std::wstring, std::uint32_t>>;

TEST(Progress, ReachesTheCallbackWithPercentagesCappedAt100) {
    Reports reports;
    const ProgressCallback progress = [&reports](std::wstring text, std::uint32_t percent) {
        reports.emplace_back(std::move(text), percent);
    };
    reportProgress(progress, L"none", 0);
    reportProgress(progress, L"some", 65);
    reportProgress(progress, L"nearly", 99);
    reportProgress(progress, L"all", 100);
    reportProgress(progress, L"more", 101);
    reportProgress(progress, L"", std::numeric_limits<std::uint32_t>::max());
    EXPECT_EQ(reports,
              (Reports{{L"none", 0}, {L"some", 65}, {L"nearly", 99}, {L"all", 100}, {L"more", 100}, {L"", 100}}));
}

TEST(Progress, GoesNowhereWithoutACallback) {
    EXPECT_NO_THROW(reportProgress(ProgressCallback(), L"Installing the new release...", 94));
    EXPECT_NO_THROW(reportProgress(nullptr, L"Installing the new release...", 94));
}

}  // namespace
}  // namespace vorthmere::update
