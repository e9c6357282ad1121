#include "transfer/incremental_staging.h"

#include "tests/simulation/core/bench.h"
#include "tests/simulation/explorer/releases.h"
#include "update/release_channel.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

class IncrementalStagingTest : public CoreTest {
protected:
    IncrementalStagingTest() {
        putFiles(machine, place::kInstallation, releases.installed.files);
        machine.files.putFolder(place::kStaging);
        offer(releases.offered);
        const std::filesystem::path folder(place::kOffer);
        arguments.install = place::kInstallation;
        arguments.manifestFile = folder / "manifest";
        arguments.inventoryFile = folder / "inventory";
        arguments.objectDirectory = folder / "objects";
    }

    void offer(const Release& release) {
        const Offer made = offerOf(release);
        putLocalOffer(machine, made);
        std::string fault;
        ASSERT_TRUE(parseManifest(made.manifest, manifest, fault)) << fault;
    }

    bool stage() {
        error.clear();
        steps.clear();
        machine.files.erase(std::string(place::kWorkFolder));
        machine.files.putFolder(place::kStaging);
        const auto progress = [this](const std::wstring&, std::uint32_t percent) { steps.push_back(percent); };
        return stageIncremental(arguments, manifest, place::kWorkFolder, place::kStaging, progress, error);
    }

    [[nodiscard]] std::string report() const {
        return contentOfFile(std::string(place::kWorkFolder) + "/transfer.txt");
    }

    /// Gives the offered list another text; inventory and object know it.
    void changeList(const std::string& text) {
        Release release = releases.offered;
        for (ReleaseFile& file : release.files)
            if (file.path == kManagedFileListName) file.content = text;
        offer(release);
    }

    ReleasePair releases = smallestReleases();
    Arguments arguments;
    Manifest manifest;
    std::vector<std::uint32_t> steps;
};

// The list is the same in both releases; these are the sizes of the other four files.
constexpr std::uint64_t kChangedBytes = 7 + 11 + 19 + 18;

TEST_F(IncrementalStagingTest, StagesWhatChangedAndReusesTheRest) {
    ASSERT_TRUE(stage());
    EXPECT_EQ(error, L"");
    EXPECT_EQ(report(),
              "mode=incremental\r\nreused=1\r\ndownloaded=4\r\nbytes=" + std::to_string(kChangedBytes) + "\r\n");
    for (const ReleaseFile& file : releases.offered.files)
        EXPECT_EQ(contentOfFile(std::string(place::kStaging) + "/" + file.path), file.content);
}

TEST_F(IncrementalStagingTest, ChangedBytesAsManyAsThePackagesAreNoBetterWay) {
    for (const std::uint64_t size : {kChangedBytes, kChangedBytes - 1}) {
        manifest.size = size;
        EXPECT_FALSE(stage());
        EXPECT_EQ(error, L"");
        EXPECT_THAT(steps, ElementsAre(9));
    }
    manifest.size = kChangedBytes + 1;
    EXPECT_TRUE(stage());
}

TEST_F(IncrementalStagingTest, WithoutAnInventoryThereIsNothingToSay) {
    arguments.inventoryFile.clear();
    EXPECT_FALSE(stage());
    EXPECT_EQ(error, L"");
    EXPECT_THAT(steps, ElementsAre());
}

TEST_F(IncrementalStagingTest, AnInventoryThatCannotBeUsedFailsWithTheReadersSentence) {
    machine.files.putFile("C:/Offer/inventory", contentOf(""));
    EXPECT_FALSE(stage());
    EXPECT_EQ(error, L"An update metadata file has an invalid size.");
    machine.files.putFile("C:/Offer/inventory", contentOf("KVN-FILES/1\n"));
    EXPECT_FALSE(stage());
    EXPECT_EQ(error, L"File inventory does not match the selected release.");
    EXPECT_THAT(steps, ElementsAre());
}

TEST_F(IncrementalStagingTest, EachStepThatFailsHasItsSentence) {
    const std::tuple<Operation, std::size_t, std::wstring> failures[] = {
        {Operation::copyFile, 0, L"Unable to read the local file inventory."},
        {Operation::copyFile, 1, L"Unable to read a local update object."},
        {Operation::copyFile, 3, L"Unable to reuse an installed file."},
        {Operation::createFolder, 0, L"Unable to prepare an updated file folder."},
    };
    for (const auto& [operation, number, sentence] : failures) {
        harm(operation, {.error = 5}, number);
        EXPECT_FALSE(stage());
        EXPECT_EQ(error, sentence);
        EXPECT_EQ(report(), "(none)");
    }
}

TEST_F(IncrementalStagingTest, ALinkOnAManagedPathIsRefused) {
    const std::string folder = std::string(place::kInstallation) + "/data";
    machine.files.erase(folder);
    machine.files.putReparsePoint(folder, tag::junction, "C:/Windows", true);
    EXPECT_FALSE(stage());
    EXPECT_EQ(error, L"The installation contains a reparse point in a managed path.");
}

TEST_F(IncrementalStagingTest, AStagedFileIsVerifiedWhereItWasPut) {
    Intrusion change;
    change.kind = Intrusion::Kind::create;
    change.second = "x of 42";
    change.path = std::string(place::kStaging) + "/data/a.pak";
    plan({{{Operation::entryFacts, change.path}, change}});
    EXPECT_FALSE(stage());
    EXPECT_EQ(error, L"An updated file failed size or SHA-256 verification.");
}

TEST_F(IncrementalStagingTest, AListThatNamesOtherFilesThanTheInventoryIsRefused) {
    std::string list;
    for (const ReleaseFile& file : releases.offered.files)
        list += file.path + "\n";
    const std::string less = list.substr(list.find('\n') + 1);
    for (const std::string& other : {list + "one/more\n", less, less + "data/A.pak\n", std::string("\n")}) {
        changeList(other);
        EXPECT_FALSE(stage());
        EXPECT_EQ(error, L"The file inventory and managed-file list do not match.") << other;
    }
    changeList("\n" + list);
    EXPECT_TRUE(stage());
}

}  // namespace
}  // namespace vorthmere::update::simulation
