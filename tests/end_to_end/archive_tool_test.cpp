#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

/// Runs the updater in a separate Windows, from which the archive tool was removed.
class ArchiveToolTest : public EndToEndTest {
protected:
    ArchiveToolTest() : tool(prefix / "drive_c" / "windows" / "system32" / "tar.exe") {
        // Once a Windows program of these tests has run, the shared prefix is complete.
        const ProcessOptions silent{.currentFolder = {}, .outputFile = "/dev/null", .environment = {}};
        ChildProcess(wineCommand(probeProgram(), {"run"}), silent).wait(Milliseconds(120'000));
        copyPrefix();
        fs::create_directories(caches);
        // Without an archive tool in the cache, scripts/wine-run takes the prefix as it is.
        useEnvironment({"KVN_WINEPREFIX=" + prefix.string(), "XDG_CACHE_HOME=" + caches.string()});
    }

    ~ArchiveToolTest() override {
        const ProcessOptions here{
            .currentFolder = {}, .outputFile = "/dev/null", .environment = {"WINEPREFIX=" + prefix.string()}};
        ChildProcess({"/usr/bin/wineserver", "-k"}, here).wait(Milliseconds(60'000));
        fs::remove_all(home);
    }

    /// Copies everything that programs change, and shares the rest with the prefix of the checkout.
    void copyPrefix() const {
        const fs::path origin = winePrefix();
        fs::create_directories(tool.parent_path());
        for (const char* file : {"system.reg", "user.reg", "userdef.reg", "kelvane-prefix", ".update-timestamp"})
            if (fs::exists(origin / file)) fs::copy_file(origin / file, prefix / file);
        fs::copy(origin / "dosdevices", prefix / "dosdevices", fs::copy_options::copy_symlinks);
        const ProcessOptions silent{.currentFolder = {}, .outputFile = "/dev/null", .environment = {}};
        ChildProcess({"/bin/cp", "-al", "--remove-destination", (origin / "drive_c").string(), prefix.string()}, silent)
            .wait(Milliseconds(60'000));
        fs::remove(tool);
    }

    // Beside the shared prefix, so that files can be shared with it.
    fs::path home = winePrefix().parent_path() / ("wine without tool " + std::to_string(getpid()));
    fs::path prefix = home / "prefix";
    fs::path caches = home / "caches";
    fs::path tool;
};

TEST_F(ArchiveToolTest, IsMissingWhenThereIsNoneOrAFolderOfThatName) {
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    ASSERT_FALSE(fs::exists(tool));
    EXPECT_EQ(runUpdater(Source::completePackage), 20);
    expectInstallation(before);

    fs::create_directory(tool);
    EXPECT_EQ(runUpdater(Source::completePackage), 20);
    expectInstallation(before);

    // A tool of that name elsewhere does not count, and an incremental update needs none.
    fs::copy_file(winePrefix() / "drive_c" / "windows" / "system32" / "tar.exe",
                  prefix / "drive_c" / "windows" / "tar.exe");
    fs::copy_file(winePrefix() / "drive_c" / "windows" / "system32" / "tar.exe", scenario.installation / "tar.exe");
    EXPECT_EQ(runUpdater(Source::completePackage), 20);
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
