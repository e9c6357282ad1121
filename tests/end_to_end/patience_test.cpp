#include "tests/end_to_end/support/base_fixture.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

class PatienceTest : public EndToEndTest {};

TEST_F(PatienceTest, AGameThatStaysOpenForTwoMinutesEndsTheRun) {
    const OpenGame game;
    UpdaterCommand command = this->command(Source::incremental);
    command.parent = game.processId();
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    ChildProcess updater = startUpdater(command);
    const ProcessEnd end = updater.wait(Milliseconds(200'000));
    EXPECT_EQ(end.exitCode, 26);
    EXPECT_GE(end.duration, Milliseconds(119'900));
    EXPECT_LT(end.duration, Milliseconds(150'000));
    finishRun();
    expectInstallation(before);
    EXPECT_FALSE(fs::exists(scenario.workFolder / "backup"));
}

}  // namespace
}  // namespace vorthmere::end_to_end
