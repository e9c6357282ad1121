#include <gmock/gmock.h>

#include <functional>
#include <numeric>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"
#include "tests/support/report_fields.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using update::testing::reports;

fs::path objectOf(const PublishedRelease& release, const std::string& content) {
    return release.folder / objectName(content);
}

/// One reason for an incremental update to fail, prepared in a scenario.
struct Cause {
    const char* name;
    std::function<void(Scenario&)> prepare;
    bool inventoryStays = true;

    friend void PrintTo(const Cause& cause, std::ostream* out) {
        *out << cause.name;
    }
};

void offerInventory(Scenario& scenario, const std::string& text) {
    writeFile(scenario.release.inventory, text);
}

void offerInventoryOf(Scenario& scenario, const ReleaseFiles& files) {
    offerInventory(scenario, renderInventory(scenario.release.manifestText, files));
}

void replaceInventoryText(Scenario& scenario, const std::string& from, const std::string& to) {
    std::string text = readFile(scenario.release.inventory);
    text.replace(text.find(from), from.size(), to);
    offerInventory(scenario, text);
}

/// Offers a release whose managed-file list differs from its inventory.
void offerList(Scenario& scenario, const std::function<void(ReleaseFiles& listed)>& change) {
    ReleaseFiles listed = sampleRelease42();
    change(listed);
    ReleaseFiles files = sampleRelease42();
    files["KVN_MANAGED_FILES.txt"] = {renderManagedFileList(listed)};
    writeFile(objectOf(scenario.release, files["KVN_MANAGED_FILES.txt"].content),
              files["KVN_MANAGED_FILES.txt"].content);
    offerInventoryOf(scenario, files);
}

const Cause kCauses[] = {
    {"TheInventoryIsMissing", [](Scenario& s) { fs::remove(s.release.inventory); }, false},
    {"TheInventoryIsAFolder",
     [](Scenario& s) {
         fs::remove(s.release.inventory);
         fs::create_directory(s.release.inventory);
     },
     false},
    {"TheInventoryIsEmpty", [](Scenario& s) { offerInventory(s, ""); }},
    {"TheInventoryIsTooLarge",
     [](Scenario& s) {
         const std::string text = readFile(s.release.inventory);
         offerInventory(s, text + std::string(393217 - text.size(), '\n'));
     }},
    {"TheInventoryIsOfAnotherRelease", [](Scenario& s) { replaceInventoryText(s, "release=42", "release=43"); }},
    {"TheInventoryIsMalformed", [](Scenario& s) { replaceInventoryText(s, "Readme.txt\t", "Readme.txt "); }},
    {"TheInventoryHoldsAnUnsafePath", [](Scenario& s) { replaceInventoryText(s, "Readme.txt", "../eadme.t"); }},
    {"TheInventoryNamesAPathTwice", [](Scenario& s) { replaceInventoryText(s, "Readme.txt", "VORTHMERE.EXE"); }},
    {"TheInventoryHasNoReleaseMarker",
     [](Scenario& s) { replaceInventoryText(s, "kvn_release.txt", "kvn_re1ease.txt"); }},
    {"TheInventoryMissesARequiredFile",
     [](Scenario& s) { replaceInventoryText(s, "KVNUpdater.exe", "KVNupdater.exe"); }},
    {"AnInventoryPathLeadsThroughALink",
     [](Scenario& s) {
         writeFile(s.root / "elsewhere" / "x.dat", "outside");
         fs::create_directory_symlink(s.root / "elsewhere", s.installation / "linked");
         ReleaseFiles files = sampleRelease42();
         files["linked/x.dat"] = {"outside"};
         offerInventoryOf(s, files);
     }},
    {"TheObjectFolderIsMissing",
     [](Scenario& s) {
         for (const auto& [path, file] : sampleRelease42())
             fs::remove(objectOf(s.release, file.content));
     }},
    {"AnObjectIsMissing",
     [](Scenario& s) { fs::remove(objectOf(s.release, sampleRelease42().at("Vorthmere.exe").content)); }},
    {"AnObjectIsAFolder",
     [](Scenario& s) {
         const fs::path object = objectOf(s.release, sampleRelease42().at("Vorthmere.exe").content);
         fs::remove(object);
         fs::create_directory(object);
     }},
    {"AnObjectIsTooLong",
     [](Scenario& s) {
         const std::string& content = sampleRelease42().at("Readme.txt").content;
         writeFile(objectOf(s.release, content), content + "x");
     }},
    {"AnObjectIsCorrupt",
     [](Scenario& s) {
         std::string content = sampleRelease42().at("Readme.txt").content;
         const fs::path object = objectOf(s.release, content);
         content[0] ^= 1;
         writeFile(object, content);
     }},
    {"TheNewListIsInvalid", [](Scenario& s) { offerList(s, [](ReleaseFiles& listed) { listed["a/../b"] = {}; }); }},
    {"TheNewListIsEmpty",
     [](Scenario& s) {
         ReleaseFiles files = sampleRelease42();
         files["KVN_MANAGED_FILES.txt"] = {};
         offerInventoryOf(s, files);
     }},
    {"TheNewListNamesOneFileMore",
     [](Scenario& s) { offerList(s, [](ReleaseFiles& listed) { listed["one more.txt"] = {}; }); }},
    {"TheNewListNamesOneFileLess",
     [](Scenario& s) { offerList(s, [](ReleaseFiles& listed) { listed.erase("Readme.txt"); }); }},
    {"TheNewListDiffersInLetterCase",
     [](Scenario& s) {
         offerList(s, [](ReleaseFiles& listed) {
             listed.erase("Readme.txt");
             listed["README.txt"] = {};
         });
     }},
};

class FallbackTest : public EndToEndTest {
protected:
    void expectCompleteUpdate(bool inventoryStays) {
        EXPECT_EQ(runUpdater(Source::incremental), 0);
        expectRelease42();
        EXPECT_THAT(transferReport(), reports({{"mode", "full"}, {"bytes", scenario.release.manifestText.size}}));
        if (inventoryStays)
            EXPECT_THAT(workFolderContent(), ElementsAre("backup", "inventory.txt", "transfer.txt"));
        else
            EXPECT_THAT(workFolderContent(), ElementsAre("backup", "transfer.txt"));
    }

    static std::uint64_t bytesThatChange(const ReleaseFiles& files) {
        const ReleaseFiles& installed = sampleRelease41();
        return std::accumulate(files.begin(), files.end(), std::uint64_t{0}, [&](std::uint64_t sum, const auto& file) {
            const auto present = installed.find(file.first);
            const bool same = present != installed.end() && present->second.content == file.second.content;
            return same ? sum : sum + file.second.content.size();
        });
    }
};

class FallbackCauseTest : public FallbackTest, public testing::WithParamInterface<Cause> {};

TEST_P(FallbackCauseTest, InstallsTheCompletePackage) {
    GetParam().prepare(scenario);
    expectCompleteUpdate(GetParam().inventoryStays);
}

INSTANTIATE_TEST_SUITE_P(When, FallbackCauseTest, testing::ValuesIn(kCauses),
                         [](const testing::TestParamInfo<Cause>& cause) { return std::string(cause.param.name); });

TEST_F(FallbackTest, ChangesAsLargeAsThePackageAreNotWorthFetchingOneByOne) {
    // Zeros shrink to almost nothing in the package. More bytes after the package's end then make both sizes equal.
    ReleaseFiles files = sampleRelease42();
    files["data/textures/stone.pak"] = {std::string(1'000'000, '\0')};
    files = withReleaseMetadata(files, 42);
    writePackage(scenario.release.package, packageEntries(files));
    std::string package = readFile(scenario.release.package);
    const std::uint64_t changing = bytesThatChange(files);
    ASSERT_LT(package.size(), changing);
    package.resize(changing, '\0');
    writeFile(scenario.release.package, package);
    scenario.release = publishPackage(scenario.release.folder, files, 42);
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectInstalled(files);
    EXPECT_THAT(transferReport(), reports({{"mode", "full"}, {"bytes", std::to_string(changing)}}));
}

TEST_F(FallbackTest, ChangesOneByteSmallerThanThePackageAreFetched) {
    ManifestText manifest = scenario.release.manifestText;
    manifest.size = std::to_string(bytesThatChange(sampleRelease42()) + 1);
    writeFile(scenario.release.manifest, renderManifest(manifest));
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
    EXPECT_THAT(transferReport(), reports({{"mode", "incremental"}}));
}

TEST_F(FallbackTest, AnInstalledFileThatVanishesBeforeItIsReusedComesFromThePackage) {
    // This file is staged among the last. It is removed when the first ones are staged.
    const fs::path reused = scenario.installation / "data" / "textures" / "wood.pak";
    FolderWatch watch;
    watch.add(scenario.installation, IN_CREATE);
    ChildProcess updater = startUpdater(command(Source::incremental));
    ASSERT_TRUE(watch.next(Milliseconds(60'000)));
    while (!fs::exists(scenario.workFolder / "staging" / sampleRelease42().begin()->first))
        ASSERT_FALSE(updater.hasEnded(Milliseconds(1)));
    fs::remove(reused);
    EXPECT_FALSE(fs::exists(scenario.workFolder / "staging" / "data" / "textures" / "wood.pak")) << "too late";
    EXPECT_EQ(updater.wait(Milliseconds(60'000)).exitCode, 0);
    finishRun();
    expectRelease42();
    EXPECT_THAT(transferReport(), reports({{"mode", "full"}}));
}

TEST_F(FallbackTest, AnIncrementalUpdateCopiesWhatIsThereAndFetchesTheRest) {
    std::uint64_t fetched = 0;
    std::uint64_t reused = 0;
    for (const auto& [path, file] : sampleRelease42()) {
        const auto installed = sampleRelease41().find(path);
        const bool same = installed != sampleRelease41().end() && installed->second.content == file.content;
        (same ? reused : fetched) += 1;
    }
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    EXPECT_THAT(transferReport(), reports({{"mode", "incremental"},
                                           {"reused", std::to_string(reused)},
                                           {"downloaded", std::to_string(fetched)},
                                           {"bytes", std::to_string(bytesThatChange(sampleRelease42()))}}));
}

TEST_F(FallbackTest, NothingIsFetchedWhenEverythingIsThereAlready) {
    for (const auto& [path, file] : sampleRelease41())
        fs::remove(scenario.installation / path);
    layOut(sampleRelease42(), scenario.installation);
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
    EXPECT_THAT(transferReport(), reports({{"mode", "incremental"}, {"downloaded", "0"}, {"bytes", "0"}}));
}

}  // namespace
}  // namespace vorthmere::end_to_end
