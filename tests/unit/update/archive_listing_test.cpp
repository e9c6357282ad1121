#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "update/archive_listing.h"

namespace vorthmere::update {
namespace {

constexpr wchar_t kEmpty[] = L"The update archive is empty.";
constexpr wchar_t kUnsafe[] = L"The update archive contains an unsafe path.";

void expectAccepted(const std::string& listing) {
    std::wstring error;
    EXPECT_TRUE(checkArchiveListing(listing, error)) << ::testing::PrintToString(listing);
    EXPECT_EQ(error, L"") << ::testing::PrintToString(listing);
}

void expectRefused(const std::string& listing, const std::wstring& sentence) {
    std::wstring error = L"An earlier sentence.";
    EXPECT_FALSE(checkArchiveListing(listing, error)) << ::testing::PrintToString(listing);
    EXPECT_EQ(error, sentence) << ::testing::PrintToString(listing);
}

std::string numberedEntries(std::size_t count) {
    std::string listing;
    for (std::size_t i = 0; i < count; ++i)
        listing += "data/" + std::to_string(i) + ".pak\n";
    return listing;
}

TEST(ArchiveListing, AcceptsFilesAndFoldersWithEitherLineEnd) {
    for (const std::string listing :
         {"Vorthmere.exe", "Vorthmere.exe\n", "Vorthmere.exe\r\n", "Vorthmere.exe\r", "data/\ndata/a.pak\n",
          "data/\r\ndata/a.pak\r\nVorthmere.exe\r\n", "a\nb\r\nc", "data/", "data/\r\n", "a\n\n\nb\n\n", "\n\r\n\na"})
        expectAccepted(listing);
}

TEST(ArchiveListing, FindsListingsWithoutAnyEntryEmpty) {
    for (const std::string listing : {"", "\n", "\r\n", "\r", "\n\n\n", "\r\n\r\n", "\n\r\n\r"})
        expectRefused(listing, kEmpty);
}

TEST(ArchiveListing, RefusesUnsafePathsWhereverTheyStand) {
    for (const std::string path : {"../a",         "/a",      "C:/x",
                                   "a\\b",         "/",       "a//",
                                   "a/../b",       "con.txt", ".kvn-update/x",
                                   ".kvn-update/", " ",       "a ",
                                   "a+b",          "a\rb",    "\ra",
                                   "a\r\r",        "\r\r",    "a\tb",
                                   "./",           "./a",     "Gr\xc3\xb6\xc3\x9f",
                                   "a/./"})
        for (const std::string& listing :
             {path, path + "\n", path + "\r\n", path + "\nb\n", "b\n" + path, "b\n\n" + path + "\nc\n"})
            expectRefused(listing, kUnsafe);
}

TEST(ArchiveListing, RefusesANulByteInALine) {
    expectRefused(std::string("a\0b\n", 4), kUnsafe);
    expectRefused(std::string("\0", 1), kUnsafe);
    expectRefused(std::string("a\n\0\n", 4), kUnsafe);
}

TEST(ArchiveListing, AcceptsTheLongestPathAndNoLongerOne) {
    expectAccepted(std::string(240, 'a') + "\r\n");
    expectAccepted(std::string(239, 'a') + "/\r\n");
    expectRefused(std::string(241, 'a') + "\n", kUnsafe);
    expectRefused(std::string(240, 'a') + "/\n", kUnsafe);
}

TEST(ArchiveListing, AcceptsExactlyAsManyEntriesAsAPackageMayHold) {
    expectAccepted(numberedEntries(2048));
    expectRefused(numberedEntries(2049), kUnsafe);
}

TEST(ArchiveListing, CountsNoBlankLines) {
    expectAccepted("\n\r\n" + numberedEntries(2048) + "\r\n\n\n");
    expectRefused("\n\r\n" + numberedEntries(2048) + "\n\na", kUnsafe);
}

// A listing only names what the package holds. If a name stands twice, its last file remains after unpacking.
TEST(ArchiveListing, AcceptsANameThatStandsTwice) {
    expectAccepted("a\na\n");
}

}  // namespace
}  // namespace vorthmere::update
