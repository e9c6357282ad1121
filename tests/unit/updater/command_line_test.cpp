#include "updater/command_line.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

namespace vorthmere::update {
namespace {

using Words = std::vector<std::wstring>;

constexpr wchar_t kUsage[] = L"Usage: KVNUpdater --apply --install <folder> --parent <pid> --current <release>";
constexpr wchar_t kInvalid[] = L"The updater command line is invalid.";
constexpr wchar_t kMissing[] = L"The updater command line is missing the installation or release.";
constexpr wchar_t kBadParent[] = L"The updater parent process is invalid.";
constexpr wchar_t kUnknown[] = L"The updater command line contains an unknown option.";
constexpr wchar_t kLocal[] = L"Local update testing requires both a manifest file and a package file.";
constexpr wchar_t kIncremental[] =
    L"Local incremental testing requires a manifest, package, inventory, and object directory.";

struct Outcome {
    bool accepted = false;
    Arguments arguments;
    std::wstring error;
};

Outcome parse(const Words& words) {
    std::vector<const wchar_t*> argv = {L"C:\\Game\\KVNUpdater.exe"};
    for (const std::wstring& word : words)
        argv.push_back(word.c_str());
    Outcome outcome;
    outcome.accepted = parseArguments(static_cast<int>(argv.size()), argv.data(), outcome.arguments, outcome.error);
    return outcome;
}

// "--apply" with an installation and a release, and what a test adds.
Words validWith(const Words& more) {
    Words words = {L"--apply", L"--install", L"C:\\Game", L"--current", L"42"};
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

void expectRefused(const Words& words, const std::wstring& sentence) {
    const Outcome outcome = parse(words);
    EXPECT_FALSE(outcome.accepted) << ::testing::PrintToString(words);
    EXPECT_EQ(outcome.error, sentence) << ::testing::PrintToString(words);
}

Outcome expectAccepted(const Words& words) {
    Outcome outcome = parse(words);
    EXPECT_TRUE(outcome.accepted) << ::testing::PrintToString(words);
    EXPECT_EQ(outcome.error, L"") << ::testing::PrintToString(words);
    return outcome;
}

TEST(CommandLine, FillsEveryFieldFromItsOption) {
    const Outcome outcome =
        expectAccepted({L"--apply", L"--install", L"C:\\Games\\Kelvane", L"--parent", L"1234", L"--current", L"42",
                        L"--no-relaunch", L"--test-no-ui", L"--manifest-file", L"m.txt", L"--package-file", L"p.zip",
                        L"--inventory-file", L"i.txt", L"--object-directory", L"objects"});
    const Arguments& arguments = outcome.arguments;
    EXPECT_EQ(arguments.install, L"C:\\Games\\Kelvane");
    EXPECT_EQ(arguments.manifestFile, L"m.txt");
    EXPECT_EQ(arguments.packageFile, L"p.zip");
    EXPECT_EQ(arguments.inventoryFile, L"i.txt");
    EXPECT_EQ(arguments.objectDirectory, L"objects");
    EXPECT_EQ(arguments.parentProcessId, 1234U);
    EXPECT_EQ(arguments.currentRelease, 42U);
    EXPECT_TRUE(arguments.noRelaunch);
    EXPECT_TRUE(arguments.testNoUi);
}

TEST(CommandLine, LeavesWhatIsNotGivenEmptyAndZero) {
    const Arguments arguments = expectAccepted({L"--apply", L"--install", L"C:\\Game", L"--current", L"42"}).arguments;
    EXPECT_EQ(arguments.install, L"C:\\Game");
    EXPECT_EQ(arguments.currentRelease, 42U);
    EXPECT_EQ(arguments.parentProcessId, 0U);
    EXPECT_TRUE(arguments.manifestFile.empty());
    EXPECT_TRUE(arguments.packageFile.empty());
    EXPECT_TRUE(arguments.inventoryFile.empty());
    EXPECT_TRUE(arguments.objectDirectory.empty());
    EXPECT_FALSE(arguments.noRelaunch);
    EXPECT_FALSE(arguments.testNoUi);
}

TEST(CommandLine, AcceptsOptionsAndFlagsInAnyOrder) {
    for (const Words& words : std::vector<Words>{
             {L"--apply", L"--current", L"42", L"--install", L"C:\\Game", L"--parent", L"9", L"--no-relaunch"},
             {L"--apply", L"--no-relaunch", L"--parent", L"9", L"--install", L"C:\\Game", L"--current", L"42"},
             {L"--apply", L"--parent", L"9", L"--no-relaunch", L"--current", L"42", L"--install", L"C:\\Game"}}) {
        const Arguments arguments = expectAccepted(words).arguments;
        EXPECT_EQ(arguments.install, L"C:\\Game");
        EXPECT_EQ(arguments.currentRelease, 42U);
        EXPECT_EQ(arguments.parentProcessId, 9U);
        EXPECT_TRUE(arguments.noRelaunch);
        EXPECT_FALSE(arguments.testNoUi);
    }
}

TEST(CommandLine, AcceptsRepeatedFlagsBetweenOptions) {
    const Arguments arguments =
        expectAccepted({L"--apply", L"--test-no-ui", L"--install", L"C:\\Game", L"--no-relaunch", L"--no-relaunch",
                        L"--current", L"42", L"--test-no-ui", L"--no-relaunch"})
            .arguments;
    EXPECT_TRUE(arguments.noRelaunch);
    EXPECT_TRUE(arguments.testNoUi);
}

TEST(CommandLine, GivesEachFlagItsOwnField) {
    const Arguments quiet = expectAccepted(validWith({L"--test-no-ui"})).arguments;
    EXPECT_TRUE(quiet.testNoUi);
    EXPECT_FALSE(quiet.noRelaunch);
    const Arguments closed = expectAccepted(validWith({L"--no-relaunch"})).arguments;
    EXPECT_FALSE(closed.testNoUi);
    EXPECT_TRUE(closed.noRelaunch);
}

TEST(CommandLine, ShowsTheUsageUnlessApplyStandsFirst) {
    for (const Words& words :
         std::vector<Words>{{},
                            {L""},
                            {L"--Apply"},
                            {L"-apply"},
                            {L"apply"},
                            {L"/apply"},
                            {L"--apply "},
                            {L" --apply"},
                            {L"--applyx"},
                            {L"--appl"},
                            {L"--test-no-ui", L"--apply", L"--install", L"C:\\Game", L"--current", L"42"},
                            {L"--install", L"C:\\Game", L"--current", L"42", L"--apply"}})
        expectRefused(words, kUsage);
}

TEST(CommandLine, ShowsTheUsageWhenEvenTheProgramIsMissing) {
    Arguments arguments;
    std::wstring error;
    EXPECT_FALSE(parseArguments(0, nullptr, arguments, error));
    EXPECT_EQ(error, kUsage);
}

TEST(CommandLine, IgnoresTheProgramPath) {
    const wchar_t* const argv[] = {L"--apply", L"--apply", L"--install", L"C:\\Game", L"--current", L"42"};
    Arguments arguments;
    std::wstring error;
    EXPECT_TRUE(parseArguments(6, argv, arguments, error));
    const wchar_t* const onlyProgram[] = {L"--apply"};
    EXPECT_FALSE(parseArguments(1, onlyProgram, arguments, error));
    EXPECT_EQ(error, kUsage);
}

TEST(CommandLine, RefusesWhatIsNoPairOfOptionAndValue) {
    for (const Words& more : std::vector<Words>{{L"--parent"},
                                                {L"--foo"},
                                                {L"foo", L"bar"},
                                                {L"foo"},
                                                {L"-parent", L"1"},
                                                {L"-", L"1"},
                                                {L"", L"1"},
                                                {L"/parent", L"1"},
                                                {L" --parent", L"1"},
                                                {L"--parent", L"--no-relaunch"},
                                                {L"--parent", L"--test-no-ui", L"1"},
                                                {L"--parent", L"--manifest-file", L"m"},
                                                {L"--parent", L"--"},
                                                {L"--parent", L"--1"},
                                                {L"--no-relaunch", L"1"},
                                                {L"--test-no-ui", L"true"},
                                                {L"--parent", L"1", L"2"},
                                                {L"--apply"}})
        expectRefused(validWith(more), kInvalid);
    expectRefused({L"--apply", L"--install", L"--no-relaunch"}, kInvalid);
    expectRefused({L"--apply", L"--install"}, kInvalid);
    expectRefused({L"--apply", L"--install", L"--no-relaunch", L"--current", L"42"}, kInvalid);
}

TEST(CommandLine, RefusesAnOptionGivenTwice) {
    expectRefused({L"--apply", L"--install", L"a", L"--install", L"b"}, kInvalid);
    for (const std::wstring option : {L"--install", L"--current", L"--parent", L"--manifest-file", L"--package-file",
                                      L"--inventory-file", L"--object-directory", L"--foo", L"--apply", L"--"}) {
        expectRefused({L"--apply", option, L"1", option, L"2"}, kInvalid);
        expectRefused({L"--apply", option, L"1", L"--no-relaunch", option, L"1"}, kInvalid);
        expectRefused({L"--apply", option, L"", option, L""}, kInvalid);
    }
}

TEST(CommandLine, TakesValuesThatBeginWithOneDashOrAreEmpty) {
    EXPECT_EQ(expectAccepted({L"--apply", L"--install", L"-x", L"--current", L"42"}).arguments.install, L"-x");
    EXPECT_EQ(expectAccepted({L"--apply", L"--install", L"-", L"--current", L"42"}).arguments.install, L"-");
    EXPECT_TRUE(expectAccepted({L"--apply", L"--install", L"", L"--current", L"42"}).arguments.install.empty());
}

// Outside Windows, the library converts wide paths by the locale, which may lack these letters.
#ifdef _WIN32
TEST(CommandLine, KeepsWidePathsAsWritten) {
    const std::wstring folder = L"C:\\Spiele \x00f6\x4e16\\Kelvane";
    EXPECT_EQ(expectAccepted({L"--apply", L"--install", folder, L"--current", L"42"}).arguments.install.wstring(),
              folder);
}
#endif

TEST(CommandLine, RequiresTheInstallationAndTheRelease) {
    expectRefused({L"--apply"}, kMissing);
    expectRefused({L"--apply", L"--no-relaunch", L"--test-no-ui"}, kMissing);
    expectRefused({L"--apply", L"--install", L"C:\\Game"}, kMissing);
    expectRefused({L"--apply", L"--current", L"42"}, kMissing);
    expectRefused({L"--apply", L"--Install", L"C:\\Game", L"--current", L"42"}, kMissing);
    expectRefused({L"--apply", L"--install", L"C:\\Game", L"--CURRENT", L"42"}, kMissing);
}

TEST(CommandLine, RefusesAReleaseThatIsNoPositiveNumberOf32Bits) {
    for (const std::wstring text : {L"0",
                                    L"-5",
                                    L"1e3",
                                    L"4294967296",
                                    L"4294967297",
                                    L"4294967300",
                                    L"42949672950",
                                    L"18446744073709551617",
                                    L"99999999999999999999999999",
                                    L"",
                                    L"000",
                                    L" 42",
                                    L"42 ",
                                    L"+42",
                                    L"0x2A",
                                    L"4 2",
                                    L"42.",
                                    L"4,2",
                                    L"abc",
                                    L"\x0664\x0662",
                                    L"\xff14",
                                    L"/",
                                    L":",
                                    L"42\n"})
        expectRefused({L"--apply", L"--install", L"C:\\Game", L"--current", text}, kMissing);
}

TEST(CommandLine, AcceptsEveryReleaseUpTo32BitsWithLeadingZeros) {
    const struct {
        std::wstring text;
        std::uint32_t release;
    } rows[] = {{L"1", 1},
                {L"9", 9},
                {L"42", 42},
                {L"007", 7},
                {L"10", 10},
                {L"2147483648", 2147483648U},
                {L"4294967295", 4294967295U},
                {L"0000000000000000000004294967295", 4294967295U}};
    for (const auto& row : rows)
        EXPECT_EQ(
            expectAccepted({L"--apply", L"--install", L"C:\\Game", L"--current", row.text}).arguments.currentRelease,
            row.release)
            << ::testing::PrintToString(row.text);
}

TEST(CommandLine, RefusesAParentThatIsNoNumberOf32Bits) {
    for (const std::wstring text : {L"abc", L"", L"-1", L"+1", L" 1", L"1 ", L"0x10", L"4294967296", L"4294967297",
                                    L"18446744073709551616", L"1.0"})
        expectRefused(validWith({L"--parent", text}), kBadParent);
}

TEST(CommandLine, AcceptsEveryParentUpTo32BitsAndZero) {
    EXPECT_EQ(expectAccepted(validWith({L"--parent", L"0"})).arguments.parentProcessId, 0U);
    EXPECT_EQ(expectAccepted(validWith({L"--parent", L"0012"})).arguments.parentProcessId, 12U);
    EXPECT_EQ(expectAccepted(validWith({L"--parent", L"4294967295"})).arguments.parentProcessId, 4294967295U);
}

TEST(CommandLine, RefusesOptionsItDoesNotKnow) {
    for (const std::wstring option : {L"--foo", L"--", L"--Parent", L"--parents", L"--paren", L"--no-relaunch=1",
                                      L"--No-Relaunch", L"--TEST-NO-UI", L"--test-no-ui ", L"--apply", L"--install ",
                                      L"--manifest", L"--package", L"--inventory", L"--objects", L"---parent"})
        expectRefused(validWith({option, L"bar"}), kUnknown);
}

TEST(CommandLine, AcceptsOnlyWholeSetsOfLocalTestInputs) {
    const std::wstring options[] = {L"--manifest-file", L"--package-file", L"--inventory-file", L"--object-directory"};
    const struct {
        bool given[4];
        std::wstring sentence;
    } rows[] = {
        {{false, false, false, false}, L""},         {{true, false, false, false}, kLocal},
        {{false, true, false, false}, kLocal},       {{true, true, false, false}, L""},
        {{false, false, true, false}, kIncremental}, {{true, false, true, false}, kLocal},
        {{false, true, true, false}, kLocal},        {{true, true, true, false}, kIncremental},
        {{false, false, false, true}, kIncremental}, {{true, false, false, true}, kLocal},
        {{false, true, false, true}, kLocal},        {{true, true, false, true}, kIncremental},
        {{false, false, true, true}, kIncremental},  {{true, false, true, true}, kLocal},
        {{false, true, true, true}, kLocal},         {{true, true, true, true}, L""},
    };
    for (const auto& row : rows) {
        Words given;
        Words givenWithEmptyOnes;
        for (std::size_t i = 0; i < 4; ++i) {
            if (row.given[i]) given.insert(given.end(), {options[i], L"file"});
            givenWithEmptyOnes.insert(givenWithEmptyOnes.end(), {options[i], row.given[i] ? L"file" : L""});
        }
        for (const Words& more : {given, givenWithEmptyOnes}) {
            if (row.sentence.empty())
                expectAccepted(validWith(more));
            else
                expectRefused(validWith(more), row.sentence);
        }
    }
}

TEST(CommandLine, ReportsTheFirstFaultInTheOrderOfItsChecks) {
    const struct {
        std::wstring_view shows;
        Words words;
        std::wstring sentence;
    } rows[] = {
        {L"usage before invalid", {L"-apply", L"--parent"}, kUsage},
        {L"usage before missing", {L"-apply"}, kUsage},
        {L"invalid before missing", {L"--apply", L"--parent"}, kInvalid},
        {L"invalid before parent", validWith({L"--parent", L"abc", L"foo", L"bar"}), kInvalid},
        {L"invalid before unknown", validWith({L"--foo", L"bar", L"--parent"}), kInvalid},
        {L"invalid before local", validWith({L"--manifest-file", L"m", L"--parent"}), kInvalid},
        {L"missing before parent", {L"--apply", L"--current", L"42", L"--parent", L"abc"}, kMissing},
        {L"bad release before parent",
         {L"--apply", L"--install", L"g", L"--current", L"x", L"--parent", L"abc"},
         kMissing},
        {L"missing before unknown", {L"--apply", L"--current", L"42", L"--foo", L"bar"}, kMissing},
        {L"zero release before unknown",
         {L"--apply", L"--install", L"g", L"--current", L"0", L"--foo", L"bar"},
         kMissing},
        {L"missing before local", {L"--apply", L"--install", L"g", L"--manifest-file", L"m"}, kMissing},
        {L"parent before unknown", validWith({L"--foo", L"bar", L"--parent", L"abc"}), kBadParent},
        {L"parent before local", validWith({L"--manifest-file", L"m", L"--parent", L"abc"}), kBadParent},
        {L"unknown before local", validWith({L"--manifest-file", L"m", L"--foo", L"bar"}), kUnknown},
        {L"unknown before incremental", validWith({L"--inventory-file", L"i", L"--foo", L"bar"}), kUnknown},
        {L"local before incremental", validWith({L"--manifest-file", L"m", L"--inventory-file", L"i"}), kLocal},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.shows));
        expectRefused(row.words, row.sentence);
    }
}

TEST(CommandLine, RemembersToStayQuietWhenTheFlagCameBeforeTheFault) {
    EXPECT_TRUE(parse({L"--apply", L"--test-no-ui", L"--parent"}).arguments.testNoUi);
    EXPECT_TRUE(parse({L"--apply", L"--test-no-ui", L"foo", L"bar"}).arguments.testNoUi);
    EXPECT_TRUE(parse({L"--apply", L"--test-no-ui"}).arguments.testNoUi);
    EXPECT_TRUE(parse(validWith({L"--foo", L"bar", L"--test-no-ui"})).arguments.testNoUi);
    EXPECT_FALSE(parse({L"--apply", L"foo", L"bar", L"--test-no-ui"}).arguments.testNoUi);
    EXPECT_FALSE(parse({L"--apply", L"--parent", L"--test-no-ui"}).arguments.testNoUi);
    EXPECT_FALSE(parse({L"--test-no-ui", L"--apply"}).arguments.testNoUi);
}

TEST(CommandLine, NumberReaderTakesDigitsThatFit32BitsAndNothingElse) {
    const struct {
        std::wstring text;
        std::uint32_t number;
    } good[] = {{L"0", 0}, {L"00", 0}, {L"9", 9}, {L"0123456789", 123456789}, {L"4294967295", 4294967295U}};
    for (const auto& row : good) {
        std::uint32_t number = 77;
        EXPECT_TRUE(parseUnsigned(row.text, number)) << ::testing::PrintToString(row.text);
        EXPECT_EQ(number, row.number) << ::testing::PrintToString(row.text);
    }
    for (const std::wstring_view text :
         {std::wstring_view(L""), std::wstring_view(L"4294967296"), std::wstring_view(L"4294967305"),
          std::wstring_view(L"42949672950"), std::wstring_view(L"-0"), std::wstring_view(L"+0"),
          std::wstring_view(L" 0"), std::wstring_view(L"0 "), std::wstring_view(L"0x0"), std::wstring_view(L"a"),
          std::wstring_view(L"1\0", 2), std::wstring_view(L"\x0130"), std::wstring_view(L"1/"),
          std::wstring_view(L"1:")}) {
        std::uint32_t number = 77;
        EXPECT_FALSE(parseUnsigned(text, number)) << ::testing::PrintToString(text);
    }
}

}  // namespace
}  // namespace vorthmere::update
