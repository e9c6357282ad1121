#include "install/relaunch.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/support/child_process.h"
#include "tests/support/earlier_error.h"
#include "tests/support/launched_game.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::update {
namespace {

using testing::childProgramBytes;
using testing::LaunchedGame;
using testing::TemporaryFolder;
using testing::writeFile;

using testing::kEarlierError;

class RelaunchTest : public ::testing::Test {
protected:
    RelaunchTest() {
        std::filesystem::create_directory(install);
    }

    TemporaryFolder folder;
    const std::filesystem::path install = folder / L"a game with blanks";
    std::wstring error = kEarlierError;
};

TEST_F(RelaunchTest, StartsTheGameWithoutArgumentsInItsFolder) {
    writeFile(install / L"Vorthmere.exe", childProgramBytes());
    const testing::EnvironmentVariable mark(L"KVN_TEST_MARK", L"from the updater");
    ASSERT_TRUE(relaunchGame(install, error));
    EXPECT_EQ(error, kEarlierError);
    LaunchedGame game(install);
    EXPECT_EQ(game.fact("command line"), "\"" + (install / L"Vorthmere.exe").string() + "\"");
    EXPECT_EQ(game.fact("current folder"), install.string());
    EXPECT_EQ(game.fact("environment"), "from the updater");
}

TEST_F(RelaunchTest, StartsTheGameInAFolderWrittenWithATrailingBackslash) {
    writeFile(install / L"Vorthmere.exe", childProgramBytes());
    ASSERT_TRUE(relaunchGame(install.native() + L"\\", error));
    LaunchedGame game(install);
    EXPECT_EQ(game.fact("command line"), "\"" + (install / L"Vorthmere.exe").string() + "\"");
}

TEST_F(RelaunchTest, TheGameChoosesItsWindowAndErrorHandlingItself) {
    writeFile(install / L"Vorthmere.exe", childProgramBytes());
    const UINT before = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    const bool launched = relaunchGame(install, error);
    SetErrorMode(before);
    ASSERT_TRUE(launched);
    LaunchedGame game(install);
    EXPECT_EQ(game.fact("startup flags"), "0");
    EXPECT_EQ(game.fact("error mode"), "0");
}

TEST_F(RelaunchTest, TheGameInheritsNoHandleAndIsNotWaitedFor) {
    writeFile(install / L"Vorthmere.exe", childProgramBytes());
    const testing::NamedEvent mayEnd;
    const testing::EnvironmentVariable event(L"KVN_TEST_GAME_EVENT", mayEnd.name());
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    testing::KernelHandle readEnd;
    testing::KernelHandle writeEnd;
    ASSERT_TRUE(CreatePipe(readEnd.receive(), writeEnd.receive(), &inheritable, 0));
    ASSERT_TRUE(relaunchGame(install, error));
    LaunchedGame game(install);
    EXPECT_FALSE(game.hasEnded());

    // The pipe is broken while the game still runs: nobody but this test held its write end.
    writeEnd.reset();
    DWORD available = 0;
    EXPECT_FALSE(PeekNamedPipe(readEnd.get(), nullptr, 0, nullptr, &available, nullptr));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_BROKEN_PIPE});
    mayEnd.set();
}

TEST_F(RelaunchTest, AMissingOrUnlaunchableGameIsReportedWithThePlatformsErrorNumber) {
    EXPECT_FALSE(relaunchGame(install, error));
    EXPECT_EQ(error, L"Unable to relaunch Kelvane (error 2).");
    for (const char* content : {"", "no program", "MZ but no program"}) {
        writeFile(install / L"Vorthmere.exe", content);
        EXPECT_FALSE(relaunchGame(install, error)) << content;
        EXPECT_EQ(error, L"Unable to relaunch Kelvane (error 193).") << content;
    }
}

TEST_F(RelaunchTest, NoHandleStaysOpen) {
    writeFile(install / L"Vorthmere.exe", childProgramBytes());
    {
        EXPECT_TRUE(relaunchGame(install, error));
        LaunchedGame game(install);
    }
    DWORD before = 0;
    DWORD after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(relaunchGame(install, error));
        LaunchedGame game(install);
    }
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_EQ(before, after);
}

}  // namespace
}  // namespace vorthmere::update
