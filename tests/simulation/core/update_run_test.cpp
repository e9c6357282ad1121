#include "updater/update_run.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {
namespace {

constexpr int kNotWritable = 14;

Outcome playWith(Way way, Trigger trigger, Action action) {
    return play(Scenario{settingOf(smallestReleases(), way), {}}.with(std::move(trigger), std::move(action)));
}

Intrusion folderAt(std::string_view path) {
    Intrusion folder;
    folder.kind = Intrusion::Kind::createFolder;
    folder.path = path;
    return folder;
}

// A work folder or a staging folder that is there when it is to be made was not removed, whatever the system said, or is
// somebody else's.

TEST(UpdateRun, AWorkFolderThatStaysThoughItWasSaidToBeGoneIsRefused) {
    const Outcome outcome = playWith(Way::incremental, {Operation::removeEmptyFolder, std::string(place::kWorkFolder)},
                                     Fault{error::fileNotFound});
    EXPECT_EQ(outcome.timesMet.front(), 1U);
    EXPECT_EQ(outcome.code, kNotWritable);
}

TEST(UpdateRun, AWorkFolderThatSomebodyElseMakesIsRefused) {
    const std::pair<std::size_t, std::string_view> moments[] = {
        {0, place::kWorkFolder},  // before the staging folder is tried
        {1, place::kStaging},     // between its two tries, once the work folder is made
    };
    for (const auto& [number, folder] : moments) {
        const Outcome outcome = playWith(
            Way::incremental, {Operation::createFolder, std::string(place::kStaging), number}, folderAt(folder));
        EXPECT_EQ(outcome.answers.front(), error::none);
        EXPECT_EQ(outcome.code, kNotWritable) << folder;
    }
}

TEST(UpdateRun, AStagingFolderThatStaysThoughItWasSaidToBeGoneIsRefused) {
    const Outcome outcome = playWith(Way::complete, {Operation::removeEmptyFolder, std::string(place::kStaging), 1},
                                     Fault{error::fileNotFound});
    EXPECT_EQ(outcome.timesMet.front(), 1U);
    EXPECT_EQ(outcome.code, kNotWritable);
    EXPECT_EQ(outcome.sentence, "Unable to prepare the complete update package.");
}

}  // namespace
}  // namespace vorthmere::update::simulation
