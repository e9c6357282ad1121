#include "files/canonical_path.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/support/folder_link.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::LinkedFolder;
using testing::TemporaryFolder;
using testing::writeFile;

class CanonicalPathTest : public ::testing::Test {
protected:
    CanonicalPathTest() {
        std::error_code ignored;
        root = weaklyCanonicalPath(folder.path(), ignored);
    }

    std::filesystem::path canonical(const std::filesystem::path& path) {
        failure = std::error_code(ERROR_CRC, std::system_category());
        return weaklyCanonicalPath(path, failure);
    }

    TemporaryFolder folder;
    std::filesystem::path root;
    std::error_code failure;
};

TEST_F(CanonicalPathTest, AbsolutePathIsRelativeToTheCurrentFolderAndFoldsDots) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_EQ(absolutePath(L"game"), folder / L"game");
    EXPECT_EQ(absolutePath(L"a\\..\\.\\game"), folder / L"game");
    EXPECT_EQ(absolutePath(L"a/game"), folder / L"a" / L"game");
    std::filesystem::current_path(before);
}

TEST_F(CanonicalPathTest, AbsolutePathKeepsAnEmptyPathEmpty) {
    EXPECT_EQ(absolutePath(L""), std::filesystem::path());
}

TEST_F(CanonicalPathTest, AbsolutePathTakesPathsThatAreLongerThanTheFirstBuffer) {
    const std::wstring longName = L"C:\\" + std::wstring(200, L'a') + L"\\" + std::wstring(200, L'b');
    EXPECT_EQ(absolutePath(longName).native(), longName);
    for (const std::size_t length : {255u, 256u, 257u, 258u}) {
        const std::wstring name = L"C:\\" + std::wstring(length, L'a');
        EXPECT_EQ(absolutePath(name).native(), name) << length;
    }
}

TEST_F(CanonicalPathTest, AnExistingPathIsGivenWithoutTheLongPathPrefix) {
    writeFile(folder / L"sub" / L"file", "x");
    EXPECT_EQ(canonical(folder / L"sub" / L"file"), root / L"sub" / L"file");
    EXPECT_FALSE(failure);
    EXPECT_EQ(root.native().find(L"\\\\?\\"), std::wstring::npos) << root;
    EXPECT_TRUE(root.is_absolute());
}

TEST_F(CanonicalPathTest, TheMissingRestIsAppendedWithItsDotsFolded) {
    EXPECT_EQ(canonical(folder / L"missing" / L"deeper"), root / L"missing" / L"deeper");
    EXPECT_FALSE(failure);
    EXPECT_EQ(canonical(folder / L"missing" / L".." / L"." / L"other"), root / L"other");
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathTest, LinksInTheExistingPartAreResolved) {
    const LinkedFolder linked(folder / L"link", folder / L"target");
    EXPECT_EQ(canonical(folder / L"link"), root / L"target");
    EXPECT_EQ(canonical(folder / L"link" / L"precious.txt"), root / L"target" / L"precious.txt");
    EXPECT_EQ(canonical(folder / L"link" / L"missing"), root / L"target" / L"missing");
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathTest, APathOnADriveThatDoesNotExistStaysAsItIs) {
    EXPECT_EQ(canonical(L"Q:\\game\\..\\other"), std::filesystem::path(L"Q:\\other"));
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathTest, APathOnANetworkShareThatDoesNotExistKeepsBothItsBackslashes) {
    EXPECT_EQ(canonical(L"\\\\kelvane.invalid\\games\\old\\..\\game").native(), L"\\\\kelvane.invalid\\games\\game");
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathTest, AnEmptyPathStaysEmptyWithoutAFailure) {
    EXPECT_EQ(canonical(L""), std::filesystem::path());
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathTest, APartThatCannotBeResolvedIsAFailureWithAnEmptyResult) {
    const testing::Link loop(folder / L"loop", folder / L"loop");
    EXPECT_EQ(canonical(folder / L"loop"), std::filesystem::path());
    EXPECT_TRUE(failure);
}

TEST_F(CanonicalPathTest, AnExistingPathUpToThePlatformsLimitComesBackWhole) {
    for (const std::size_t length : {200u, 240u, 250u, 251u, 252u, 253u, 254u, 255u, 256u, 257u, 258u, 259u}) {
        const std::size_t rest = length - root.native().size() - 2;
        const std::filesystem::path path = root / std::wstring(rest / 2, L'd') / std::wstring(rest - rest / 2, L'f');
        writeFile(path, "x");
        EXPECT_EQ(canonical(path), path) << length;
        EXPECT_FALSE(failure) << length << failure.message();
    }
}

}  // namespace
}  // namespace vorthmere::update
