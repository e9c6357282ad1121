// Removes the archive tool for every program of this Windows, so it runs alone.
#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/child_process.h"
#include "tests/support/update_run_fixture.h"

namespace vorthmere::update {
namespace {

using testing::writeFile;

constexpr const wchar_t* kNoTool =
    L"This Windows installation does not provide tar.exe. Windows 10 version 1803 or newer is required.";

class MissingArchiveToolTest : public testing::UpdateRunTest {
protected:
    MissingArchiveToolTest() {
        publishSampleRelease();
        std::wstring systemFolder(MAX_PATH, L'\0');
        systemFolder.resize(GetSystemDirectoryW(systemFolder.data(), static_cast<UINT>(systemFolder.size())));
        tool = std::filesystem::path(systemFolder) / L"tar.exe";
        aside = std::filesystem::path(systemFolder) / L"tar.exe.aside";
        std::filesystem::rename(tool, aside);
    }

    ~MissingArchiveToolTest() override {
        std::filesystem::remove(tool);
        std::filesystem::rename(aside, tool);
    }

    std::filesystem::path tool;
    std::filesystem::path aside;
};

TEST_F(MissingArchiveToolTest, Code20NoOtherToolIsEverUsed) {
    const std::filesystem::path elsewhere = folder / L"on the path";
    writeFile(elsewhere / L"tar.exe", testing::childProgramBytes());
    writeFile(install / L"tar.exe", testing::childProgramBytes());
    const testing::EnvironmentVariable path(L"PATH", elsewhere.native());
    EXPECT_EQ(run(), 20);
    EXPECT_EQ(error, kNoTool);
    EXPECT_EQ(progress.lastText(), L"Verifying package integrity...");
}

TEST_F(MissingArchiveToolTest, Code20AFolderIsNoTool) {
    std::filesystem::create_directory(tool);
    expectFailure(20, kNoTool);
}

TEST_F(MissingArchiveToolTest, TheDigestIsCheckedBeforeTheToolIsLookedFor) {
    std::string altered = testing::readFile(release->packageFile);
    altered.back() = 'x';
    writeFile(release->packageFile, altered);
    expectFailure(18, L"The update archive failed SHA-256 verification.");
}

TEST_F(MissingArchiveToolTest, AnIncrementalUpdateNeedsNoTool) {
    release->offerObjects(arguments);
    EXPECT_EQ(run(), 0);
    EXPECT_EQ(installedFiles(), newFiles);
}

}  // namespace
}  // namespace vorthmere::update
