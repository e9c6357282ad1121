// What kvn-release prints, and how it ends when it is interrupted.

#include <gmock/gmock.h>
#include <signal.h>

#include <nlohmann/json.hpp>

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

constexpr Milliseconds kLimit{60'000};

class PublisherOutputTest : public PublisherTest {
protected:
    /// Runs a line of the shell in which "$@" is the tool with its arguments.
    [[nodiscard]] ToolEnd shell(const std::string& line, const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{"/bin/bash", "-c", line, "bash", publisherProgram()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        ProcessOptions options;
        options.outputFile = folder_ / "shell output";
        const int exitCode = ChildProcess(command, options).wait(kLimit).exitCode;
        return {exitCode, readFile(options.outputFile)};
    }

    /// Keeps the tool busy long enough for a test to interrupt it.
    void makeLargeGame() const {
        constexpr std::size_t kBytes = 96'000'000;
        std::string content;
        content.reserve(kBytes);
        for (std::uint32_t value = 1; content.size() < kBytes;) {
            value = value * 1664525 + 1013904223;
            content += std::to_string(value);
        }
        writeFile(game_ / "data/large.pak", content);
    }

    const fs::path work_ = channel_ / ".kvn-release-work";
};

TEST_F(PublisherOutputTest, InterruptionRemovesTheWorkFolder) {
    makeLargeGame();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        std::vector<std::string> command{publisherProgram()};
        for (const std::string& argument : buildArguments(41, game_, channel_))
            command.push_back(argument);
        ProcessOptions options;
        options.outputFile = folder_ / "output";
        ChildProcess tool(command, options);
        while (!fs::exists(work_) && !tool.hasEnded(Milliseconds(1))) {
        }
        ASSERT_TRUE(fs::exists(work_)) << readFile(options.outputFile);
        kill(tool.id(), signal);
        EXPECT_EQ(tool.wait(kLimit).exitCode, -1) << "ends by the signal";
        EXPECT_THAT(readFile(options.outputFile), HasSubstr("Interrupted; what was begun has been removed."));
        EXPECT_FALSE(fs::exists(channel_)) << "which it made itself";
    }
}

TEST_F(PublisherOutputTest, ClosedPipeRemovesTheWorkFolder) {
    makeLargeGame();
    const ToolEnd end = shell("\"$@\" 2>&1 | head -n 2; exit ${PIPESTATUS[0]}", buildArguments(41, game_, channel_));
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_FALSE(fs::exists(work_));
}

TEST_F(PublisherOutputTest, OutputThatCannotBeWrittenIsAFailure) {
    publish(41);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"check", "--channel", channel_.string()}, std::vector<std::string>{"--help"},
          std::vector<std::string>{"--version"},
          std::vector<std::string>{"plan", "--from", game_.string(), "--channel", channel_.string(), "--json"}}) {
        const ToolEnd end = shell("\"$@\" >/dev/full", arguments);
        EXPECT_EQ(end.exitCode, 1) << arguments.front();
        EXPECT_THAT(end.output, HasSubstr("written")) << arguments.front();
    }
}

TEST_F(PublisherOutputTest, ControlCharactersOfNamesAreNotPrinted) {
    writeFile(game_ /
                  "data/\x1b[2Jgone\x7f\xc2\x9b"
                  "1m.pak",
              "x");
    const ToolEnd end = build(41);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, AllOf(HasSubstr("\"data/\\x1B[2Jgone\\x7F\\xC2\\x9B1m.pak\" cannot be in a release"),
                                  Not(HasSubstr("\x1b"))));
}

TEST_F(PublisherOutputTest, EveryBadNameIsTold) {
    writeFile(game_ / "data/a+b.pak", "x");
    writeFile(game_ / "data/nul.txt", "x");
    writeFile(game_ / "readme.", "x");
    fs::create_symlink("nowhere", game_ / "link");
    const ToolEnd end = build(41);
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, AllOf(HasSubstr("\"data/a+b.pak\""), HasSubstr("\"data/nul.txt\""),
                                  HasSubstr("\"readme.\""), HasSubstr("\"link\"")));
}

TEST_F(PublisherOutputTest, QuietRunsPrintNothingButFaults) {
    EXPECT_EQ(build(41, {"--quiet"}).output, "");
    EXPECT_EQ(check({"--quiet"}).output, "");
    fs::remove(channel_ / "KVN-release-41.zip");
    EXPECT_EQ(check({"--quiet"}).output, "\"KVN-release-41.zip\" is missing.\nThe channel has 1 fault.\n");
}

TEST_F(PublisherOutputTest, DryRunTellsAndWritesNothing) {
    ToolEnd end = build(41, {"--dry-run"});
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_FALSE(fs::exists(channel_));
    publish(41);
    const std::vector<std::string> before = namesInChannel();
    writeFile(game_ / "new", "new");
    end = build(42, {"--dry-run"});
    EXPECT_EQ(end.exitCode, 0);
    EXPECT_THAT(end.output, AllOf(HasSubstr("Release 42 (0.9.3 alpha) can be published; nothing was written."),
                                  HasSubstr("new objects:      3"), HasSubstr("from release 41: an updater fetches")));
    EXPECT_EQ(namesInChannel(), before);
    EXPECT_EQ(build(40, {"--dry-run"}).exitCode, 1);
}

TEST_F(PublisherOutputTest, JsonIsOneObject) {
    using Json = nlohmann::json;
    Json report = Json::parse(build(41, {"--json"}).output);
    EXPECT_EQ(report["command"], "build");
    EXPECT_EQ(report["succeeded"], true);
    EXPECT_EQ(report["release"], 41);
    EXPECT_EQ(report["files"], 4);
    EXPECT_EQ(report["packageBytes"], fs::file_size(channel_ / "KVN-release-41.zip"));
    EXPECT_TRUE(report["previous"].is_null());

    writeFile(game_ / "new.pak", "new");
    report = Json::parse(build(42, {"--json"}).output);
    EXPECT_EQ(report["previous"]["release"], 41);
    report = Json::parse(runPublisher({"plan", "--json", "--from", (channel_ / "KVN-release-41.zip.files").string(),
                                       "--channel", channel_.string()})
                             .output);
    EXPECT_EQ(report["from"], 41);
    EXPECT_EQ(report["fetched"].size(), 3u);
    report = Json::parse(runPublisher({"gc", "--json", "--keep", "1", "--channel", channel_.string()}).output);
    EXPECT_EQ(report["removedReleases"], Json::array({41}));
    fs::remove(channel_ / "KVN-release-42.zip");
    report = Json::parse(check({"--json"}).output);
    EXPECT_EQ(report["succeeded"], false);
    EXPECT_EQ(report["errors"], Json::array({"\"KVN-release-42.zip\" is missing."}));
}

}  // namespace
}  // namespace vorthmere::end_to_end
