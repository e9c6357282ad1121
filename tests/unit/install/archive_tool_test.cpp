#include "install/archive_tool.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <tuple>

#include "tests/support/child_process.h"
#include "tests/support/earlier_error.h"
#include "tests/support/file_tree.h"
#include "tests/support/sample_release.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::update {
namespace {

using testing::childProgram;
using testing::readFile;
using testing::TemporaryFolder;
using testing::writeFile;

using testing::kEarlierError;

class ArchiveToolTest : public ::testing::Test {
protected:
    bool run(const std::vector<std::wstring>& arguments) {
        return runArchiveTool(childProgram(), arguments, folder.path(), output, error);
    }

    TemporaryFolder folder;
    std::string output = "earlier";
    std::wstring error = kEarlierError;
};

std::filesystem::path realTool() {
    std::wstring systemFolder(MAX_PATH, L'\0');
    systemFolder.resize(GetSystemDirectoryW(systemFolder.data(), static_cast<UINT>(systemFolder.size())));
    return std::filesystem::path(systemFolder) / L"tar.exe";
}

TEST_F(ArchiveToolTest, SuccessGivesTheOutputAndLeavesTheErrorAlone) {
    EXPECT_TRUE(run({L"print", L"10"}));
    EXPECT_EQ(output, "xxxxxxxxxx");
    EXPECT_EQ(error, kEarlierError);
}

TEST_F(ArchiveToolTest, AToolThatPrintsNothingSucceedsWithEmptyOutput) {
    EXPECT_TRUE(run({L"print", L"0"}));
    EXPECT_EQ(output, "");
}

TEST_F(ArchiveToolTest, ArgumentsReachTheToolUnchanged) {
    EXPECT_TRUE(run({L"arguments", L"", L"plain", L"with blank", L"C:\\folder\\", L"C:\\with blank\\", L"a\"quote",
                     L"back\\\"slash quote", L"\\\\", L"-C", L"tab\there", L"%PATH%", L"ümlaut"}));
    EXPECT_EQ(output,
              "\nplain\nwith blank\nC:\\folder\\\nC:\\with blank\\\na\"quote\nback\\\"slash quote\n\\\\\n-C\n"
              "tab\there\n%PATH%\n\xc3\xbcmlaut\n");
}

TEST_F(ArchiveToolTest, TheToolRunsHiddenInTheWorkingFolderWithThisProgramsEnvironment) {
    const testing::EnvironmentVariable mark(L"KVN_TEST_MARK", L"from the parent");
    EXPECT_TRUE(run({L"facts"}));
    EXPECT_NE(output.find("\ncurrent folder=" + folder.path().string() + "\n"), std::string::npos) << output;
    EXPECT_NE(output.find("\nstartup flags=257\n"), std::string::npos) << output;
    EXPECT_NE(output.find("\nshow window=0\n"), std::string::npos) << output;
    EXPECT_NE(output.find("\nenvironment=from the parent\n"), std::string::npos) << output;
    EXPECT_NE(output.find("\nreadable pipes=0\n"), std::string::npos) << output;
    EXPECT_EQ(output.find("command line=\"" + childProgram().string() + "\" \"facts\"\n"), 0u) << output;
}

TEST_F(ArchiveToolTest, StandardErrorAloneFillsTheOutput) {
    EXPECT_TRUE(run({L"print-error", L"a complaint"}));
    EXPECT_EQ(output, "a complaint");
}

TEST_F(ArchiveToolTest, BothStreamsAreMergedInTheOrderOfArrival) {
    EXPECT_TRUE(run({L"interleave", L"1", L"2", L"3", L"4", L"5", L"6"}));
    EXPECT_EQ(output, "123456");
}

TEST_F(ArchiveToolTest, AnExitCodeOtherThanZeroIsARejectionThatKeepsTheOutput) {
    for (const wchar_t* code : {L"1", L"2", L"9", L"255", L"4294967295"}) {
        error = kEarlierError;
        EXPECT_FALSE(run({L"exit", code})) << code;
        EXPECT_EQ(error, L"The Windows archive tool rejected the update package.") << code;
        EXPECT_EQ(output, "before the end");
    }
    EXPECT_TRUE(run({L"exit", L"0"}));
}

TEST_F(ArchiveToolTest, ExactlyTheLimitOfOutputIsAccepted) {
    EXPECT_TRUE(run({L"print", L"262144"}));
    EXPECT_EQ(output.size(), 262144u);
    EXPECT_EQ(error, kEarlierError);
}

TEST_F(ArchiveToolTest, OneByteMoreThanTheLimitIsExcessive) {
    EXPECT_FALSE(run({L"print", L"262145"}));
    EXPECT_EQ(error, L"The archive tool returned excessive output.");
    EXPECT_LE(output.size(), 262144u);
}

TEST_F(ArchiveToolTest, AToolWithExcessiveOutputIsTerminatedWithCodeNineAndNotWaitedFor) {
    const std::filesystem::path handleFile = folder / L"handle";
    EXPECT_FALSE(run({L"print-then-wait", L"262145", std::to_wstring(GetCurrentProcessId()), handleFile.native()}));
    EXPECT_EQ(error, L"The archive tool returned excessive output.");

    const testing::KernelHandle tool(
        reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(std::stoull(readFile(handleFile)))));
    ASSERT_EQ(WaitForSingleObject(tool.get(), testing::kPatienceMs), WAIT_OBJECT_0);
    DWORD exitCode = 0;
    ASSERT_TRUE(GetExitCodeProcess(tool.get(), &exitCode));
    EXPECT_EQ(exitCode, 9u);
}

// The tool closes its output and continues: only the wait for its end can keep the call from returning.
TEST_F(ArchiveToolTest, AToolThatHasClosedItsOutputButGoesOnRunningKeepsTheCallWaiting) {
    const testing::NamedEvent mayEnd;
    const std::filesystem::path closed = folder / L"closed";
    std::atomic<bool> released = false;
    std::thread releaser([&] {
        const bool toolIsReady = testing::waitForFile(closed);
        // That the call does not return cannot be waited for: this is long enough for one that does not wait.
        Sleep(300);
        released = toolIsReady;
        mayEnd.set();
    });
    EXPECT_TRUE(run({L"close-output-then-wait", closed.native(), mayEnd.name()}));
    EXPECT_TRUE(released);
    releaser.join();
}

TEST_F(ArchiveToolTest, AToolThatCannotBeStartedIsReportedWithTheErrorNumberAndTheOutputIsKept) {
    EXPECT_FALSE(runArchiveTool(folder / L"missing.exe", {L"-tf"}, folder.path(), output, error));
    EXPECT_EQ(error, L"Unable to start the Windows archive tool (error 2).");
    EXPECT_EQ(output, "earlier");

    writeFile(folder / L"text.exe", "no program");
    EXPECT_FALSE(runArchiveTool(folder / L"text.exe", {}, folder.path(), output, error));
    EXPECT_EQ(error, L"Unable to start the Windows archive tool (error 193).");
}

TEST_F(ArchiveToolTest, AWorkingFolderThatDoesNotExistIsReportedWithTheErrorNumber) {
    EXPECT_FALSE(runArchiveTool(childProgram(), {L"facts"}, folder / L"missing", output, error));
    EXPECT_EQ(error, L"Unable to start the Windows archive tool (error 267).");
}

TEST_F(ArchiveToolTest, NoHandleStaysOpenWhateverHappens) {
    std::ignore = run({L"exit", L"0"});
    DWORD before = 0;
    DWORD after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    std::ignore = run({L"exit", L"0"});
    std::ignore = run({L"exit", L"3"});
    std::ignore = run({L"print", L"262145"});
    std::ignore = runArchiveTool(folder / L"missing.exe", {}, folder.path(), output, error);
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_EQ(before, after);
}

TEST_F(ArchiveToolTest, TheSystemsToolListsAndUnpacksAPackage) {
    const testing::FileTree files{{"data/first map.pak", "maps"}, {"Vorthmere.exe", "game"}};
    const std::filesystem::path package = folder / L"a package.zip";
    testing::makeZip(package, files);
    ASSERT_TRUE(runArchiveTool(realTool(), {L"-tf", package.native()}, folder.path(), output, error)) << output;
    EXPECT_NE(output.find("data/first map.pak\r\n"), std::string::npos) << output;
    EXPECT_NE(output.find("Vorthmere.exe\r\n"), std::string::npos) << output;

    const std::filesystem::path target = folder / L"the target";
    std::filesystem::create_directory(target);
    ASSERT_TRUE(
        runArchiveTool(realTool(), {L"-xf", package.native(), L"-C", target.native()}, folder.path(), output, error))
        << output;
    EXPECT_EQ(testing::readTree(target), files);
}

TEST_F(ArchiveToolTest, TheSystemsToolRejectsWhatIsNoArchive) {
    writeFile(folder / L"package.zip", "not a zip");
    EXPECT_FALSE(
        runArchiveTool(realTool(), {L"-tf", (folder / L"package.zip").native()}, folder.path(), output, error));
    EXPECT_EQ(error, L"The Windows archive tool rejected the update package.");
    EXPECT_NE(output, "");
}

}  // namespace
}  // namespace vorthmere::update
