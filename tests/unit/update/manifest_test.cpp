#include "update/manifest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "tests/support/sample_metadata.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"

namespace vorthmere::update {
namespace {

using testing::joinLines;
using testing::Lines;
using testing::manifestLines;
using testing::sampleDigest;
using testing::sampleManifest;
using testing::withLine;
using testing::withoutLine;

constexpr char kBadSize[] = "Manifest size is invalid.";
constexpr char kBadHeader[] = "Manifest header is invalid.";
constexpr char kMalformed[] = "Manifest field is malformed.";
constexpr char kDuplicate[] = "Manifest contains a duplicate field.";
constexpr char kUnknown[] = "Manifest contains an unknown field.";
constexpr char kMissing[] = "Manifest is missing a required field.";

struct FieldFault {
    std::string key;
    std::string badValue;
    std::string sentence;
};

const std::vector<FieldFault> kFieldFaults = {
    {"release", "0", "Manifest release is invalid."},   {"version", "", "Manifest version is invalid."},
    {"protocol", "0", "Manifest protocol is invalid."}, {"mandatory", "2", "Manifest mandatory flag is invalid."},
    {"size", "0", "Manifest archive size is invalid."}, {"sha256", "0", "Manifest SHA-256 is invalid."},
    {"url", "0", "Manifest archive URL is invalid."},   {"notes", "\t", "Manifest notes are invalid."},
};

std::string sentenceFor(const std::string& key) {
    return std::find_if(kFieldFaults.begin(), kFieldFaults.end(), [&key](const FieldFault& f) { return f.key == key; })
        ->sentence;
}

const Lines kValid = manifestLines(sampleManifest());

Lines plus(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

std::string withValue(const std::string& key, const std::string& value) {
    return joinLines(withLine(kValid, key + "=", key + "=" + value));
}

void expectRefused(const std::string& text, const std::string& sentence) {
    Manifest manifest;
    std::string error = "an earlier sentence";
    EXPECT_FALSE(parseManifest(text, manifest, error)) << ::testing::PrintToString(text);
    EXPECT_EQ(error, sentence) << ::testing::PrintToString(text);
}

void expectRefused(const Lines& lines, const std::string& sentence) {
    expectRefused(joinLines(lines), sentence);
}

Manifest expectAccepted(const std::string& text) {
    Manifest manifest;
    std::string error = "an earlier sentence";
    EXPECT_TRUE(parseManifest(text, manifest, error)) << ::testing::PrintToString(text);
    EXPECT_EQ(error, "") << ::testing::PrintToString(text);
    return manifest;
}

void expectValuesRefused(const std::string& key, const std::vector<std::string>& values) {
    for (const std::string& value : values)
        expectRefused(withValue(key, value), sentenceFor(key));
}

TEST(Manifest, FillsEveryField) {
    const std::string digest = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";
    const std::string url = std::string(kDownloadBaseUrl) + "KVN-release-42.zip";
    const Manifest manifest = expectAccepted(
        "KVN-UPDATE/1\nrelease=42\nversion=0.9.3 alpha\nprotocol=7\nmandatory=1\nsize=123456789\nsha256=" + digest +
        "\nurl=" + url + "\nnotes=Balance changes and fixes.\n");
    EXPECT_EQ(manifest.release, 42U);
    EXPECT_EQ(manifest.version, "0.9.3 alpha");
    EXPECT_EQ(manifest.protocol, 7U);
    EXPECT_TRUE(manifest.mandatory);
    EXPECT_EQ(manifest.size, 123456789U);
    EXPECT_EQ(manifest.sha256, digest);
    EXPECT_EQ(manifest.url, url);
    EXPECT_EQ(manifest.notes, "Balance changes and fixes.");
}

TEST(Manifest, ReadsTheSameRecordWithEveryLineEnd) {
    for (const std::string lineEnd : {"\n", "\r\n"})
        for (const bool endLastLine : {true, false})
            EXPECT_EQ(expectAccepted(joinLines(kValid, lineEnd, endLastLine)), sampleManifest());
    Lines mixed = kValid;
    for (std::size_t i = 0; i < mixed.size(); i += 2)
        mixed[i] += "\r";
    EXPECT_EQ(expectAccepted(joinLines(mixed)), sampleManifest());
    EXPECT_EQ(expectAccepted(joinLines(kValid) + "\r"), sampleManifest());
}

TEST(Manifest, ReadsTheFieldsInAnyOrder) {
    Lines fields(kValid.begin() + 1, kValid.end());
    for (std::size_t turn = 0; turn < fields.size(); ++turn) {
        std::rotate(fields.begin(), fields.begin() + 1, fields.end());
        Lines reversed(fields.rbegin(), fields.rend());
        EXPECT_EQ(expectAccepted(joinLines(plus({kValid[0]}, fields))), sampleManifest());
        EXPECT_EQ(expectAccepted(joinLines(plus({kValid[0]}, reversed))), sampleManifest());
    }
}

TEST(Manifest, ResetsTheRecordAndTheSentenceOnEntry) {
    Manifest manifest = sampleManifest();
    std::string error = "an earlier sentence";
    EXPECT_FALSE(parseManifest("", manifest, error));
    EXPECT_EQ(manifest, Manifest());
    EXPECT_EQ(error, kBadSize);

    manifest = sampleManifest();
    EXPECT_FALSE(parseManifest("KVN-UPDATE/2\n", manifest, error));
    EXPECT_EQ(manifest, Manifest());

    manifest = sampleManifest();
    EXPECT_TRUE(parseManifest(withValue("mandatory", "0"), manifest, error));
    EXPECT_FALSE(manifest.mandatory);
    EXPECT_EQ(error, "");
}

TEST(Manifest, KeepsTheFieldsReadBeforeAFaultAndNothingElse) {
    Manifest manifest = sampleManifest();
    std::string error;
    EXPECT_FALSE(parseManifest("KVN-UPDATE/1\nversion=1.0\nmandatory=2\n", manifest, error));
    EXPECT_EQ(manifest.version, "1.0");
    EXPECT_EQ(manifest.release, 0U);
    EXPECT_EQ(manifest.protocol, 0U);
    EXPECT_FALSE(manifest.mandatory);
    EXPECT_EQ(manifest.size, 0U);
    EXPECT_EQ(manifest.url + manifest.sha256 + manifest.notes, "");
}

TEST(Manifest, IsReadUpToExactly8192Bytes) {
    const std::string text = joinLines(kValid);
    const std::string zeros(8192 - text.size(), '0');
    const std::string longest = withValue("release", zeros + "42");
    ASSERT_EQ(longest.size(), 8192U);
    EXPECT_EQ(expectAccepted(longest), sampleManifest());
    expectRefused(withValue("release", "0" + zeros + "42"), kBadSize);
    expectRefused(std::string(100000, '\n'), kBadSize);
    expectRefused("", kBadSize);
}

TEST(Manifest, RefusesANulByteAnywhere) {
    const std::string text = joinLines(kValid);
    for (std::size_t position = 0; position <= text.size(); ++position) {
        std::string withNul = text;
        withNul.insert(position, 1, '\0');
        expectRefused(withNul, kBadSize);
    }
    expectRefused(std::string(1, '\0'), kBadSize);
}

TEST(Manifest, RefusesEveryOtherHeader) {
    for (const std::string header :
         {"", " ", "KVN-UPDATE/1 ", " KVN-UPDATE/1", "kvn-update/1", "KVN-UPDATE/2", "KVN-UPDATE/10", "KVN-UPDATE/",
          "KVN-UPDATE/1\r\r", "\rKVN-UPDATE/1", "KVN-UPDATE/1\t", "\xef\xbb\xbfKVN-UPDATE/1", "KVN-FILES/1",
          "KVN-UPDATE/1=", "VN-UPDATE/1", "release=42"}) {
        expectRefused(withLine(kValid, "KVN-UPDATE/1", header), kBadHeader);
        if (!header.empty()) expectRefused(header + "\r\n", kBadHeader);
    }
    expectRefused("\n" + joinLines(kValid), kBadHeader);
    expectRefused("\n", kBadHeader);
    expectRefused("\r\n", kBadHeader);
    expectRefused(joinLines(kValid, "\r"), kBadHeader);
    expectRefused(joinLines(Lines(kValid.begin() + 1, kValid.end())), kBadHeader);
}

TEST(Manifest, MissesFieldsWhenThereIsOnlyAHeader) {
    for (const std::string text : {"KVN-UPDATE/1", "KVN-UPDATE/1\n", "KVN-UPDATE/1\r\n", "KVN-UPDATE/1\r"})
        expectRefused(text, kMissing);
}

TEST(Manifest, MissesEachOfTheEightFields) {
    for (const FieldFault& field : kFieldFaults) {
        expectRefused(withoutLine(kValid, field.key + "="), kMissing);
        expectRefused(joinLines(withoutLine(kValid, field.key + "="), "\r\n", false), kMissing);
    }
}

TEST(Manifest, RefusesBlankLinesUnlessTheyAreTheLast) {
    expectRefused(joinLines(kValid) + "\n", kMalformed);
    expectRefused(joinLines(kValid, "\r\n") + "\r\n", kMalformed);
    expectRefused(joinLines(kValid) + "\n\n", kMalformed);
    expectRefused(joinLines(kValid) + "\r\r", kMalformed);
    expectRefused("KVN-UPDATE/1\n\n", kMalformed);
    for (std::size_t i = 1; i < kValid.size(); ++i) {
        for (const std::string blank : {"", "\r"}) {
            Lines lines = kValid;
            lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(i), blank);
            expectRefused(lines, kMalformed);
        }
    }
}

TEST(Manifest, RefusesLinesThatAreNoField) {
    for (const std::string line :
         {"release", "=42", "=", "==", " ", "\t", "# a comment", "release:42", "\r\r", "notes"}) {
        expectRefused(plus(kValid, {line}), kMalformed);
        expectRefused(withLine(kValid, "release=", line), kMalformed);
    }
}

TEST(Manifest, RefusesASecondLineForAFieldEvenWithTheSameValue) {
    for (std::size_t i = 1; i < kValid.size(); ++i)
        expectRefused(plus(kValid, {kValid[i]}), kDuplicate);
    expectRefused(plus(kValid, {"release=43"}), kDuplicate);
    expectRefused(plus(kValid, {"notes="}), kDuplicate);
}

TEST(Manifest, RefusesKeysItDoesNotKnow) {
    for (const std::string line : {"Release=1", "RELEASE=1", " release=1", "release =1", "releas=1", "releases=1",
                                   "comment=x", "\trelease=1", "\rrelease=1", "#release=1", "Notes=", "x==", " =1"})
        expectRefused(plus(kValid, {line}), kUnknown);
    for (const FieldFault& field : kFieldFaults) {
        std::string renamed = field.key;
        renamed[0] = static_cast<char>(renamed[0] - 'a' + 'A');
        expectRefused(withLine(kValid, field.key + "=", renamed + "=1"), kUnknown);
    }
}

TEST(Manifest, TakesReleasesFrom1To32Bits) {
    EXPECT_EQ(expectAccepted(withValue("release", "1")).release, 1U);
    EXPECT_EQ(expectAccepted(withValue("release", "007")).release, 7U);
    EXPECT_EQ(expectAccepted(withValue("release", "4294967295")).release, 4294967295U);
    expectValuesRefused("release", {"0",           "00",    "4294967296", "4294967297", "18446744073709551617",
                                    "42949672950", "",      "+1",         "-1",         " 1",
                                    "1 ",          "1\r\r", "0x1",        "1e3",        "1.0",
                                    "one",         "1=1",   "\xd9\xa1",   "1/",         "1:"});
}

TEST(Manifest, TakesProtocolsFrom1To16Bits) {
    EXPECT_EQ(expectAccepted(withValue("protocol", "1")).protocol, 1U);
    EXPECT_EQ(expectAccepted(withValue("protocol", "65535")).protocol, 65535U);
    EXPECT_EQ(expectAccepted(withValue("protocol", "000065535")).protocol, 65535U);
    expectValuesRefused("protocol", {"0", "65536", "65537", "131073", "4294967297", "", "+1", "-1", " 1", "1 ", "0x1",
                                     "655350", "one", "1\r\r"});
}

TEST(Manifest, TakesArchiveSizesFrom1To512MiB) {
    EXPECT_EQ(expectAccepted(withValue("size", "1")).size, 1U);
    EXPECT_EQ(expectAccepted(withValue("size", "0012")).size, 12U);
    EXPECT_EQ(expectAccepted(withValue("size", "536870911")).size, 536870911U);
    EXPECT_EQ(expectAccepted(withValue("size", "536870912")).size, 536870912U);
    expectValuesRefused("size",
                        {"0", "536870913", "4294967296", "4294967297", "18446744073709551615", "18446744073709551616",
                         "18446744073709551617", "", "+1", "-1", " 1", "1 ", "0x1", "1K", "1\r\r", "1,000"});
}

TEST(Manifest, TakesTheMandatoryFlagAs0Or1) {
    EXPECT_FALSE(expectAccepted(withValue("mandatory", "0")).mandatory);
    EXPECT_TRUE(expectAccepted(withValue("mandatory", "1")).mandatory);
    expectValuesRefused("mandatory",
                        {"", "true", "false", "01", "00", "10", "11", "2", "9", " 1", "1 ", "1\r\r", "-1", "/", "=1"});
}

TEST(Manifest, TakesDigestsOf64HexadecimalDigitsAndStoresThemInLowerCase) {
    const std::string upper = "0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF";
    const std::string lower = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";
    EXPECT_EQ(expectAccepted(withValue("sha256", upper)).sha256, lower);
    EXPECT_EQ(expectAccepted(withValue("sha256", lower)).sha256, lower);
    EXPECT_EQ(expectAccepted(withValue("sha256", upper.substr(0, 32) + lower.substr(0, 32))).sha256, lower);
    expectValuesRefused("sha256", {"", std::string(63, 'a'), std::string(65, 'a'), std::string(128, 'a'),
                                   std::string(63, 'a') + " ", " " + std::string(63, 'a'), " " + std::string(64, 'a'),
                                   std::string(64, 'a') + " ", "0x" + std::string(62, 'a')});
    for (int value = 1; value < 256; ++value) {
        const char byte = static_cast<char>(value);
        if (byte == '\n' || std::string("0123456789abcdefABCDEF").find(byte) != std::string::npos) continue;
        expectValuesRefused("sha256", {std::string(31, 'a') + byte + std::string(32, 'a')});
    }
}

TEST(Manifest, TakesVersionsOf1To48PrintableBytesAsWritten) {
    for (const std::string& version :
         {std::string("1"), std::string(47, 'v'), std::string(48, 'v'), std::string(" 1.0 "), std::string("a=b=c"),
          std::string("="), std::string(" "), std::string("~!")})
        EXPECT_EQ(expectAccepted(withValue("version", version)).version, version);
    expectValuesRefused("version", {"", std::string(49, 'v'), std::string(240, 'v')});
}

TEST(Manifest, TakesNotesOf0To240PrintableBytesAsWritten) {
    for (const std::string& notes : {std::string(), std::string(239, 'n'), std::string(240, 'n'), std::string(" a "),
                                     std::string("a=b"), std::string("release=1")})
        EXPECT_EQ(expectAccepted(withValue("notes", notes)).notes, notes);
    expectValuesRefused("notes", {std::string(241, 'n'), std::string(1000, 'n'), "a\tb", "\t", "a\r\r"});
}

TEST(Manifest, TakesExactlyThePrintableAsciiBytesInTexts) {
    for (int value = 1; value < 256; ++value) {
        if (value == '\n') continue;
        const char byte = static_cast<char>(value);
        for (const std::string key : {"version", "notes"}) {
            for (const std::string& text :
                 {std::string{'a', byte, 'b'}, std::string{byte, 'b'}, std::string{'a', byte, '.'}}) {
                if (value >= 32 && value <= 126)
                    expectAccepted(withValue(key, text));
                else
                    expectValuesRefused(key, {text});
            }
        }
    }
}

const std::string kBase(kDownloadBaseUrl);

TEST(Manifest, TakesArchiveAddressesInTheDownloadFolderAsWritten) {
    const std::string longest = kBase + "KVN-" + std::string(512 - kBase.size() - 8, 'a') + ".zip";
    ASSERT_EQ(longest.size(), 512U);
    for (const std::string& url :
         {kBase + "KVN-release-42.zip", kBase + "KVN-a.zip", kBase + "KVN-0.zip", kBase + "KVN--.zip",
          kBase + "KVN-_.zip", kBase + "KVN-..zip", kBase + "KVN-A.B_c-9..zip.zip", kBase + "KVN-.zip.zip", longest})
        EXPECT_EQ(expectAccepted(withValue("url", url)).url, url);
}

TEST(Manifest, RefusesEveryOtherArchiveAddress) {
    const std::string afterScheme = kBase.substr(std::string("https://").size());
    expectValuesRefused("url", {"",
                                kBase,
                                kBase + "KVN-",
                                kBase + "KVN-.zip",
                                kBase + "KVN-a",
                                kBase + "KVN-a.ZIP",
                                kBase + "KVN-a.Zip",
                                kBase + "KVN-a.zip ",
                                kBase + "KVN-a.zipx",
                                kBase + "KVN-a.zi",
                                kBase + "KVN-azip",
                                kBase + "KVN-abcdezip",
                                kBase + "KVN-a.tar",
                                kBase + "KVN-a.zip.tar",
                                kBase + "kvn-a.zip",
                                kBase + "KVN_a.zip",
                                kBase + "KVNa.zip",
                                kBase + "a.zip",
                                kBase + "aKVN-a.zip",
                                kBase + "sub/KVN-a.zip",
                                kBase + "KVN-a/b.zip",
                                kBase + "KVN-/a.zip",
                                kBase + "KVN-a/../b.zip",
                                kBase + "KVN-a?b.zip",
                                kBase + "KVN-a%41.zip",
                                kBase + "KVN-a#b.zip",
                                kBase + "KVN-a\\b.zip",
                                kBase + "KVN-a b.zip",
                                kBase + "KVN-a.zip?x=.zip",
                                " " + kBase + "KVN-a.zip",
                                "KVN-release-42.zip",
                                "http://" + afterScheme + "KVN-a.zip",
                                "HTTPS://" + afterScheme + "KVN-a.zip",
                                "ftp://" + afterScheme + "KVN-a.zip",
                                "https://other.example/downloads/KVN-a.zip",
                                "https://user@" + afterScheme + "KVN-a.zip",
                                afterScheme + "KVN-a.zip",
                                kBase + "KVN-" + std::string(513 - kBase.size() - 8, 'a') + ".zip",
                                kBase + "KVN-" + std::string(1000, 'a') + ".zip"});
}

TEST(Manifest, ComparesEveryByteOfTheArchiveAddressPrefix) {
    const std::string prefix = kBase + "KVN-";
    for (std::size_t position = 0; position < prefix.size(); ++position) {
        std::string url = prefix + "a.zip";
        url[position] = url[position] == 'z' ? 'y' : 'z';
        expectValuesRefused("url", {url});
        if (prefix[position] >= 'a' && prefix[position] <= 'z') {
            url[position] = static_cast<char>(prefix[position] - 'a' + 'A');
            expectValuesRefused("url", {url});
        }
        expectValuesRefused("url", {(prefix + "abcde.zip").erase(position, 1)});
    }
}

TEST(Manifest, TakesExactlyTheNameBytesBehindTheArchiveAddressPrefix) {
    const std::string allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._";
    for (int value = 1; value < 256; ++value) {
        if (value == '\n') continue;
        const char byte = static_cast<char>(value);
        for (const std::string& name : {std::string{byte}, std::string{'a', byte}, std::string{'a', byte, 'b'}}) {
            const std::string url = kBase + "KVN-" + name + ".zip";
            if (allowed.find(byte) != std::string::npos)
                EXPECT_EQ(expectAccepted(withValue("url", url)).url, url);
            else
                expectValuesRefused("url", {url});
        }
    }
}

// For every two bad fields in both orders, the field whose line comes first is named.
TEST(Manifest, NamesTheFieldWhoseLineComesFirst) {
    for (const FieldFault& first : kFieldFaults) {
        for (const FieldFault& second : kFieldFaults) {
            if (first.key == second.key) continue;
            Lines lines = {kValid[0], first.key + "=" + first.badValue, second.key + "=" + second.badValue};
            lines = plus(lines, withoutLine(withoutLine(Lines(kValid.begin() + 1, kValid.end()), first.key + "="),
                                            second.key + "="));
            expectRefused(lines, first.sentence);
        }
    }
}

TEST(Manifest, NamesTheFirstFaultInTheOrderOfItsChecks) {
    const std::string tooLong(8193, 'x');
    expectRefused(tooLong, kBadSize);
    expectRefused("no header" + std::string(1, '\0'), kBadSize);
    expectRefused("no header", kBadHeader);
    expectRefused("no header\n\nno field\n", kBadHeader);
    expectRefused("no header\nrelease=0\n", kBadHeader);

    for (const FieldFault& field : kFieldFaults) {
        const std::string bad = field.key + "=" + field.badValue;
        const Lines others = withoutLine(kValid, field.key + "=");
        expectRefused(Lines{kValid[0], bad}, field.sentence);
        expectRefused(plus(kValid, {bad}), kDuplicate);
        expectRefused(plus(others, {bad, "no field"}), field.sentence);
        expectRefused(plus(others, {"no field", bad}), kMalformed);
        expectRefused(plus(others, {bad, "unknown=1"}), field.sentence);
        expectRefused(plus(others, {"unknown=1", bad}), kUnknown);
    }
    expectRefused(plus(kValid, {"no field", "release=42"}), kMalformed);
    expectRefused(plus(kValid, {"release=42", "no field"}), kDuplicate);
    expectRefused(plus(kValid, {"unknown=1", "unknown=1"}), kUnknown);
    expectRefused(plus(kValid, {"unknown=1", "release=42"}), kUnknown);
    expectRefused(plus(kValid, {"release=42", "unknown=1"}), kDuplicate);
    expectRefused(Lines{kValid[0], "no field"}, kMalformed);
    expectRefused(Lines{kValid[0], "unknown=1"}, kUnknown);
    expectRefused(Lines{kValid[0], "release=42", "release=42"}, kDuplicate);
}

TEST(Manifest, TextIsWhatTheReaderReads) {
    Manifest manifest = sampleManifest();
    EXPECT_EQ(manifestText(manifest), joinLines(manifestLines(manifest)));
    manifest.mandatory = false;
    manifest.notes.clear();
    EXPECT_EQ(expectAccepted(manifestText(manifest)), manifest);
}

}  // namespace
}  // namespace vorthmere::update
