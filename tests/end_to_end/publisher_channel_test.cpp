// How kvn-release treats a damaged or unusual channel.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/child_process.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher_fixture.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using PublisherChannelTest = PublisherTest;

TEST_F(PublisherChannelTest, LinkToAFolderThatIsNotMountedIsRefusedAndStays) {
    fs::create_directory_symlink(folder_ / "not mounted", channel_);
    for (int attempt = 0; attempt < 2; ++attempt) {
        const ToolEnd end = build(41);
        EXPECT_EQ(end.exitCode, 1);
        EXPECT_THAT(end.output, HasSubstr("is a link that leads nowhere"));
        EXPECT_TRUE(fs::is_symlink(channel_));
    }
}

TEST_F(PublisherChannelTest, LinkToAFolderIsPublishedInto) {
    fs::create_directory(folder_ / "mounted");
    fs::create_directory_symlink(folder_ / "mounted", channel_);
    publish(41);
    EXPECT_TRUE(fs::exists(folder_ / "mounted" / update::kManifestName));
}

TEST_F(PublisherChannelTest, FileThatWasAFolderIsRefusedForEveryOlderRelease) {
    writeFile(game_ / "data/level.pak", "level");
    publish(41);
    fs::remove_all(game_ / "data");
    publish(42);
    writeFile(game_ / "DATA", "all levels");
    const ToolEnd end = build(43);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, AllOf(HasSubstr("\"DATA\" is a file in release 43 and the folder of \"data/level.pak\" in "
                                            "release 41: players who have release 41 cannot install this one."),
                                  Not(HasSubstr("release 42:"))));
    EXPECT_THAT(check().output, HasSubstr("is sound"));
}

TEST_F(PublisherChannelTest, FolderThatWasAFileIsRefusedUnlessItIsAllowed) {
    writeFile(game_ / "data", "all levels");
    publish(41);
    fs::remove(game_ / "data");
    writeFile(game_ / "data/level.pak", "level");
    const std::string fault =
        "\"data\" is a file in release 41 and the folder of \"data/level.pak\" in release 42: players who have "
        "release 41 do not get it back when this one's game does not start.";
    ToolEnd end = build(42);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, HasSubstr(fault + " Use another name"));

    end = build(42, {"--allow-folder-changes"});
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_THAT(end.output, HasSubstr("Note: " + fault));
    end = check();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, HasSubstr(fault));
    EXPECT_EQ(check({"--allow-folder-changes"}).exitCode, 0);
}

TEST_F(PublisherChannelTest, OfTwoFirstBuildsAtOnceOneSucceeds) {
    constexpr int kRounds = 10;
    for (int round = 0; round < kRounds; ++round) {
        fs::remove_all(folder_ / "new");
        const fs::path channel = folder_ / "new/channel";
        const std::vector<std::string> command = publisherCommand(buildArguments(41, game_, channel));
        ProcessOptions options;
        options.outputFile = folder_ / "first output";
        ChildProcess first(command, options);
        options.outputFile = folder_ / "second output";
        ChildProcess second(command, options);
        const int firstCode = first.wait(Milliseconds(60'000)).exitCode;
        const int secondCode = second.wait(Milliseconds(60'000)).exitCode;
        ASSERT_TRUE(firstCode == 0 || secondCode == 0)
            << "round " << round << "\n"
            << readFile(folder_ / "first output") << readFile(folder_ / "second output");
        ASSERT_TRUE(fs::exists(channel / update::kManifestName));
        ASSERT_FALSE(fs::exists(channel / ".kvn-release-work"));
    }
}

TEST_F(PublisherChannelTest, PackageDependsNeitherOnProcessorsNorOnWhatIsTakenFromAnother) {
    std::string text;
    for (int number = 0; text.size() < 6'000'000; ++number)
        text += std::to_string(number);
    writeFile(game_ / "data/text.pak", text);
    publish(41);
    publish(42);
    const std::string package = readFile(channel_ / "KVN-release-42.zip");
    fs::remove_all(channel_);
    std::vector<std::string> command{"/usr/bin/taskset", "--cpu-list", "0", publisherProgram()};
    for (const std::string& argument : buildArguments(42, game_, channel_))
        command.push_back(argument);
    ProcessOptions options;
    options.outputFile = folder_ / "output";
    EXPECT_EQ(ChildProcess(command, options).wait(Milliseconds(60'000)).exitCode, 0);
    EXPECT_EQ(readFile(channel_ / "KVN-release-42.zip") == package, true);
}

TEST_F(PublisherChannelTest, NumbersOutliveALostManifest) {
    publish(50);
    const std::string package = readFile(channel_ / "KVN-release-50.zip");
    fs::remove(channel_ / update::kManifestName);

    ToolEnd end = build(42);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, HasSubstr("The channel holds \"KVN-release-50.zip\""));

    writeFile(game_ / "Vorthmere.exe", "the game, changed");
    end = build(50);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, HasSubstr("The channel has lost its manifest, and \"KVN-release-50.zip\" holds something "
                                      "else"));
    EXPECT_EQ(readFile(channel_ / "KVN-release-50.zip"), package);

    writeFile(game_ / "Vorthmere.exe", "the game");
    publish(50);
    EXPECT_EQ(check().exitCode, 0);
}

TEST_F(PublisherChannelTest, JumpThatEndsTheChannelWantsAnOption) {
    publish(41);
    EXPECT_EQ(build(2'000'041).exitCode, 1);
    const ToolEnd end = build(4294967295);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, HasSubstr("give --allow-jump if it is no mistake"));
    EXPECT_EQ(build(1'000'041).exitCode, 0);
    EXPECT_EQ(build(4294967295, {"--allow-jump"}).exitCode, 0);
    EXPECT_EQ(build(4294967295).exitCode, 0) << "a repetition is no jump";
}

TEST_F(PublisherChannelTest, AddressOfAnotherChannelIsNamed) {
    publish(41);
    std::string manifest = readFile(channel_ / update::kManifestName);
    const std::string base(update::kDownloadBaseUrl);
    manifest.replace(manifest.find(base), base.size(), "https://games.example/downloads/");
    writeFile(channel_ / update::kManifestName, manifest);
    const std::string sentence =
        "The channel is served at \"https://games.example/downloads/\", and this kvn-release "
        "was built for \"" +
        base + "\"";
    for (const ToolEnd& end : {build(42), check(), runPublisher({"gc", "--channel", channel_.string()})}) {
        EXPECT_EQ(end.exitCode, 1);
        EXPECT_THAT(end.output, AllOf(HasSubstr(sentence), Not(HasSubstr("Restore or remove"))));
    }
}

TEST_F(PublisherChannelTest, FileThatAWebServerCannotReadIsAFaultAndIsMended) {
    publish(41);
    fs::permissions(channel_ / "KVN-release-41.zip", fs::perms::owner_read | fs::perms::owner_write);
    fs::permissions(channel_ / update::kManifestName, fs::perms::owner_read | fs::perms::owner_write);
    const ToolEnd end = check();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, AllOf(HasSubstr("\"KVN-release-41.zip\" may not be read by every account"),
                                  HasSubstr("\"KVN-alpha.manifest\" may not be read by every account")));
    publish(41);
    EXPECT_EQ(check().exitCode, 0);
    fs::permissions(channel_, fs::perms::owner_all);
    EXPECT_THAT(check().output, HasSubstr("The channel folder may not be entered by every account"));
}

TEST_F(PublisherChannelTest, LinkInThePlaceOfAFileIsAFault) {
    publish(41);
    for (const auto& entry : fs::directory_iterator(channel_)) {
        const fs::path file = entry.path();
        fs::rename(file, folder_ / "elsewhere");
        fs::create_symlink(folder_ / "elsewhere", file);
        const ToolEnd end = check();
        EXPECT_EQ(end.exitCode, 1) << file;
        EXPECT_THAT(end.output, HasSubstr("\"" + file.filename().string() + "\" is a link"));
        fs::rename(folder_ / "elsewhere", file);
    }
    EXPECT_EQ(check().exitCode, 0);
}

TEST_F(PublisherChannelTest, ReplacedPackageAndInventoryAreReported) {
    publish(41);
    writeFile(channel_ / "KVN-release-41.zip", "damaged");
    EXPECT_THAT(build(41).output, AllOf(HasSubstr("replaced:         the complete package"),
                                        Not(HasSubstr("replaced:         the inventory"))));
    writeFile(channel_ / "KVN-release-41.zip.files", "damaged");
    EXPECT_THAT(build(41).output, HasSubstr("replaced:         the inventory"));
    EXPECT_THAT(build(41).output, Not(HasSubstr("replaced:")));
}

TEST_F(PublisherChannelTest, PlanFromAFolderThatIsNothingIsRefused) {
    publish(41);
    const auto planFrom = [this](const fs::path& from) {
        return runPublisher({"plan", "--from", from.string(), "--channel", channel_.string()});
    };
    writeFile(folder_ / "pictures/cat.png", "a cat");
    EXPECT_EQ(planFrom(folder_ / "pictures").exitCode, 1);
    EXPECT_THAT(planFrom(folder_ / "pictures").output,
                AllOf(HasSubstr("is no installation"), HasSubstr("no game folder"), HasSubstr("no channel")));
    EXPECT_EQ(planFrom(game_).exitCode, 0);
    EXPECT_THAT(planFrom(channel_).output, HasSubstr("Release 41 is not older than release 41 of the channel"));
}

}  // namespace
}  // namespace vorthmere::end_to_end
