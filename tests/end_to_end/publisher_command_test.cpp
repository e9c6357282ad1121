// The command line of kvn-release and its output for a person.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher_fixture.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

using testing::AllOf;
using testing::HasSubstr;

using PublisherCommandTest = PublisherTest;

TEST_F(PublisherCommandTest, HelpNamesTheAddressTheSubcommandsAndTheirOptions) {
    const ToolEnd help = runPublisher({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_THAT(help.output, AllOf(HasSubstr(std::string(update::kDownloadBaseUrl)), HasSubstr("build"),
                                   HasSubstr("check"), HasSubstr("plan"), HasSubstr("Exit codes")));
    EXPECT_THAT(runPublisher({"build", "--help"}).output,
                AllOf(HasSubstr("--release"), HasSubstr("--version"), HasSubstr("--protocol"), HasSubstr("--mandatory"),
                      HasSubstr("--notes"), HasSubstr("--from"), HasSubstr("--channel"), HasSubstr("Example")));
}

TEST_F(PublisherCommandTest, WrongCommandLinesEndWith2) {
    EXPECT_EQ(runPublisher({}).exitCode, 2);
    EXPECT_EQ(runPublisher({"publish"}).exitCode, 2);
    EXPECT_EQ(runPublisher({"build", "--release", "1"}).exitCode, 2);
    EXPECT_EQ(runPublisher({"check", "--channel", "x", "--fast"}).exitCode, 2);
    EXPECT_EQ(runPublisher({"gc", "--channel", "x", "--keep", "0"}).exitCode, 2);
}

TEST_F(PublisherCommandTest, UnknownCommandIsNamed) {
    const ToolEnd end = runPublisher({"publish"});
    EXPECT_EQ(end.exitCode, 2);
    EXPECT_THAT(end.output, HasSubstr("\"publish\" is no command; there are build, check, plan and gc."));
}

TEST_F(PublisherCommandTest, VersionNamesTheAddress) {
    const ToolEnd end = runPublisher({"--version"});
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_THAT(end.output, testing::MatchesRegex("kvn-release [0-9.]+ for https://.*/downloads/\n"));
}

TEST_F(PublisherCommandTest, NumbersThatAreNoneAreRefused) {
    for (const std::string number : {"0", "-1", "+1", "0x2A", "4294967296", "42 ", "one", ""}) {
        std::vector<std::string> arguments = buildArguments(42, game_, channel_);
        arguments[2] = number;
        const ToolEnd end = runPublisher(arguments);
        EXPECT_EQ(end.exitCode, 2) << number;
        EXPECT_EQ(end.output, "kvn-release: --release must be a number from 1 to 4294967295.\n") << number;
    }
    std::vector<std::string> arguments = buildArguments(42, game_, channel_);
    arguments[6] = "65536";
    EXPECT_EQ(runPublisher(arguments).output, "kvn-release: --protocol must be a number from 1 to 65535.\n");
    arguments[6] = "1";
    arguments[4] = "";
    const ToolEnd end = runPublisher(arguments);
    EXPECT_EQ(end.exitCode, 2);
    EXPECT_EQ(end.output, "kvn-release: --version must have 1 to 48 printable ASCII characters.\n");
}

TEST_F(PublisherCommandTest, SummaryTellsWhatPlayersWillFetch) {
    ASSERT_EQ(runPublisher(buildArguments(41, game_, channel_)).exitCode, 0);
    writeFile(game_ / "Vorthmere.exe", "the game, mended");
    const ToolEnd end = runPublisher(buildArguments(42, game_, channel_));
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_THAT(end.output, AllOf(HasSubstr("Release 42 (0.9.3 alpha) is published."), HasSubstr("4 files"),
                                  HasSubstr("distinct objects: 4"), HasSubstr("new objects:      2"),
                                  HasSubstr("complete package: "),
                                  HasSubstr("from release 41: an updater fetches 58 bytes as changed files")));
    // The output is no terminal, so it has only lines, and nothing that draws over itself.
    EXPECT_THAT(end.output, testing::Not(HasSubstr("\r")));
}

TEST_F(PublisherCommandTest, SummaryAndPlanTellThatAnInventoryIsMissing) {
    ASSERT_EQ(runPublisher(buildArguments(41, game_, channel_)).exitCode, 0);
    const std::filesystem::path former = folder_ / "former.files";
    std::filesystem::rename(channel_ / "KVN-release-41.zip.files", former);
    const ToolEnd built = runPublisher(buildArguments(42, game_, channel_));
    EXPECT_EQ(built.exitCode, 0);
    EXPECT_THAT(
        built.output,
        AllOf(HasSubstr("\n  from release 41: what an updater fetches is not known. The inventory of release 41 "
                        "cannot be read: \"KVN-release-41.zip.files\" is missing.\n"),
              testing::Not(HasSubstr("holds no earlier release"))));

    std::filesystem::remove(channel_ / "KVN-release-42.zip.files");
    const ToolEnd planned =
        runPublisher({"plan", "--from", former.string(), "--channel", channel_.string(), "--files"});
    EXPECT_EQ(planned.exitCode, 0);
    EXPECT_THAT(planned.output,
                testing::MatchesRegex("From release 41 to release 42 .*:\n  complete package: .* bytes\n"
                                      "The update takes the complete package: \"KVN-release-42.zip.files\" is "
                                      "missing.\n"));
}

TEST_F(PublisherCommandTest, CheckEndsWith1AndNamesTheFault) {
    ASSERT_EQ(runPublisher(buildArguments(41, game_, channel_)).exitCode, 0);
    EXPECT_EQ(runPublisher({"check", "--channel", channel_.string()}).exitCode, 0);
    std::filesystem::remove(channel_ / "KVN-release-41.zip");
    const ToolEnd end = runPublisher({"check", "--channel", channel_.string()});
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output,
                AllOf(HasSubstr("\"KVN-release-41.zip\" is missing.\n"), HasSubstr("The channel has 1 fault.\n")));
}

}  // namespace
}  // namespace vorthmere::end_to_end
