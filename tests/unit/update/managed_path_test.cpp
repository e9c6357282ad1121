#include "update/managed_path.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vorthmere::update {
namespace {

using Paths = std::vector<std::string>;

void expectSafe(const Paths& paths) {
    for (const std::string& path : paths) {
        EXPECT_TRUE(isSafeRelativePath(path, false)) << ::testing::PrintToString(path);
        EXPECT_TRUE(isSafeRelativePath(path, true)) << ::testing::PrintToString(path);
    }
}

void expectUnsafe(const Paths& paths) {
    for (const std::string& path : paths) {
        EXPECT_FALSE(isSafeRelativePath(path, false)) << ::testing::PrintToString(path);
        EXPECT_FALSE(isSafeRelativePath(path, true)) << ::testing::PrintToString(path);
    }
}

TEST(ManagedPath, AcceptsPlainRelativePaths) {
    expectSafe({"a", "Vorthmere.exe", "data/maps/Level 01.pak", "kvn_release.txt", "A-b_c.d e/0", "..a", "...a",
                ".config", "a/.b", " a", "a/ b", "-", "_", "a.b.c"});
}

TEST(ManagedPath, RefusesTheEmptyPath) {
    expectUnsafe({""});
    EXPECT_FALSE(isSafeRelativePath(std::string_view(), false));
    EXPECT_FALSE(isSafeRelativePath(std::string_view(), true));
}

TEST(ManagedPath, AcceptsExactlyTheLongestAllowedPath) {
    const std::string folder(119, 'a');
    expectSafe({std::string(239, 'a'), std::string(240, 'a'), folder + "/" + std::string(120, 'b')});
    expectUnsafe({std::string(241, 'a'), folder + "/" + std::string(121, 'b'), std::string(100000, 'a')});
}

TEST(ManagedPath, CountsTheTrailingSlashOfAFolderIntoItsLength) {
    EXPECT_TRUE(isSafeRelativePath(std::string(239, 'a') + "/", true));
    EXPECT_FALSE(isSafeRelativePath(std::string(240, 'a') + "/", true));
}

TEST(ManagedPath, AcceptsOneTrailingSlashOnlyWhereFoldersMayBeNamed) {
    for (const std::string path : {"a/", "data/maps/", ".config/"}) {
        EXPECT_FALSE(isSafeRelativePath(path, false)) << path;
        EXPECT_TRUE(isSafeRelativePath(path, true)) << path;
    }
    expectUnsafe({"/", "//", "a//", "a/b//", "a///"});
}

TEST(ManagedPath, JudgesAFolderEntryWithoutItsTrailingSlash) {
    expectUnsafe({"a./", "a /", "../", "./", "a/../", "con/", ".kvn-update/", "a+b/"});
}

TEST(ManagedPath, RefusesEveryWayToLeaveTheFolder) {
    expectUnsafe({"/a", "\\a", "//server/share/x", "\\\\server\\share\\x", "\\\\?\\C:\\x", "..", "../a", "a/..",
                  "a/../b", ".", "./a", "a/.", "a/./b", "../../a", "...", "a/.../b"});
}

TEST(ManagedPath, RefusesDrivesStreamsAndBackslashes) {
    expectUnsafe({"C:/x", "C:x", "C:", "x:y", "a.txt:stream", "a/b:c", ":", "a\\b", "a/b\\c", "a\\", "a\\..\\b"});
}

TEST(ManagedPath, RefusesANulByteAnywhere) {
    expectUnsafe({std::string("\0", 1), std::string("a\0", 2), std::string("\0a", 2), std::string("a\0b", 3),
                  std::string("a/b\0/c", 6), std::string("a/\0", 3)});
}

TEST(ManagedPath, RefusesEmptyComponents) {
    expectUnsafe({"a//b", "a///b", "a/b//c"});
}

TEST(ManagedPath, RefusesEndsOfComponentsThatWindowsWouldDrop) {
    expectUnsafe({"a.", "a..", "a ", "a. ", "a .", " ", "a/b.", "a/b ", "a./b", "a /b", "a/ /b", "a/b./c", "a/b /c"});
}

TEST(ManagedPath, RefusesTheWorkFolderAtEveryDepthInEveryLetterCase) {
    expectUnsafe({".kvn-update", ".kvn-update/x", "x/.kvn-update", "X/.KVN-UPDATE", "data/.KVN-Update/x", ".kVn-UpDaTe",
                  "a/b/c/.kvn-update/d"});
}

TEST(ManagedPath, AcceptsNamesThatOnlyResembleTheWorkFolder) {
    expectSafe(
        {".kvn-update2", "kvn-update", ".kvn-updat", ".kvn_update", ".kvn-update.txt", "..kvn-update", "x.kvn-update"});
}

TEST(ManagedPath, RefusesEveryDeviceNameInEveryLetterCase) {
    Paths devices = {"CON", "PRN", "AUX", "NUL"};
    for (const char digit : std::string("0123456789")) {
        devices.push_back(std::string("COM") + digit);
        devices.push_back(std::string("LPT") + digit);
    }
    ASSERT_EQ(devices.size(), 24U);
    for (const std::string& device : devices) {
        std::string lower = device;
        std::string mixed = device;
        for (char& c : lower)
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
        mixed[1] = lower[1];
        for (const std::string& name : {device, lower, mixed})
            expectUnsafe({name, name + ".txt", name + ".tar.gz", "dir/" + name, "dir/" + name + ".dll", name + "/x",
                          "dir/" + name + ".x/y"});
    }
}

TEST(ManagedPath, AcceptsNamesThatOnlyBeginOrEndLikeADevice) {
    expectSafe({"COM",    "LPT",   "COM10",   "LPT10",   "COM1x",    "COMA",  "LPT_",  "COM-",   "console.txt",
                "CONFIG", "AUX_x", "prnx",    "null",    "my.aux",   "a.con", ".con",  ".nul.x", "xCON",
                "xCOM1",  "CO",    "dir/COM", "PRN-old", "CON2.txt", "com.1", "LPT.9", "NUL0",   "AUX1",
                "COM.1",  "aCOM1", "KOM1",    "COX1",    "CAM1",     "LPS1",  "LAT1",  "MPT1",   "COM1 a"});
}

// Only the text before the first dot can name a device.
TEST(ManagedPath, JudgesDeviceNamesByTheStemOnly) {
    expectUnsafe({"aux.json", "Nul.tar.gz", "com1.log", "prn.a.b.c"});
    expectSafe({"my.aux", "json.aux", "tar.com1", "a.nul.b"});
}

TEST(ManagedPath, AcceptsExactlyThePortableBytes) {
    const std::string portable = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789 -._";
    for (int value = 0; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        const std::string path = {'x', byte, 'y'};
        const bool expected = byte == '/' || portable.find(byte) != std::string::npos;
        EXPECT_EQ(isSafeRelativePath(path, false), expected) << "byte " << value;
        EXPECT_EQ(isSafeRelativePath("d/" + path + "/e", false), expected) << "byte " << value;
    }
}

TEST(ManagedPath, RefusesBadBytesAtBothEndsOfAComponent) {
    for (const char byte : std::string("+~#',\t\x01\x1f\x7f\x80\xff*?\"<>|&%$!@^()[]{};=`")) {
        const std::string bad(1, byte);
        expectUnsafe({bad, bad + "a", "a" + bad, "a/" + bad + "b", "a/b" + bad, bad + "/a"});
    }
}

TEST(ManagedPath, RefusesNamesOutsideAscii) {
    expectUnsafe(
        {"Gr\xc3\xb6\xc3\x9f"
         "e.txt",
         "\xe6\x96\x87.txt", "data/\xc2\xa0", "na\xefve",
         "\xef\xbb\xbf"
         "a"});
}

TEST(ManagedPath, ReadsNothingBehindTheEndOfTheView) {
    const std::string text = "data/a.pak\\..";
    EXPECT_TRUE(isSafeRelativePath(std::string_view(text).substr(0, 10), false));
    const std::vector<char> unterminated = {'c', 'o', 'm'};
    EXPECT_TRUE(isSafeRelativePath(std::string_view(unterminated.data(), unterminated.size()), false));
}

std::vector<std::string> allLines(std::string_view text) {
    std::vector<std::string> lines;
    do
        lines.emplace_back(nextLine(text));
    while (!text.empty());
    return lines;
}

TEST(NextLine, SplitsAtLineFeedsAndDropsOneCarriageReturnBeforeThem) {
    const struct {
        std::string text;
        std::vector<std::string> lines;
    } rows[] = {
        {"", {""}},
        {"a", {"a"}},
        {"a\n", {"a"}},
        {"a\nb", {"a", "b"}},
        {"a\r\nb", {"a", "b"}},
        {"a\r\nb\r\n", {"a", "b"}},
        {"a\r", {"a"}},
        {"a\r\r\n", {"a\r"}},
        {"a\rb\n", {"a\rb"}},
        {"\ra\n", {"\ra"}},
        {"\n", {""}},
        {"\r\n", {""}},
        {"\r", {""}},
        {"\r\r", {"\r"}},
        {"\n\n", {"", ""}},
        {"a\n\nb", {"a", "", "b"}},
        {"a\n\rb", {"a", "\rb"}},
        {"\na", {"", "a"}},
        {std::string("a\0b\nc", 5), {std::string("a\0b", 3), "c"}},
        {" a \n\tb", {" a ", "\tb"}},
    };
    for (const auto& row : rows)
        EXPECT_EQ(allLines(row.text), row.lines) << ::testing::PrintToString(row.text);
}

TEST(NextLine, LeavesWhatFollowsTheLineFeed) {
    std::string_view remaining = "a\r\nb\n\nc";
    EXPECT_EQ(nextLine(remaining), "a");
    EXPECT_EQ(remaining, "b\n\nc");
    EXPECT_EQ(nextLine(remaining), "b");
    EXPECT_EQ(remaining, "\nc");
    EXPECT_EQ(nextLine(remaining), "");
    EXPECT_EQ(remaining, "c");
    EXPECT_EQ(nextLine(remaining), "c");
    EXPECT_TRUE(remaining.empty());
    EXPECT_EQ(nextLine(remaining), "");
    EXPECT_TRUE(remaining.empty());
}

}  // namespace
}  // namespace vorthmere::update
