#include "tests/end_to_end/support/channel_run.h"

#include <utility>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "tests/end_to_end/support/run_outcome.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {

ChannelRun::ChannelRun(std::string runName) : manifest(), name(std::move(runName)) {
    manifest = scenario.release.manifestText;
    manifest.url = channelUrl(packageName());
}

std::string ChannelRun::packageName() const {
    return std::string(update::kPackageNamePrefix) + name + std::string(update::kPackageNameSuffix);
}

std::string ChannelRun::inventoryName() const {
    return packageName() + std::string(update::kInventorySuffix);
}

void ChannelRun::start(Expectation expectation) {
    expectation_ = std::move(expectation);
    installationBefore_ = scenario.takeInstallationSnapshot();
    protectedBefore_ = scenario.takeProtectedSnapshot();
    UpdaterCommand command;
    command.install = windowsPath(scenario.installation);
    command.window = true;
    std::vector<std::string> words{"outcome", windowsPath(scenario.installation / update::kUpdaterExecutableName)};
    for (std::string& word : command.arguments())
        words.push_back(std::move(word));
    process_.emplace(wineCommand(probeProgram(), words));
}

void ChannelRun::finish(Milliseconds timeLimit) {
    SCOPED_TRACE(name);
    const ProcessEnd end = process_->wait(timeLimit);
    ASSERT_FALSE(end.killed) << "the run did not end within " << timeLimit.count() << " ms";
    const RunOutcome outcome = readOutcome(*process_);
    EXPECT_EQ(outcome.exitCode, static_cast<std::uint32_t>(expectation_.exitCode)) << outcome.sentence;

    EXPECT_EQ(describeDifferences(protectedBefore_, scenario.takeProtectedSnapshot()), "")
        << "the updater touched what is not its business";
    if (expectation_.exitCode == 0) {
        expectUpdated();
    } else {
        EXPECT_THAT(outcome.sentence, expectation_.sentence);
        expectUntouched();
    }
}

void ChannelRun::expectUntouched() const {
    EXPECT_EQ(describeDifferences(installationBefore_, scenario.takeInstallationSnapshot()), "");
}

void ChannelRun::expectUpdated() const {
    EXPECT_EQ(scenario.differencesFrom(scenario.offered), "");
    EXPECT_THAT(readFile(scenario.workFolder / "transfer.txt"),
                update::testing::reports({{"mode", expectation_.transferMode}}));
}

}  // namespace vorthmere::end_to_end
