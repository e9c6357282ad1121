#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using Kind = PackageEntry::Kind;

/// What is wrong with a package, and the exit code of its refusal.
struct Hostile {
    const char* name;
    std::vector<PackageEntry> entries;  ///< in addition to all of the sample release
    int code = 21;
    PackageFormat format = PackageFormat::zip;

    friend void PrintTo(const Hostile& hostile, std::ostream* out) {
        *out << hostile.name;
    }
};

const Hostile kHostile[] = {
    {"ClimbsOut", {{"../escaped.txt", "x"}}},
    {"ClimbsOutFromWithin", {{"data/../../escaped.txt", "x"}}},
    {"ClimbsOutWithBackslashes", {{"..\\escaped.txt", "x"}}},
    {"IsAbsolute", {{"/escaped.txt", "x"}}},
    {"IsAbsoluteWithABackslash", {{"\\escaped.txt", "x"}}},
    {"NamesADrive", {{"C:/escaped.txt", "x"}}},
    {"NamesADriveRelative", {{"C:escaped.txt", "x"}}},
    {"NamesAStream", {{"Readme.txt:escaped", "x"}}},
    {"NamesAShare", {{"//server/share/escaped.txt", "x"}}},
    // The archive tool reads a backslash as a slash, so this is one more file and not an unsafe name.
    {"HoldsABackslash", {{"data\\escaped.txt", "x"}}, 24},
    {"NamesADevice", {{"data/NUL", "x"}}},
    {"NamesADeviceWithAnExtension", {{"data/com1.txt", "x"}}},
    {"NamesADeviceAsFolder", {{"aux/escaped.txt", "x"}}},
    {"EndsInADot", {{"data/escaped.", "x"}}},
    {"EndsInABlank", {{"data/escaped ", "x"}}},
    {"HasAFolderEndingInADot", {{"data./escaped.txt", "x"}}},
    {"HasADotComponent", {{"data/./escaped.txt", "x"}}},
    {"HasAnEmptyComponent", {{"data//escaped.txt", "x"}}},
    {"NamesTheWorkFolder", {{".kvn-update/escaped.txt", "x"}}},
    {"NamesTheWorkFolderInOtherLetters", {{".KVN-Update/backup/escaped.txt", "x"}}},
    {"NamesAWorkFolderBelow", {{"data/.kvn-update", "x"}}},
    {"IsNotAscii", {{"data/esc\xC3\xA4ped.txt", "x"}}},
    {"HoldsAForbiddenCharacter", {{"data/esc?aped.txt", "x"}}},
    {"HoldsALineFeed", {{"data/escaped\n/../../x.txt", "x"}}},
    {"HasAVeryLongPath", {{"data/" + std::string(236, 'a'), "x"}}},
    {"IsAFolderThatClimbsOut", {{"data/../../escaped/", "", Kind::folder}}},
    {"IsEncrypted", {}, 22, PackageFormat::encryptedZip},
};

class HostilePackageTest : public EndToEndTest {
protected:
    /// Offers whatever file lies at the package's path.
    void offerPackage() {
        scenario.release = publishPackage(scenario.release.folder, sampleRelease42(), 42);
    }

    void offerPackage(const std::vector<PackageEntry>& entries, PackageFormat format = PackageFormat::zip) {
        writePackage(scenario.release.package, entries, format);
        offerPackage();
    }

    void expectRefused(int code) {
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(runUpdater(Source::completePackage), code);
        expectInstallation(before);
        for (const fs::path& folder : {fs::path("/"), fs::current_path()})
            EXPECT_FALSE(fs::exists(folder / "escaped.txt")) << folder;
    }
};

class HostileEntryTest : public HostilePackageTest, public testing::WithParamInterface<Hostile> {};

TEST_P(HostileEntryTest, IsRefused) {
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    entries.insert(entries.end(), GetParam().entries.begin(), GetParam().entries.end());
    offerPackage(entries, GetParam().format);
    expectRefused(GetParam().code);
}

INSTANTIATE_TEST_SUITE_P(APackageThat, HostileEntryTest, testing::ValuesIn(kHostile),
                         [](const testing::TestParamInfo<Hostile>& hostile) {
                             return std::string(hostile.param.name);
                         });

std::vector<PackageEntry> manyEntries(std::size_t count) {
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    while (entries.size() < count) {
        const std::string number = std::to_string(entries.size());
        entries.push_back({"data/extra " + number.substr(0, 2) + "/" + number + "/", "", Kind::folder});
    }
    return entries;
}

TEST_F(HostilePackageTest, UpTo2048EntriesAreInstalled) {
    offerPackage(manyEntries(2048));
    EXPECT_EQ(runUpdater(Source::completePackage), 0);
    expectRelease42();
}

TEST_F(HostilePackageTest, MoreThan2048EntriesAreRefused) {
    offerPackage(manyEntries(2049));
    expectRefused(21);
}

TEST_F(HostilePackageTest, AListingOverTheLimitIsRefused) {
    // Fewer than 2048 names that fill more than 262144 bytes.
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    for (int i = 0; i < 1300; ++i)
        entries.push_back({"data/" + std::string(200, 'a') + std::to_string(i) + "/", "", Kind::folder});
    offerPackage(entries);
    expectRefused(21);
}

TEST_F(HostilePackageTest, WhatIsNoArchiveIsRefused) {
    const std::string package = readFile(scenario.release.package);
    for (const std::string& bytes : {std::string("just text, no archive\n"), std::string(1, '\0'),
                                     std::string(100'000, '\0'), package.substr(0, package.size() / 2),
                                     package.substr(0, package.size() - package.size() / 4), package.substr(1000)}) {
        SCOPED_TRACE(bytes.size());
        writeFile(scenario.release.package, bytes);
        offerPackage();
        expectRefused(21);
    }
}

TEST_F(HostilePackageTest, AnEmptyArchiveIsRefused) {
    offerPackage({});
    expectRefused(21);
}

// Under Wine the archive tool makes no symbolic link and reports no error. A link in the unpacked tree is refused:
// LinkTest shows that.
TEST_F(HostilePackageTest, ASymbolicLinkThatTheToolDoesNotMakeIsLeftOut) {
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    entries.push_back({"data/link", "../../../saves", Kind::symbolicLink});
    for (const PackageFormat format : {PackageFormat::zip, PackageFormat::tar}) {
        offerPackage(entries, format);
        EXPECT_EQ(runUpdater(Source::completePackage), 0);
        expectRelease42();
        EXPECT_FALSE(fs::exists(fs::symlink_status(scenario.installation / "data" / "link")));
    }
}

TEST_F(HostilePackageTest, AFileThroughASymbolicLinkIsRefused) {
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    entries.push_back({"data/link", "../../../saves", Kind::symbolicLink});
    entries.push_back({"data/link/slot 1.sav", "overwritten"});
    offerPackage(entries);
    expectRefused(24);
}

TEST_F(HostilePackageTest, AHardLinkToAFileOutsideIsRefused) {
    const std::string drive = windowsPath(scenario.installation / "saves" / "slot 1.sav");
    for (const std::string& target : {std::string("../../saves/slot 1.sav"), std::string("../../../../beside.txt"),
                                      drive, (scenario.installation / "saves" / "slot 1.sav").string()}) {
        SCOPED_TRACE(target);
        std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
        std::erase_if(entries, [](const PackageEntry& entry) { return entry.name == "Readme.txt"; });
        entries.push_back({"Readme.txt", target, Kind::hardLink});
        offerPackage(entries, PackageFormat::tar);
        expectRefused(22);
    }
}

TEST_F(HostilePackageTest, AHardLinkThatNoListNamesIsRefused) {
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    entries.push_back({"data/link.txt", "Readme.txt", Kind::hardLink});
    offerPackage(entries, PackageFormat::tar);
    expectRefused(24);
}

TEST_F(HostilePackageTest, OfANameThatComesTwiceTheLastOneCounts) {
    ReleaseFiles files = sampleRelease42();
    std::vector<PackageEntry> entries = packageEntries(files);
    files["Readme.txt"] = {"the second one\n"};
    entries.push_back({"Readme.txt", files["Readme.txt"].content});
    offerPackage(entries);
    EXPECT_EQ(runUpdater(Source::completePackage), 0);
    expectInstalled(files);
}

TEST_F(HostilePackageTest, NamesThatDifferInLetterCaseOnlyAreRefused) {
    ReleaseFiles listed = sampleRelease42();
    listed["README.TXT"] = {};
    for (const bool bothListed : {false, true}) {
        ReleaseFiles files = sampleRelease42();
        if (bothListed) files["KVN_MANAGED_FILES.txt"] = {renderManagedFileList(listed)};
        std::vector<PackageEntry> entries = packageEntries(files);
        entries.push_back({"README.TXT", "the second one\n"});
        offerPackage(entries);
        expectRefused(24);
    }
}

TEST_F(HostilePackageTest, AFolderWhereTheListNamesAFileIsRefused) {
    std::vector<PackageEntry> entries = packageEntries(sampleRelease42());
    std::erase_if(entries, [](const PackageEntry& entry) { return entry.name == "Readme.txt"; });
    entries.push_back({"Readme.txt/", "", Kind::folder});
    offerPackage(entries);
    expectRefused(24);
    entries.push_back({"Readme.txt/inside.txt", "x"});
    offerPackage(entries);
    expectRefused(24);
}

}  // namespace
}  // namespace vorthmere::end_to_end
