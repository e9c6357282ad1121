#include <gmock/gmock.h>

#include "tests/support/report_fields.h"
#include "tests/support/sample_metadata.h"
#include "tests/support/update_run_fixture.h"
#include "updater/update_run.h"

namespace vorthmere::update {
namespace {

using testing::FileTree;
using testing::namesIn;
using testing::readFile;
using testing::readTree;
using testing::RecordedProgress;
using testing::reports;

using Steps = std::vector<RecordedProgress::Step>;

using UpdateRunProgressTest = testing::UpdateRunTest;

const Steps kHandOver{{L"Waiting for Kelvane to close...", 88},
                      {L"Installing the new release...", 94},
                      {L"Launching Kelvane...", 98},
                      {L"Update complete. Welcome back, pilot.", 100}};

Steps joined(Steps first, const Steps& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST_F(UpdateRunProgressTest, ACurrentInstallationTakesTwoSteps) {
    publishSampleRelease();
    for (const std::uint32_t current : {42u, 43u, 4294967295u}) {
        RecordedProgress steps;
        arguments.currentRelease = current;
        EXPECT_EQ(runUpdate(arguments, error, steps.callback()), 0) << current;
        EXPECT_EQ(steps.steps(),
                  (Steps{{L"Checking the alpha channel...", 5}, {L"This installation is already current.", 100}}));
    }
    EXPECT_EQ(error, L"");
    EXPECT_EQ(installedFiles(), oldFiles);
}

TEST_F(UpdateRunProgressTest, ACurrentInstallationKeepsTheWorkFolderAndCreatesNone) {
    publishSampleRelease();
    arguments.currentRelease = 42;
    EXPECT_EQ(run(), 0);
    EXPECT_FALSE(std::filesystem::exists(work));
    testing::writeFile(work / L"backup" / L"old", "from before");
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(readTree(work), (FileTree{{"backup/old", "from before"}}));
}

TEST_F(UpdateRunProgressTest, AnIncrementalUpdateTakesTheseSteps) {
    publishSampleRelease();
    release->offerObjects(arguments);
    std::filesystem::remove(release->packageFile);
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(error, L"");
    std::uint64_t total = 0;
    const Steps::value_type::first_type ofFour = L" of 4)...";
    Steps expected{{L"Checking the alpha channel...", 5}, {L"Checking installed files...", 9}};
    const std::vector<std::string> changed{"KVNUpdater.exe", "Vorthmere.exe", "data/maps/first map.pak",
                                           "kvn_release.txt"};
    for (const std::string& path : changed)
        total += newFiles.at(path).size();
    std::uint64_t done = 0;
    for (std::size_t i = 0; i < changed.size(); ++i) {
        expected.emplace_back(L"Downloading changed files (" + std::to_wstring(i + 1) + ofFour, 12 + done * 65 / total);
        done += newFiles.at(changed[i]).size();
    }
    expected.emplace_back(L"Changed files verified; unchanged files reused.", 84);
    EXPECT_EQ(progress.steps(), joined(expected, kHandOver));
    EXPECT_EQ(installedFiles(), newFiles);
    EXPECT_THAT(readFile(work / L"transfer.txt"), reports({{"mode", "incremental"}, {"bytes", std::to_string(total)}}));
}

TEST_F(UpdateRunProgressTest, ACompleteUpdateTakesTheseSteps) {
    publishSampleRelease();
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(error, L"");
    EXPECT_EQ(progress.steps(), joined({{L"Checking the alpha channel...", 5},
                                        {L"Preparing the complete update package...", 12},
                                        {L"Preparing the verified update package...", 35},
                                        {L"Verifying package integrity...", 68},
                                        {L"Inspecting the update package...", 75},
                                        {L"Unpacking updated game files...", 81}},
                                       kHandOver));
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunProgressTest, AFailedIncrementalUpdateFallsBackWithoutAWord) {
    publishSampleRelease();
    release->offerObjects(arguments);
    const std::string content = newFiles.at("Vorthmere.exe");
    testing::writeFile(release->objectOf(content), std::string(content.size(), 'x'));
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(error, L"");
    ASSERT_GT(progress.steps().size(), 4u);
    EXPECT_EQ(progress.steps()[1], RecordedProgress::Step(L"Checking installed files...", 9));
    EXPECT_EQ(progress.steps()[2], RecordedProgress::Step(L"Downloading changed files (1 of 4)...", 12));
    EXPECT_EQ(progress.steps()[3].first, L"Downloading changed files (2 of 4)...");
    EXPECT_EQ(progress.steps()[4], RecordedProgress::Step(L"Preparing the complete update package...", 12));
    EXPECT_EQ(installedFiles(), newFiles);
    EXPECT_THAT(readFile(work / L"transfer.txt"), reports({{"mode", "full"}}));
}

TEST_F(UpdateRunProgressTest, AFallbackThatFailsShowsThePackagesFaultNotTheObjects) {
    publishSampleRelease();
    release->offerObjects(arguments);
    std::filesystem::remove_all(release->objectDirectory);
    std::filesystem::remove(release->packageFile);
    expectFailure(16, L"Unable to stage the local update package.");
}

TEST_F(UpdateRunProgressTest, AfterACompleteUpdateTheWorkFolderHoldsTheBackupAndTheReport) {
    publishSampleRelease();
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(namesIn(work), (std::set<std::string>{"backup", "transfer.txt"}));
    EXPECT_EQ(readTree(work / L"backup"), oldFiles);
    const auto packageBytes = std::filesystem::file_size(release->packageFile);
    EXPECT_THAT(readFile(work / L"transfer.txt"), reports({{"mode", "full"}, {"bytes", std::to_string(packageBytes)}}));
}

TEST_F(UpdateRunProgressTest, AfterAnIncrementalUpdateTheInventoryStays) {
    publishSampleRelease();
    release->offerObjects(arguments);
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(namesIn(work), (std::set<std::string>{"backup", "inventory.txt", "transfer.txt"}));
    EXPECT_EQ(readTree(work / L"backup"), oldFiles);
}

TEST_F(UpdateRunProgressTest, AReadOnlyPackageLeavesNothingBehindEither) {
    publishSampleRelease();
    std::filesystem::permissions(release->packageFile, std::filesystem::perms::owner_read);
    ASSERT_EQ(run(), 0);
    EXPECT_EQ(namesIn(work), (std::set<std::string>{"backup", "transfer.txt"}));
}

TEST_F(UpdateRunProgressTest, WithoutACallbackTheRunIsTheSame) {
    publishSampleRelease();
    EXPECT_EQ(runUpdate(arguments, error, {}), 0);
    EXPECT_EQ(installedFiles(), newFiles);
}

TEST_F(UpdateRunProgressTest, AnEarlierErrorTextIsLeftAloneOnSuccess) {
    publishSampleRelease();
    arguments.currentRelease = 42;
    error = L"earlier";
    EXPECT_EQ(runUpdate(arguments, error, progress.callback()), 0);
    EXPECT_EQ(error, L"earlier");
}

}  // namespace
}  // namespace vorthmere::update
