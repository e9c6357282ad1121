// Takes two minutes, as long as the updater waits, so it is a separate program that runs beside the other tests.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/update_run_fixture.h"

namespace vorthmere::update {
namespace {

using GameExitTimeoutTest = testing::UpdateRunTest;

TEST_F(GameExitTimeoutTest, Code26AGameThatKeepsRunningForTwoMinutesLeavesEverythingAsItWas) {
    publishSampleRelease();
    const testing::NamedEvent mayEnd;
    const testing::ChildProcess game(testing::childProgram(), {L"wait", mayEnd.name()});
    arguments.parentProcessId = game.id();
    ULONGLONG begin = 0;
    progress.at(L"Waiting for Kelvane to close...", [&] { begin = GetTickCount64(); });
    expectFailure(26, L"The game did not close within two minutes.");
    const ULONGLONG waited = GetTickCount64() - begin;
    EXPECT_GE(waited, 119900u);
    EXPECT_LT(waited, 150000u);
    EXPECT_FALSE(game.hasEnded());
    EXPECT_EQ(progress.lastText(), L"Waiting for Kelvane to close...");
    EXPECT_FALSE(std::filesystem::exists(work / L"backup"));
}

}  // namespace
}  // namespace vorthmere::update
