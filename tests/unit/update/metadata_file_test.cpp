#include "update/metadata_file.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <fstream>
#include <limits>
#include <string>
#include <thread>

#include "tests/support/temporary_folder.h"

#ifndef _WIN32
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

namespace vorthmere::update {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

constexpr wchar_t kBadSize[] = L"An update metadata file has an invalid size.";
constexpr wchar_t kUnreadable[] = L"Unable to read update metadata.";

void expectBadSize(const std::filesystem::path& file, std::uint64_t maxBytes) {
    std::string contents;
    std::wstring error;
    EXPECT_FALSE(readMetadataFile(file, contents, error, maxBytes)) << file << ", limit " << maxBytes;
    EXPECT_EQ(error, kBadSize) << file << ", limit " << maxBytes;
}

void expectContents(const std::filesystem::path& file, const std::string& expected, std::uint64_t maxBytes) {
    std::string contents = "what stood here before";
    std::wstring error;
    EXPECT_TRUE(readMetadataFile(file, contents, error, maxBytes)) << file << ", limit " << maxBytes;
    EXPECT_EQ(contents, expected) << file << ", limit " << maxBytes;
    EXPECT_EQ(error, L"") << file << ", limit " << maxBytes;
}

TEST(MetadataFile, IsReadUpToExactlyTheLimit) {
    const TemporaryFolder folder;
    for (const std::size_t limit : {1U, 2U, 8192U, 16384U, 16385U, 131072U, 393216U}) {
        const std::string content(limit, 'x');
        writeFile(folder / "file", content);
        expectContents(folder / "file", content, limit);
        expectContents(folder / "file", content, limit + 1);
        expectContents(folder / "file", content, std::numeric_limits<std::uint64_t>::max());
        expectBadSize(folder / "file", limit - 1);
        expectBadSize(folder / "file", 0);
    }
}

TEST(MetadataFile, IsRefusedWhenEmpty) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    expectBadSize(folder / "file", 8192);
    expectBadSize(folder / "file", 0);
    expectBadSize(folder / "file", std::numeric_limits<std::uint64_t>::max());
}

TEST(MetadataFile, IsRefusedWhenThereIsNoFile) {
    const TemporaryFolder folder;
    expectBadSize(folder / "missing", 8192);
    expectBadSize(folder / "missing" / "file", 8192);
    expectBadSize(folder.path(), std::numeric_limits<std::uint64_t>::max());
    expectBadSize({}, 8192);
}

TEST(MetadataFile, ReachesTheParserByteForByte) {
    const TemporaryFolder folder;
    std::string everyByte;
    for (int value = 0; value < 256; ++value)
        everyByte.push_back(static_cast<char>(value));
    for (const std::string& content :
         {std::string("a\r\nb\nc\r"), std::string("\r\n\r\n"), std::string("\n"), std::string("\0", 1),
          std::string("a\x1a"
                      "b"),
          std::string("\xef\xbb\xbfKVN-UPDATE/1\r\n"), everyByte}) {
        writeFile(folder / "file", content);
        expectContents(folder / "file", content, content.size());
    }
}

TEST(MetadataFile, IsFoundUnderANameOutsideAscii) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder / std::filesystem::path(u8"Gr\u00f6\u00dfe \u4e16.txt");
    writeFile(file, "content");
    expectContents(file, "content", 8192);
}

TEST(MetadataFile, MayBeHeldOpenByOthers) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    const std::ifstream reader(folder / "file", std::ios::binary);
    const std::ofstream writer(folder / "file", std::ios::binary | std::ios::app);
    ASSERT_TRUE(reader.is_open());
    ASSERT_TRUE(writer.is_open());
    expectContents(folder / "file", "content", 8192);
}

#ifndef _WIN32

TEST(MetadataFile, IsReadThroughALink) {
    const TemporaryFolder folder;
    writeFile(folder / "target", "content");
    std::filesystem::create_symlink("target", folder / "link");
    std::filesystem::create_symlink("nowhere", folder / "dangling");
    expectContents(folder / "link", "content", 7);
    expectBadSize(folder / "link", 6);
    expectBadSize(folder / "dangling", 8192);
}

// Makes every later system call with this number fail on the calling thread.
bool makeSystemCallFail(unsigned int number, int errorCode) {
    sock_filter filter[] = {BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
                            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned int>(errorCode)),
                            BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
    const sock_fprog program{std::size(filter), filter};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// The size can still be read, but no file can be opened, whichever user runs the tests.
TEST(MetadataFile, SaysSoWhenItCannotBeOpened) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    bool opensFail = false;
    bool read = true;
    std::wstring error;
    std::wstring errorWithLowLimit;
    std::thread([&] {
        std::string contents;
        opensFail = makeSystemCallFail(SYS_openat, EACCES);
        read = readMetadataFile(folder / "file", contents, error, 7) ||
               readMetadataFile(folder / "file", contents, errorWithLowLimit, 6);
    }).join();
    ASSERT_TRUE(opensFail);
    EXPECT_FALSE(read);
    EXPECT_EQ(error, kUnreadable);
    EXPECT_EQ(errorWithLowLimit, kBadSize);
    expectContents(folder / "file", "content", 7);
}

TEST(MetadataFile, LeavesTheSentenceToTheCallerWhenReadingBreaksOff) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "content");
    bool readsFail = false;
    bool read = true;
    std::wstring error;
    std::wstring earlierError = L"An earlier sentence.";
    std::thread([&] {
        std::string contents;
        readsFail = makeSystemCallFail(SYS_read, EIO);
        read = readMetadataFile(folder / "file", contents, error, 7) ||
               readMetadataFile(folder / "file", contents, earlierError, 7);
    }).join();
    ASSERT_TRUE(readsFail);
    EXPECT_FALSE(read);
    EXPECT_EQ(error, L"");
    EXPECT_EQ(earlierError, L"An earlier sentence.");
    expectContents(folder / "file", "content", 7);
}

#endif

}  // namespace
}  // namespace vorthmere::update
