#include "update/managed_file_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/support/sample_metadata.h"
#include "update/metadata_text.h"

namespace vorthmere::update {
namespace {

using testing::joinLines;
using testing::Lines;

constexpr char kBadSize[] = "Managed-file list size is invalid.";
constexpr char kUnsafe[] = "Managed-file list contains an unsafe or duplicate path.";
constexpr char kTooLarge[] = "Managed-file list is too large.";
constexpr char kMissing[] = "Managed-file list is missing a required runtime.";

const Lines kRequired = {"KVN_MANAGED_FILES.txt", "Vorthmere.exe", "KVNUpdater.exe"};
const std::string kRequiredText = joinLines(kRequired);

void expectRefused(const std::string& text, const std::string& sentence) {
    Lines paths;
    std::string error = "an earlier sentence";
    EXPECT_FALSE(parseManagedFileList(text, paths, error)) << ::testing::PrintToString(text);
    EXPECT_EQ(error, sentence) << ::testing::PrintToString(text);
}

Lines expectAccepted(const std::string& text) {
    Lines paths = {"what stood here before"};
    std::string error = "an earlier sentence";
    EXPECT_TRUE(parseManagedFileList(text, paths, error)) << ::testing::PrintToString(text);
    EXPECT_EQ(error, "") << ::testing::PrintToString(text);
    return paths;
}

// The three required files and others, `count` in all.
Lines listOf(std::size_t count) {
    Lines paths = kRequired;
    while (paths.size() < count)
        paths.push_back("data/" + std::to_string(paths.size()) + ".pak");
    return paths;
}

TEST(ManagedFileList, KeepsTheOrderOfTheLines) {
    Lines paths = {"KVNUpdater.exe", "KVN_MANAGED_FILES.txt", "Vorthmere.exe", "a/z.pak", "a/b.pak"};
    std::sort(paths.begin(), paths.end());
    do
        EXPECT_EQ(expectAccepted(joinLines(paths)), paths);
    while (std::next_permutation(paths.begin(), paths.end()));
}

TEST(ManagedFileList, ReadsTheSameListWithEveryLineEnd) {
    for (const std::string lineEnd : {"\n", "\r\n"})
        for (const bool endLastLine : {true, false})
            EXPECT_EQ(expectAccepted(joinLines(kRequired, lineEnd, endLastLine)), kRequired);
    EXPECT_EQ(expectAccepted("KVN_MANAGED_FILES.txt\r\nVorthmere.exe\nKVNUpdater.exe\r"), kRequired);
}

TEST(ManagedFileList, SkipsBlankLinesWhereverTheyStand) {
    EXPECT_EQ(expectAccepted("\n\r\nKVN_MANAGED_FILES.txt\n\nVorthmere.exe\n\r\n\n\r\nKVNUpdater.exe\n\n\r\n\r"),
              kRequired);
}

TEST(ManagedFileList, SplitsNothingAtALoneCarriageReturn) {
    expectRefused(joinLines(kRequired, "\r"), kUnsafe);
    expectRefused(joinLines(kRequired, "\r\r\n"), kUnsafe);
    expectRefused(joinLines(kRequired, "\n\r"), kUnsafe);
    expectRefused(kRequiredText + "\r\r\n", kUnsafe);
}

TEST(ManagedFileList, IsReadUpToExactly131072Bytes) {
    const std::string blankLines(131072 - kRequiredText.size(), '\n');
    EXPECT_EQ(expectAccepted(kRequiredText + blankLines), kRequired);
    EXPECT_EQ(expectAccepted(blankLines + kRequiredText), kRequired);
    expectRefused(kRequiredText + blankLines + "\n", kBadSize);
    expectRefused("\n" + blankLines + kRequiredText, kBadSize);
    expectRefused("", kBadSize);
}

TEST(ManagedFileList, RefusesANulByteAnywhere) {
    for (std::size_t position = 0; position <= kRequiredText.size(); ++position) {
        std::string text = kRequiredText;
        text.insert(position, 1, '\0');
        expectRefused(text, kBadSize);
    }
    expectRefused(std::string(1, '\0'), kBadSize);
}

TEST(ManagedFileList, RefusesUnsafePathsWhereverTheyStand) {
    for (const std::string path : {".kvn-update/x",
                                   ".KVN-UPDATE",
                                   "../x",
                                   "C:/x",
                                   "/x",
                                   "a\\b",
                                   "a//b",
                                   "data/",
                                   "Vorthmere.exe/",
                                   "# comment",
                                   "#",
                                   "con.txt",
                                   "a.",
                                   " ",
                                   "a ",
                                   "Vorthmere.exe ",
                                   "a\tb",
                                   "\tVorthmere.exe",
                                   "a;b",
                                   "Gr\xc3\xb6\xc3\x9f",
                                   "\xef\xbb\xbfKVN_MANAGED_FILES.txt",
                                   "\"a\"",
                                   "a\rb"}) {
        expectRefused(path + "\n" + kRequiredText, kUnsafe);
        expectRefused(kRequiredText + path, kUnsafe);
        expectRefused(kRequiredText + path + "\r\ndata/a.pak\n", kUnsafe);
    }
    expectRefused(kRequiredText + std::string(241, 'a'), kUnsafe);
    EXPECT_EQ(expectAccepted(kRequiredText + std::string(240, 'a') + "\r\n").back(), std::string(240, 'a'));
}

TEST(ManagedFileList, RefusesAPathThatStandsTwice) {
    expectRefused(kRequiredText + "data/a.pak\ndata/a.pak\n", kUnsafe);
    expectRefused(kRequiredText + "data/a.pak\nb\ndata/a.pak\r\n", kUnsafe);
    for (const std::string& path : kRequired)
        expectRefused(kRequiredText + path, kUnsafe);
}

TEST(ManagedFileList, TellsLetterCasesApart) {
    const Lines paths = expectAccepted(kRequiredText + "Data/a.pak\ndata/a.pak\nvorthmere.exe\n");
    EXPECT_EQ(paths, (Lines{"KVN_MANAGED_FILES.txt", "Vorthmere.exe", "KVNUpdater.exe", "Data/a.pak", "data/a.pak",
                            "vorthmere.exe"}));
}

TEST(ManagedFileList, RequiresEachOfTheThreeFilesExactly) {
    for (std::size_t i = 0; i < kRequired.size(); ++i) {
        Lines others = kRequired;
        others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
        const std::string text = joinLines(others);
        expectRefused(text, kMissing);
        std::string otherCase = kRequired[i];
        otherCase[0] = static_cast<char>(otherCase[0] - 'A' + 'a');
        for (const std::string& instead :
             {otherCase, " " + kRequired[i], "bin/" + kRequired[i], kRequired[i] + "x", kRequired[i].substr(1)})
            expectRefused(text + instead + "\n", kMissing);
    }
    expectRefused("KVN_MANAGED_FILES.txt\nVorthmere.exe\nkvnupdater.exe\n", kMissing);
}

TEST(ManagedFileList, MissesTheRequiredFilesInAListOfBlankLines) {
    for (const std::string text : {"\n", "\r\n", "\r", "\n\n\n", "\r\n\r\n"})
        expectRefused(text, kMissing);
    expectRefused(std::string(131072, '\n'), kMissing);
}

TEST(ManagedFileList, AcceptsExactlyAsManyPathsAsAReleaseMayHold) {
    EXPECT_EQ(expectAccepted(joinLines(listOf(1024))), listOf(1024));
    EXPECT_EQ(expectAccepted(joinLines(listOf(1024), "\r\n\n")), listOf(1024));
    expectRefused(joinLines(listOf(1025)), kTooLarge);
    expectRefused(joinLines(listOf(1025), "\n", false), kTooLarge);
    expectRefused(joinLines(listOf(1200)), kTooLarge);
}

TEST(ManagedFileList, NamesTheFirstFaultInTheOrderOfItsChecks) {
    const std::string full = joinLines(listOf(1024));
    const Lines tooMany = listOf(1028);
    const std::string others = joinLines(Lines(tooMany.begin() + 3, tooMany.end()));
    expectRefused("../x\n" + std::string(131072, '\n'), kBadSize);
    expectRefused(std::string("../x\n\0", 6), kBadSize);
    expectRefused("x\n../x\n", kUnsafe);
    expectRefused("x\nx\n", kUnsafe);
    expectRefused(full + "../x\n", kUnsafe);
    expectRefused(full + "data/3.pak\n", kUnsafe);
    expectRefused(full + "one more\n../x\n", kTooLarge);
    expectRefused(full + "one more\none more\n", kTooLarge);
    expectRefused(full + "\n\r\none more", kTooLarge);
    expectRefused(others, kTooLarge);
}

TEST(ManagedFileList, EmptiesTheResultOnEntry) {
    Lines paths = {"what stood here before"};
    std::string error;
    EXPECT_FALSE(parseManagedFileList("", paths, error));
    EXPECT_TRUE(paths.empty());
    paths = {"what stood here before"};
    EXPECT_FALSE(parseManagedFileList("a\nb\n../c\nd\n", paths, error));
    EXPECT_EQ(paths, (Lines{"a", "b"}));
}

TEST(ManagedFileList, TextHasTheRequiredFilesLastAndOtherwiseTheGivenOrder) {
    EXPECT_EQ(managedFileListText({"KVNUpdater.exe", "b", "KVN_MANAGED_FILES.txt", "Vorthmere.exe", "a/Vorthmere.exe"}),
              "b\na/Vorthmere.exe\nKVNUpdater.exe\nKVN_MANAGED_FILES.txt\nVorthmere.exe\n");
}

}  // namespace
}  // namespace vorthmere::update
