#include "transfer/file_digest.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>

#include "tests/support/earlier_error.h"
#include "tests/support/folder_link.h"
#include "tests/support/held_file.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::update {
namespace {

using testing::HeldFile;
using testing::TemporaryFolder;
using testing::writeFile;

constexpr const char* kEmptyDigest = "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855";
constexpr const char* kAbcDigest = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
using testing::kEarlierError;

class FileDigestTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path file = folder / L"a file";
    std::string digest = "earlier";
    std::wstring error = kEarlierError;
};

// The digests were computed with another program (sha256sum).
TEST_F(FileDigestTest, GivesTheKnownDigestsAroundTheBlockSizeAndLeavesTheErrorAlone) {
    const std::pair<std::string, std::string> known[] = {
        {"", kEmptyDigest},
        {"abc", kAbcDigest},
        {std::string("\0\r\n\x1a\xff", 5), "968f1b5d6071491ed9aed8a0763e16abd0a1f7e8446833465cf535edfe8bd1dd"},
        {std::string(65535, 'a'), "6e1bebca6a8229364a162a72ef064826c4cd7457bf54f190ef782bd9deff3e42"},
        {std::string(65536, 'a'), "bf718b6f653bebc184e1479f1935b8da974d701b893afcf49e701f3e2f9f9c5a"},
        {std::string(65537, 'a'), "008ffc88d3c96a9f307524eb361e47c5222a887fc45fa0c1fb8d429c5c23b430"},
        {std::string(131072, 'a'), "b44ffb72fcc259676bd80495fef1b44b808ca8f1ffe1b1706a4d7911b0e31f11"},
        {std::string(1000000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
    };
    for (const auto& [content, expected] : known) {
        writeFile(file, content);
        EXPECT_TRUE(sha256File(file, digest, error)) << content.size();
        EXPECT_EQ(digest, expected) << content.size();
        EXPECT_EQ(error, kEarlierError);
    }
}

TEST_F(FileDigestTest, AMissingFileAFolderAndAHeldFileCannotBeReadAndEmptyTheDigest) {
    writeFile(file, "abc");
    const HeldFile held(file);
    for (const std::filesystem::path& path : {folder / L"missing", folder.path(), file}) {
        digest = "earlier";
        error = kEarlierError;
        EXPECT_FALSE(sha256File(path, digest, error)) << path;
        EXPECT_EQ(digest, "");
        EXPECT_EQ(error, L"Unable to read the downloaded update archive.") << path;
    }
}

TEST_F(FileDigestTest, SharesTheFileWithReadersAndWriters) {
    writeFile(file, "abc");
    const testing::OpenFile writer(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(writer);
    EXPECT_TRUE(sha256File(file, digest, error));
    EXPECT_EQ(digest, kAbcDigest);
}

TEST_F(FileDigestTest, ManyDigestsLeaveNoHandleOpen) {
    writeFile(file, "abc");
    std::ignore = sha256File(file, digest, error);
    DWORD before = 0;
    DWORD after = 0;
    GetProcessHandleCount(GetCurrentProcess(), &before);
    for (int i = 0; i < 50; ++i) {
        EXPECT_TRUE(sha256File(file, digest, error));
        EXPECT_FALSE(sha256File(folder / L"missing", digest, error));
    }
    GetProcessHandleCount(GetCurrentProcess(), &after);
    EXPECT_EQ(before, after);
}

TEST_F(FileDigestTest, AFileOfTheEntrysSizeAndDigestMatches) {
    writeFile(file, "abc");
    EXPECT_TRUE(installedFileMatches(file, {"any/path", kAbcDigest, 3}));
    writeFile(file, "");
    EXPECT_TRUE(installedFileMatches(file, {"any/path", kEmptyDigest, 0}));
}

TEST_F(FileDigestTest, AnotherSizeOrDigestIsAMismatch) {
    writeFile(file, "abc");
    EXPECT_FALSE(installedFileMatches(file, {"", kAbcDigest, 2}));
    EXPECT_FALSE(installedFileMatches(file, {"", kAbcDigest, 4}));
    EXPECT_FALSE(installedFileMatches(file, {"", kAbcDigest, (std::uint64_t{1} << 32) + 3}));
    EXPECT_FALSE(installedFileMatches(file, {"", kEmptyDigest, 3}));
    EXPECT_FALSE(installedFileMatches(file, {"", "", 3}));
    EXPECT_FALSE(installedFileMatches(file, {"", std::string(kAbcDigest).substr(0, 63), 3}));
    EXPECT_FALSE(installedFileMatches(file, {"", std::string(kAbcDigest) + "0", 3}));
}

TEST_F(FileDigestTest, AnExpectedDigestInUpperCaseIsAMismatch) {
    writeFile(file, "abc");
    EXPECT_FALSE(
        installedFileMatches(file, {"", "BA7816BF8F01CFEA414140DE5DAE2223B00361A396177A9CB410FF61F20015AD", 3}));
}

TEST_F(FileDigestTest, WhatIsNoReadableFileIsAMismatch) {
    EXPECT_FALSE(installedFileMatches(folder / L"missing", {"", kEmptyDigest, 0}));
    EXPECT_FALSE(installedFileMatches(folder.path(), {"", kEmptyDigest, 0}));
    const testing::Link dangling(folder / L"dangling", folder / L"nothing");
    EXPECT_FALSE(installedFileMatches(folder / L"dangling", {"", kEmptyDigest, 0}));
    writeFile(file, "abc");
    const HeldFile held(file);
    EXPECT_FALSE(installedFileMatches(file, {"", kAbcDigest, 3}));
}

TEST_F(FileDigestTest, ALinkToTheRightFileMatches) {
    if (!testing::canLinkFiles()) GTEST_SKIP() << "links to files need a privilege here";
    writeFile(file, "abc");
    const testing::Link link(folder / L"link", file);
    EXPECT_TRUE(installedFileMatches(folder / L"link", {"", kAbcDigest, 3}));
}

}  // namespace
}  // namespace vorthmere::update
