#include "update/file_inventory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/sample_metadata.h"
#include "update/inventory_header.h"
#include "update/metadata_text.h"

namespace vorthmere::update {

void PrintTo(const InventoryEntry& entry, std::ostream* out) {
    *out << ::testing::PrintToString(testing::inventoryLine(entry));
}

namespace {

using testing::inventoryHeaderLines;
using testing::inventoryLine;
using testing::inventoryLines;
using testing::joinLines;
using testing::Lines;
using testing::sampleDigest;
using testing::sampleEntries;
using testing::sampleManifest;
using testing::withLine;
using testing::withoutLine;

using Entries = std::vector<InventoryEntry>;

constexpr char kBadSize[] = "File inventory size is invalid.";
constexpr char kOtherRelease[] = "File inventory does not match the selected release.";
constexpr char kMalformed[] = "File inventory record is malformed.";
constexpr char kUnsafe[] = "File inventory contains an unsafe path, size, or checksum.";
constexpr char kDuplicate[] = "File inventory contains a reserved or duplicate path.";
constexpr char kConflict[] = "File inventory has conflicting file and directory paths.";
constexpr char kNoMarker[] = "File inventory is missing release metadata.";
constexpr char kListSize[] = "Managed-file list size is invalid.";
constexpr char kListMissing[] = "Managed-file list is missing a required runtime.";

const Lines kHeader = inventoryHeaderLines(sampleManifest());
const Lines kValid = inventoryLines(sampleManifest(), sampleEntries());
const std::string kDigest = sampleDigest('d');

Lines plus(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

std::string record(const std::string& path, const std::string& size = "1", const std::string& digest = kDigest) {
    return path + "\t" + size + "\t" + digest;
}

Lines records(const Lines& paths) {
    Lines lines;
    for (const std::string& path : paths)
        lines.push_back(record(path));
    return lines;
}

void expectRefused(const std::string& text, const std::string& sentence) {
    Entries entries = sampleEntries();
    std::string error = "an earlier sentence";
    EXPECT_FALSE(parseFileInventory(text, sampleManifest(), entries, error)) << ::testing::PrintToString(text);
    EXPECT_EQ(error, sentence) << ::testing::PrintToString(text);
}

void expectRefused(const Lines& lines, const std::string& sentence) {
    expectRefused(joinLines(lines), sentence);
}

Entries expectAccepted(const std::string& text, const Manifest& manifest = sampleManifest()) {
    Entries entries = sampleEntries();
    std::string error = "an earlier sentence";
    EXPECT_TRUE(parseFileInventory(text, manifest, entries, error)) << ::testing::PrintToString(text);
    EXPECT_EQ(error, "") << ::testing::PrintToString(text);
    return entries;
}

Entries expectAccepted(const Lines& lines) {
    return expectAccepted(joinLines(lines));
}

// The sum of the sizes in the sample's five records.
constexpr std::uint64_t kSampleBytes = 5010;

// The sample's five records and others of size 1, `count` in all.
Lines inventoryOf(std::size_t count) {
    Lines lines = kValid;
    while (lines.size() < kHeader.size() + count)
        lines.push_back(record("more/" + std::to_string(lines.size())));
    return lines;
}

TEST(FileInventory, FillsEveryRecordInTheOrderOfTheLines) {
    EXPECT_EQ(expectAccepted(kValid), sampleEntries());
    const Lines reversed(kValid.rbegin(), kValid.rend() - 5);
    Entries expected = sampleEntries();
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(expectAccepted(plus(kHeader, reversed)), expected);

    const Entries entries = expectAccepted(plus(kValid, {record("Data/Maps B/Level.pak", "77", sampleDigest('7'))}));
    EXPECT_EQ(entries.back().path, "Data/Maps B/Level.pak");
    EXPECT_EQ(entries.back().size, 77U);
    EXPECT_EQ(entries.back().sha256, sampleDigest('7'));
}

TEST(FileInventory, ReadsTheSameRecordsWithEveryLineEnd) {
    for (const std::string lineEnd : {"\n", "\r\n"})
        for (const bool endLastLine : {true, false})
            EXPECT_EQ(expectAccepted(joinLines(kValid, lineEnd, endLastLine)), sampleEntries());
    Lines mixed = kValid;
    for (std::size_t i = 0; i < mixed.size(); i += 2)
        mixed[i] += "\r";
    EXPECT_EQ(expectAccepted(mixed), sampleEntries());
    expectRefused(joinLines(kValid, "\r"), kOtherRelease);
    expectRefused(joinLines(kValid, "\r\r\n"), kOtherRelease);
    expectRefused(plus(kValid, {record("a") + "\r\r"}), kUnsafe);
}

TEST(FileInventory, EmptiesTheResultOnEntry) {
    Entries entries = sampleEntries();
    std::string error;
    EXPECT_FALSE(parseFileInventory("", sampleManifest(), entries, error));
    EXPECT_TRUE(entries.empty());
}

TEST(FileInventory, IsReadUpToExactly393216Bytes) {
    const std::string text = joinLines(kValid);
    const std::string tail = record("a") + "\n";
    const std::string zeros(393216 - text.size() - tail.size(), '0');
    const std::string longest = text + record("a", zeros + "1") + "\n";
    ASSERT_EQ(longest.size(), 393216U);
    EXPECT_EQ(expectAccepted(longest).back().size, 1U);
    expectRefused(text + record("a", "0" + zeros + "1") + "\n", kBadSize);
    expectRefused("", kBadSize);
}

TEST(FileInventory, RefusesANulByteAnywhere) {
    const std::string text = joinLines(kValid);
    for (std::size_t position = 0; position <= text.size(); ++position) {
        std::string withNul = text;
        withNul.insert(position, 1, '\0');
        expectRefused(withNul, kBadSize);
    }
}

TEST(FileInventory, BelongsToTheReleaseWhoseManifestItRepeats) {
    Manifest manifest = sampleManifest();
    manifest.release = 4294967295U;
    manifest.protocol = 65535;
    manifest.version = " 1=2 ";
    manifest.sha256 = sampleDigest('f');
    const std::string header =
        "KVN-FILES/1\narchive=" + sampleDigest('f') + "\nrelease=4294967295\nprotocol=65535\nversion= 1=2 \n";
    const std::string body = joinLines(Lines(kValid.begin() + 5, kValid.end()));
    EXPECT_EQ(expectAccepted(header + body, manifest), sampleEntries());
    expectRefused(header + body, kOtherRelease);
}

TEST(FileInventory, RefusesEveryOtherHeaderLine) {
    const struct {
        std::string prefix;
        std::vector<std::string> instead;
    } rows[] = {
        {"KVN-FILES/1",
         {"", "KVN-FILES/2", "KVN-FILES/1 ", " KVN-FILES/1", "kvn-files/1", "KVN-FILES/1\r\r", "KVN-UPDATE/1",
          "\xef\xbb\xbfKVN-FILES/1", "KVN-FILES/10"}},
        {"archive=",
         {"", "archive=", "archive=" + sampleDigest('A'), "archive=" + sampleDigest('b'),
          "Archive=" + sampleDigest('a'), "archive=" + sampleDigest('a') + " ", "archive= " + sampleDigest('a'),
          "archive=" + sampleDigest('a') + "a", "archive=" + sampleDigest('a').substr(1), sampleDigest('a')}},
        {"release=",
         {"", "release=", "release=042", "release=41", "release=43", "release=4", "release=420", "release=+42",
          "release= 42", "release=42 ", "Release=42", "release=4294967338"}},
        {"protocol=",
         {"", "protocol=", "protocol=07", "protocol=6", "protocol=8", "protocol=7 ", "Protocol=7", "protocol=65543"}},
        {"version=",
         {"", "version=", "version=0.9.3", "version=0.9.3 Alpha", "version=0.9.3 alpha ", "version= 0.9.3 alpha",
          "Version=0.9.3 alpha", "version=0.9.3\talpha"}},
    };
    for (const auto& row : rows)
        for (const std::string& line : row.instead)
            expectRefused(withLine(kValid, row.prefix, line), kOtherRelease);
}

TEST(FileInventory, RefusesHeaderLinesThatAreMissingSwappedOrAdded) {
    for (std::size_t i = 0; i < kHeader.size(); ++i) {
        expectRefused(withoutLine(kValid, kHeader[i]), kOtherRelease);
        const Lines beginning(kHeader.begin(), kHeader.begin() + static_cast<std::ptrdiff_t>(i));
        expectRefused(joinLines(beginning, "\n", false) + (i == 0 ? "\n" : ""), kOtherRelease);
        if (i > 0) {
            expectRefused(beginning, kOtherRelease);
            Lines swapped = kValid;
            std::swap(swapped[i - 1], swapped[i]);
            expectRefused(swapped, kOtherRelease);
            Lines withBlank = kValid;
            withBlank.insert(withBlank.begin() + static_cast<std::ptrdiff_t>(i), "");
            expectRefused(withBlank, kOtherRelease);
        }
    }
    expectRefused("\n" + joinLines(kValid), kOtherRelease);
    expectRefused(kHeader[0], kOtherRelease);
}

TEST(FileInventory, MissesTheReleaseMarkerWithoutAnyRecord) {
    expectRefused(kHeader, kNoMarker);
    expectRefused(joinLines(kHeader, "\n", false), kNoMarker);
    expectRefused(joinLines(kHeader, "\r\n"), kNoMarker);
}

TEST(FileInventory, RefusesBlankRecordLines) {
    expectRefused(joinLines(kValid) + "\n", kMalformed);
    expectRefused(joinLines(kValid) + "\r\n", kMalformed);
    expectRefused(joinLines(kValid) + "\r", kMalformed);
    expectRefused(joinLines(kHeader) + "\n", kMalformed);
    for (std::size_t i = 5; i < kValid.size(); ++i) {
        Lines lines = kValid;
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(i), "");
        expectRefused(lines, kMalformed);
    }
}

TEST(FileInventory, RefusesRecordsWithoutTwoTabs) {
    for (const std::string& line :
         {std::string("a.txt"), std::string("a.txt\t5"), std::string("a.txt\t"), std::string("\t"),
          "a.txt 5 " + kDigest, "a.txt\t5 " + kDigest, "a.txt,5," + kDigest, std::string(" "), std::string("# comment"),
          std::string("../x"), kDigest}) {
        expectRefused(plus(kValid, {line}), kMalformed);
        expectRefused(joinLines(plus(kValid, {line}), "\r\n", false), kMalformed);
        expectRefused(plus(plus(kHeader, {line}), Lines(kValid.begin() + 5, kValid.end())), kMalformed);
    }
}

TEST(FileInventory, RefusesDigestsThatAreNot64HexadecimalDigits) {
    for (const std::string& digest :
         {std::string(), std::string(63, 'a'), std::string(65, 'a'), std::string(63, 'a') + " ",
          " " + std::string(63, 'a'), std::string(64, 'g'), std::string(63, 'a') + "G", std::string(63, 'a') + "/",
          std::string(63, 'a') + ":", std::string(63, 'a') + "@", std::string(63, 'a') + "`", "\t" + kDigest,
          kDigest + "\t", kDigest + "\tx", std::string(63, 'a') + "\t", std::string(63, 'a') + "\xe1"})
        expectRefused(plus(kValid, {record("a", "1", digest)}), kUnsafe);
}

TEST(FileInventory, StoresDigestsInLowerCase) {
    const std::string upper = "0123456789ABCDEF0123456789abcdef0123456789ABCDEF0123456789abcdef";
    const std::string lower = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";
    EXPECT_EQ(expectAccepted(plus(kValid, {record("A.txt", "1", upper)})).back(), (InventoryEntry{"A.txt", lower, 1}));
}

TEST(FileInventory, RefusesUnsafePaths) {
    for (const std::string path : {"", "../x", "/x", "C:/x", "a\\b", "a//b", "a/", "con", "a.", " ", "a ", "a+b",
                                   "Gr\xc3\xb6\xc3\x9f", "./a", "a\rb"})
        expectRefused(plus(kValid, {record(path)}), kUnsafe);
    expectRefused(plus(kValid, {record(std::string(241, 'a'))}), kUnsafe);
    EXPECT_EQ(expectAccepted(plus(kValid, {record(std::string(240, 'a'))})).back().path, std::string(240, 'a'));
}

TEST(FileInventory, RefusesTheWorkFolderInEveryLetterCase) {
    for (const std::string path :
         {".kvn-update", ".kvn-update/x", ".KVN-UPDATE", ".Kvn-Update/x/y", "data/.kvn-update/x"})
        expectRefused(plus(kValid, {record(path)}), kUnsafe);
    EXPECT_EQ(expectAccepted(plus(kValid, {record(".kvn-update2/x")})).back().path, ".kvn-update2/x");
}

TEST(FileInventory, RefusesSizesThatAreNoNumber) {
    for (const std::string size :
         {"", "+5", " 5", "5 ", "-5", "0x5", "5.0", "5k", "5,000", "five", "5/", "5:", "18446744073709551616",
          "18446744073709551617", "36893488147419103232", "99999999999999999999999999"})
        expectRefused(plus(kValid, {record("a", size)}), kUnsafe);
}

TEST(FileInventory, AcceptsSizesOfZeroAndWithLeadingZeros) {
    EXPECT_EQ(expectAccepted(plus(kValid, {record("a", "0")})).back().size, 0U);
    EXPECT_EQ(expectAccepted(plus(kValid, {record("a", "000")})).back().size, 0U);
    EXPECT_EQ(expectAccepted(plus(kValid, {record("a", "007")})).back().size, 7U);
}

TEST(FileInventory, AcceptsFilesThatSumUpToExactly2GiB) {
    const std::uint64_t rest = 2147483648 - kSampleBytes;
    EXPECT_EQ(expectAccepted(plus(kValid, {record("a", std::to_string(rest))})).back().size, rest);
    expectRefused(plus(kValid, {record("a", std::to_string(rest + 1))}), kUnsafe);
    expectAccepted(plus(kValid, {record("a", std::to_string(rest - 1)), record("b", "1"), record("c", "0")}));
    expectRefused(plus(kValid, {record("a", std::to_string(rest - 1)), record("b", "2")}), kUnsafe);
    expectRefused(plus(kValid, {record("a", std::to_string(rest)), record("b", "1")}), kUnsafe);
    expectAccepted(plus(kValid, {record("a", std::to_string(rest)), record("b", "0")}));
}

TEST(FileInventory, RefusesSizesWhoseSumWouldWrapAround) {
    expectRefused(plus(kValid, {record("a", "18446744073709551615")}), kUnsafe);
    expectRefused(plus(kValid, {record("a", std::to_string(std::uint64_t{0} - kSampleBytes))}), kUnsafe);
    expectRefused(plus(kValid, {record("a", std::to_string(std::uint64_t{1} - kSampleBytes))}), kUnsafe);
    expectRefused(plus(kValid, {record("a", "4294967296")}), kUnsafe);
    expectRefused(plus(kValid, {record("a", "4294967297")}), kUnsafe);
}

TEST(FileInventory, AcceptsExactlyAsManyRecordsAsAReleaseMayHold) {
    EXPECT_EQ(expectAccepted(inventoryOf(1024)).size(), 1024U);
    expectRefused(inventoryOf(1025), kUnsafe);
}

TEST(FileInventory, RefusesAPathThatStandsTwiceInAnyLetterCase) {
    for (const Lines& paths : std::vector<Lines>{{"a", "a"},
                                                 {"Data/A.pak", "data/a.pak"},
                                                 {"data/a.pak", "b", "DATA/A.PAK"},
                                                 {"kvn_release.txt"},
                                                 {"vorthmere.exe"},
                                                 {"KVN_RELEASE.TXT"}})
        expectRefused(plus(kValid, records(paths)), kDuplicate);
}

TEST(FileInventory, RefusesAFileThatIsAlsoAFolderInAnyLetterCase) {
    for (const Lines& paths : std::vector<Lines>{{"Data", "x"},
                                                 {"data"},
                                                 {"DATA"},
                                                 {"a", "a/b"},
                                                 {"a/b", "a"},
                                                 {"A", "a/b"},
                                                 {"a/b/c/d", "a"},
                                                 {"a/b/c/d", "A/B"},
                                                 {"a/b/c/d", "a/B/c"},
                                                 {"a/b/c", "a/b", "z"},
                                                 {"a", "a-b", "a.b", "a b", "a/b"},
                                                 {"vorthmere.exe/x"},
                                                 {"KVN_RELEASE.txt/x"}})
        expectRefused(plus(kValid, records(paths)), kConflict);
}

TEST(FileInventory, AcceptsNeighboursThatAreNoParents) {
    for (const Lines& paths : std::vector<Lines>{{"data2"},
                                                 {"dat"},
                                                 {"data.pak"},
                                                 {"maps.pak"},
                                                 {"data/maps"},
                                                 {"data/maps.pak2/x"},
                                                 {"b/data"},
                                                 {"a/b", "ab", "a/bc", "a/c/b", "b/a"}})
        EXPECT_EQ(expectAccepted(plus(kValid, records(paths))).size(), 5 + paths.size());
}

TEST(FileInventory, RequiresTheReleaseMarkerInAnyLetterCase) {
    for (const std::string marker : {"kvn_release.txt", "KVN_Release.TXT", "KVN_RELEASE.TXT"})
        EXPECT_EQ(expectAccepted(withLine(kValid, "kvn_release.txt\t", record(marker))).size(), 5U);
    expectRefused(withoutLine(kValid, "kvn_release.txt\t"), kNoMarker);
    for (const std::string path : {"data/kvn_release.txt", "kvn_release.txt/x", "kvn_release.txt2", "kvn_release",
                                   " kvn_release.txt", "kvn-release.txt"})
        expectRefused(withLine(kValid, "kvn_release.txt\t", record(path)), kNoMarker);
}

TEST(FileInventory, RequiresTheFilesOfEveryManagedFileListExactly) {
    for (const std::string path : {"KVN_MANAGED_FILES.txt", "Vorthmere.exe", "KVNUpdater.exe"}) {
        std::string otherCase = path;
        otherCase[0] = static_cast<char>(otherCase[0] - 'A' + 'a');
        expectRefused(withoutLine(kValid, path + "\t"), kListMissing);
        expectRefused(withLine(kValid, path + "\t", record(otherCase)), kListMissing);
        expectRefused(withLine(kValid, path + "\t", record("bin/" + path)), kListMissing);
    }
    expectRefused(withLine(kValid, "KVNUpdater.exe\t", record("kvnupdater.exe")), kListMissing);
}

// The paths, each with a line feed, make up the release's managed-file list and must not exceed its limit.
TEST(FileInventory, AcceptsPathsThatFillAManagedFileListExactly) {
    std::size_t bytes = 0;
    for (const InventoryEntry& entry : sampleEntries())
        bytes += entry.path.size() + 1;
    Lines lines = kValid;
    for (int number = 1000; bytes + 241 <= 131072 - 100; ++number, bytes += 241)
        lines.push_back(record(std::to_string(number) + std::string(236, 'x')));
    const std::size_t rest = 131072 - bytes - 1;
    ASSERT_GE(rest, 99U);
    ASSERT_LE(rest, 339U);
    const std::string half(rest / 2 - 1, 'y');
    const std::string other(rest - half.size() - 1, 'z');
    expectAccepted(plus(lines, records({half, other})));
    expectRefused(plus(lines, records({half, other + "z"})), kListSize);
}

TEST(FileInventory, NamesTheFirstFaultInTheOrderOfItsChecks) {
    const std::string badRecord = record("../x");
    const std::string good = record("Good");
    expectRefused("no header" + std::string(393216, '\n'), kBadSize);
    expectRefused(std::string("no header\0", 10), kBadSize);
    expectRefused("no header\nno record\n", kOtherRelease);
    expectRefused(withLine(kValid, "version=", badRecord), kOtherRelease);
    expectRefused(plus(withLine(kValid, "release=", "release=43"), {"no record"}), kOtherRelease);

    expectRefused(plus(kHeader, {"no record", badRecord}), kMalformed);
    expectRefused(plus(kHeader, {badRecord, "no record"}), kUnsafe);
    expectRefused(plus(kHeader, {good, good, "no record"}), kDuplicate);
    expectRefused(plus(kHeader, {good, "no record", good}), kMalformed);
    expectRefused(plus(kHeader, {good, "Good\t1"}), kMalformed);

    expectRefused(plus(kHeader, {good, record("good", "x")}), kUnsafe);
    expectRefused(plus(kHeader, {good, record("good", "1", "x")}), kUnsafe);
    expectRefused(plus(kHeader, {good, record("good", "2147483648")}), kUnsafe);
    expectRefused(plus(kHeader, {good, good, badRecord}), kDuplicate);
    expectRefused(plus(inventoryOf(1024), {record("kvn_release.txt")}), kUnsafe);
    expectRefused(plus(inventoryOf(1023), {record("kvn_release.txt")}), kDuplicate);

    expectRefused(plus(kHeader, {good, record("good/x"), record("GOOD")}), kDuplicate);
    expectRefused(plus(kHeader, {good, record("good/x"), badRecord}), kUnsafe);
    expectRefused(plus(kHeader, {good, record("good/x"), "no record"}), kMalformed);
    expectRefused(plus(kHeader, {good, record("good/x")}), kConflict);
    expectRefused(plus(withoutLine(kValid, "kvn_release.txt\t"), {good, record("good/x")}), kConflict);
    expectRefused(plus(withoutLine(kValid, "KVNUpdater.exe\t"), {good, record("good/x")}), kConflict);
    expectRefused(plus(kHeader, {good}), kNoMarker);
    expectRefused(withoutLine(withoutLine(kValid, "kvn_release.txt\t"), "KVNUpdater.exe\t"), kNoMarker);

    Lines longPaths;
    for (int number = 1000; number < 1544; ++number)
        longPaths.push_back(std::to_string(number) + std::string(236, 'x'));
    expectRefused(plus(kHeader, records(longPaths)), kNoMarker);
    expectRefused(plus(kHeader, records(plus(longPaths, {"kvn_release.txt"}))), kListSize);
    expectRefused(plus(kHeader, records({"kvn_release.txt"})), kListMissing);
}

TEST(FileInventory, TextIsWhatTheReaderReads) {
    EXPECT_EQ(inventoryText(sampleManifest(), sampleEntries()), joinLines(kValid));
}

TEST(FileInventory, HeaderTellsTheRelease) {
    Manifest manifest;
    ASSERT_TRUE(readInventoryHeader(joinLines(kHeader), manifest));
    EXPECT_EQ(manifest.sha256, sampleManifest().sha256);
    EXPECT_EQ(manifest.release, sampleManifest().release);
    EXPECT_EQ(manifest.protocol, sampleManifest().protocol);
    EXPECT_EQ(manifest.version, sampleManifest().version);
}

TEST(FileInventory, WhatHasOtherLinesAfterTheFirstHasNoHeader) {
    Manifest manifest;
    for (const std::string key : {"archive", "release", "protocol", "version"}) {
        EXPECT_FALSE(readInventoryHeader(joinLines(withoutLine(kHeader, key)), manifest)) << key;
        EXPECT_FALSE(readInventoryHeader(joinLines(withLine(kHeader, key, key + "x=1")), manifest)) << key;
        EXPECT_FALSE(readInventoryHeader(joinLines(withLine(kHeader, key, key)), manifest)) << key;
    }
    for (const std::string key : {"release", "protocol"})
        EXPECT_FALSE(readInventoryHeader(joinLines(withLine(kHeader, key, key + "=one")), manifest)) << key;
}

TEST(FileInventory, ListThatLeavesOutOrAddsAFileNamesOthers) {
    const Entries entries = sampleEntries();
    Lines listed;
    for (const InventoryEntry& entry : entries)
        listed.insert(listed.begin(), entry.path);
    EXPECT_TRUE(namesSameFiles(entries, listed));
    listed.front() += "x";
    EXPECT_FALSE(namesSameFiles(entries, listed));
    listed.erase(listed.begin());
    EXPECT_FALSE(namesSameFiles(entries, listed));
    listed.push_back(entries.back().path);
    listed.push_back("one more");
    EXPECT_FALSE(namesSameFiles(entries, listed));
}

}  // namespace
}  // namespace vorthmere::update
