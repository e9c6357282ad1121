// kvn-release.exe compared with the tool for this system.

#include <gmock/gmock.h>
#include <sys/inotify.h>

#include "tests/end_to_end/support/child_process.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/folder_watch.h"
#include "tests/end_to_end/support/publisher_fixture.h"
#include "tests/end_to_end/support/tree_snapshot.h"
#include "tests/end_to_end/support/waiting.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::AnyOf;
using testing::HasSubstr;

constexpr Milliseconds kLongestRun{120'000};
constexpr std::uint32_t kChanges = IN_CREATE | IN_DELETE | IN_MODIFY | IN_CLOSE_WRITE | IN_MOVED_FROM | IN_MOVED_TO;

class PublisherWindowsTest : public PublisherTest {
protected:
    [[nodiscard]] int runOnWindows(const std::vector<std::string>& arguments) const {
        ProcessOptions options;
        options.outputFile = folder_ / "output";
        return ChildProcess(windowsPublisherCommand(arguments), options).wait(kLongestRun).exitCode;
    }

    [[nodiscard]] static std::map<std::string, std::string> contentOf(const fs::path& folder) {
        std::map<std::string, std::string> content;
        for (const auto& [path, entry] : takeSnapshot(folder))
            content[path] = entry.content;
        return content;
    }

    /// Kills a run after a number of changes in the channel.
    ///
    /// @return false when the run ended before
    [[nodiscard]] bool killAfter(int changes, const std::vector<std::string>& arguments) const {
        FolderWatch watch;
        watch.add(channel_, kChanges);
        ProcessOptions options;
        options.outputFile = folder_ / "output";
        ChildProcess tool(windowsPublisherCommand(arguments), options);
        for (int seen = 0; seen < changes;) {
            const std::optional<FolderEvent> event = watch.next(Milliseconds(1));
            if (!event && tool.hasEnded(Milliseconds(0))) return false;
            if (!event) continue;
            ++seen;
            std::error_code gone;
            if ((event->what & IN_CREATE) != 0 && fs::is_directory(event->path, gone)) watch.add(event->path, kChanges);
        }
        tool.killGroup();
        const bool killed = tool.wait(kLongestRun).exitCode == -1;
        // Wine's server closes the files of a process a moment after its end.
        EXPECT_TRUE(waitUntil([this] { return !fs::exists(channel_ / ".kvn-release-lock"); }));
        return killed;
    }
};

TEST_F(PublisherWindowsTest, SameGameFolderGivesTheSameBytes) {
    std::string text;
    for (int number = 0; text.size() < 3'000'000; ++number)
        text += std::to_string(number);
    writeFile(game_ / "data/text.pak", text);
    writeFile(game_ / "data/empty", "");
    writeFile(game_ / "Data.txt", "x");
    for (const std::uint32_t release : {41u, 42u}) {
        writeFile(game_ / "data/number", std::to_string(release));
        publish(release);
        ASSERT_EQ(runOnWindows(buildArguments(release, game_, folder_ / "windows channel")), 0)
            << readFile(folder_ / "output");
    }
    EXPECT_EQ(contentOf(folder_ / "windows channel") == contentOf(channel_), true);
}

TEST_F(PublisherWindowsTest, KilledAtAnyChangeItLeavesAWholeReleaseAndARepetitionCompletes) {
    publish(41);
    const fs::path before = folder_ / "before";
    fs::copy(channel_, before, fs::copy_options::recursive);
    writeFile(game_ / "data/new.pak", std::string(5000, 'n'));
    publish(42);
    const auto complete = contentOf(channel_);

    int killed = 0;
    for (int changes = 1;; ++changes) {
        fs::remove_all(channel_);
        fs::copy(before, channel_, fs::copy_options::recursive);
        if (!killAfter(changes, buildArguments(42, game_, channel_))) break;
        ++killed;
        const ToolEnd checked = check();
        ASSERT_EQ(checked.exitCode, 0) << "killed after change " << changes << "\n" << checked.output;
        ASSERT_EQ(runOnWindows(buildArguments(42, game_, channel_)), 0) << "killed after change " << changes << "\n"
                                                                        << readFile(folder_ / "output");
        ASSERT_EQ(contentOf(channel_) == complete, true) << "killed after change " << changes;
    }
    EXPECT_GT(killed, 10);
}

TEST_F(PublisherWindowsTest, KilledWhileItRemovesWhatIsOldItLeavesASoundChannelAndARepetitionCompletes) {
    constexpr int kOldFiles = 200;
    for (int i = 0; i < kOldFiles; ++i)
        writeFile(game_ / "old" / std::to_string(i), "old " + std::to_string(i));
    publish(41);
    fs::remove_all(game_ / "old");
    publish(42);
    const fs::path before = folder_ / "before";
    fs::copy(channel_, before, fs::copy_options::recursive);
    const std::vector<std::string> collect{"gc", "--channel", channel_.string(), "--keep", "1"};
    ASSERT_EQ(runOnWindows(collect), 0) << readFile(folder_ / "output");
    const auto complete = contentOf(channel_);
    ASSERT_EQ(complete.size(), 7u) << "three files of one release and four objects";

    int killed = 0;
    for (int changes = 1; changes < kOldFiles; changes += 20) {
        fs::remove_all(channel_);
        fs::copy(before, channel_, fs::copy_options::recursive);
        if (killAfter(changes, collect)) ++killed;
        const ToolEnd checked = check();
        ASSERT_EQ(checked.exitCode, 0) << "killed after change " << changes << "\n" << checked.output;
        ASSERT_THAT(inventoriesThatLackObjects(channel_), testing::IsEmpty()) << "killed after change " << changes;
        ASSERT_EQ(runOnWindows(collect), 0) << "killed after change " << changes << "\n"
                                            << readFile(folder_ / "output");
        ASSERT_EQ(contentOf(channel_) == complete, true) << "killed after change " << changes;
    }
    EXPECT_GT(killed, 5);
}

}  // namespace
}  // namespace vorthmere::end_to_end
