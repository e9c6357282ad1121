#include <gmock/gmock.h>

#include <iterator>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::Not;

class ExitCodeTest : public EndToEndTest {
protected:
    /// Replaces the offered release by one with other files in its package; manifest and inventory fit the package.
    void offer(const ReleaseFiles& files) {
        scenario.release = publishByHand(scenario.release.folder, files, 42);
    }

    void offerManifest(const ManifestText& manifest) {
        writeFile(scenario.release.manifest, renderManifest(manifest));
    }

    /// Runs an update from the complete package, and expects this code and an unchanged installation.
    void expectRefused(int code) {
        expectRefused(command(Source::completePackage), code);
    }

    void expectRefused(const UpdaterCommand& command, int code) {
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(runUpdater(command), code);
        expectInstallation(before);
    }
};

TEST_F(ExitCodeTest, AnInstalledReleaseThatIsCurrentIsLeftAlone) {
    writeFile(scenario.workFolder / "backup" / "from an earlier run.txt", "kept");
    UpdaterCommand command = this->command(Source::incremental);
    for (const char* current : {"42", "43", "4294967295"}) {
        SCOPED_TRACE(current);
        command.current = current;
        expectRefused(command, 0);
        EXPECT_EQ(readFile(scenario.workFolder / "backup" / "from an earlier run.txt"), "kept");
    }
    fs::remove_all(scenario.workFolder);
    expectRefused(command, 0);
    EXPECT_FALSE(fs::exists(scenario.workFolder));
}

TEST_F(ExitCodeTest, ACommandLineThatIsWrongGives2) {
    UpdaterCommand command = this->command(Source::incremental);
    command.current = "0";
    expectRefused(command, 2);
    command = this->command(Source::incremental);
    command.packageFile.clear();
    expectRefused(command, 2);
    command = this->command(Source::incremental);
    command.objectDirectory.clear();
    expectRefused(command, 2);
    EXPECT_FALSE(fs::exists(scenario.workFolder));
}

TEST_F(ExitCodeTest, AFolderThatIsNoInstallationGives10) {
    UpdaterCommand command = this->command(Source::incremental);
    for (const fs::path& folder : {scenario.root / "nowhere", scenario.root / "beside.txt", scenario.root}) {
        SCOPED_TRACE(folder);
        command.install = windowsPath(folder);
        expectRefused(command, 10);
    }
    useUpdater(scenario.root / "updater.exe");
    fs::copy_file(scenario.installation / "KVNUpdater.exe", scenario.root / "updater.exe");
    command.install = windowsPath(scenario.installation);
    for (const char* marker : {"Vorthmere.exe", "KVNUpdater.exe", "KVN_MANAGED_FILES.txt"}) {
        SCOPED_TRACE(marker);
        const fs::path aside = scenario.root / "aside";
        fs::rename(scenario.installation / marker, aside);
        expectRefused(command, 10);
        fs::create_directory(scenario.installation / marker);
        expectRefused(command, 10);
        fs::remove(scenario.installation / marker);
        fs::rename(aside, scenario.installation / marker);
    }
    EXPECT_FALSE(fs::exists(scenario.workFolder));
}

TEST_F(ExitCodeTest, AnUnusableManifestGives11) {
    const std::string good = readFile(scenario.release.manifest);
    const std::vector<std::string> bad = {"",
                                          good + std::string(8193 - good.size(), '\n'),
                                          good + "\n",
                                          "KVN-UPDATE/2" + good.substr(12),
                                          good + "extra=1\n",
                                          good.substr(0, 40)};
    for (const std::string& text : bad) {
        SCOPED_TRACE(text.substr(0, 200));
        writeFile(scenario.release.manifest, text);
        expectRefused(command(Source::incremental), 11);
    }
    fs::remove(scenario.release.manifest);
    expectRefused(command(Source::incremental), 11);
    EXPECT_FALSE(fs::exists(scenario.workFolder));
}

TEST_F(ExitCodeTest, ACurrentGameThatCannotBeStartedGives12) {
    writeFile(scenario.installation / "Vorthmere.exe", "no program");
    UpdaterCommand command = this->command(Source::incremental);
    command.current = "42";
    command.relaunch = true;
    expectRefused(command, 12);
}

TEST_F(ExitCodeTest, ALinkAsWorkFolderGives13AndIsNotFollowed) {
    writeFile(scenario.root / "elsewhere" / "precious.txt", "outside");
    fs::create_directory_symlink(scenario.root / "elsewhere", scenario.workFolder);
    expectRefused(13);
    EXPECT_TRUE(fs::is_symlink(scenario.workFolder));
}

TEST_F(ExitCodeTest, AWorkFolderThatCannotBeRemovedGives14) {
    const fs::path held = scenario.workFolder / "backup" / "held.txt";
    writeFile(held, "in use");
    FileLock lock({held});
    expectRefused(14);
    lock.release();
    EXPECT_EQ(runUpdater(Source::completePackage), 0);
}

TEST_F(ExitCodeTest, AStagingFolderThatCannotBeEmptiedForTheCompletePackageGives14) {
    // The last object was never published, so that the incremental update fails when all other files are staged.
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    const std::string last = sampleRelease42().rbegin()->first;
    ReleaseFiles files = sampleRelease42();
    files[last].content += "never published";
    writeFile(scenario.release.inventory, renderInventory(scenario.release.manifestText, files));
    FolderWatch watch;
    watch.add(scenario.installation, IN_CREATE);
    ChildProcess updater = startUpdater(command(Source::incremental));
    ASSERT_TRUE(watch.next(Milliseconds(60'000)));
    // A file is verified before the next one is placed: the first is complete when the second is there.
    const fs::path staging = scenario.workFolder / "staging";
    while (!fs::exists(staging / std::next(sampleRelease42().begin())->first))
        ASSERT_FALSE(updater.hasEnded(Milliseconds(1)));
    updater.suspend();
    const FileLock lock({staging / sampleRelease42().begin()->first});
    updater.resume();
    EXPECT_EQ(updater.wait(Milliseconds(60'000)).exitCode, 14);
    finishRun();
    expectInstallation(before);
}

TEST_F(ExitCodeTest, AMissingLocalPackageGives16) {
    fs::remove(scenario.release.package);
    expectRefused(16);
    fs::create_directory(scenario.release.package);
    expectRefused(16);
}

TEST_F(ExitCodeTest, APackageOfAnotherSizeGives17) {
    const std::string package = readFile(scenario.release.package);
    for (const std::string& other : {package + "x", package.substr(0, package.size() - 1), std::string()}) {
        writeFile(scenario.release.package, other);
        expectRefused(17);
    }
}

TEST_F(ExitCodeTest, APackageWithAnotherDigestGives18) {
    std::string package = readFile(scenario.release.package);
    package[package.size() / 2] ^= 1;
    writeFile(scenario.release.package, package);
    expectRefused(18);
}

TEST_F(ExitCodeTest, APackageWithDamagedDataGives22) {
    std::string package = readFile(scenario.release.package);
    // The stored bytes of an incompressible file, far from every header.
    const std::size_t texture = package.find("data/textures/stone.pak");
    ASSERT_NE(texture, std::string::npos);
    package[texture + 5'000] ^= 1;
    writeFile(scenario.release.package, package);
    scenario.release = publishPackage(scenario.release.folder, sampleRelease42(), 42);
    expectRefused(22);
}

TEST_F(ExitCodeTest, AnUnusableNewListGives23) {
    ReleaseFiles files = sampleRelease42();
    files.erase("KVN_MANAGED_FILES.txt");
    offer(files);
    expectRefused(23);
    for (const char* list : {"", "KVN_MANAGED_FILES.txt\nVorthmere.exe\n",
                             "KVN_MANAGED_FILES.txt\nVorthmere.exe\nKVNUpdater.exe\n../outside.txt\n"}) {
        SCOPED_TRACE(list);
        files["KVN_MANAGED_FILES.txt"] = {list};
        offer(files);
        expectRefused(23);
    }
    files["KVN_MANAGED_FILES.txt"] = {renderManagedFileList(files) + std::string(131073, '\n')};
    offer(files);
    expectRefused(23);
}

TEST_F(ExitCodeTest, APackageThatDiffersFromItsListGives24) {
    ReleaseFiles more = sampleRelease42();
    more["data/not listed.dat"] = {"extra"};
    offer(more);
    expectRefused(24);
    ReleaseFiles fewer = sampleRelease42();
    fewer.erase("Readme.txt");
    offer(fewer);
    expectRefused(24);
    ReleaseFiles otherCase = sampleRelease42();
    otherCase.erase("Readme.txt");
    otherCase["README.txt"] = sampleRelease42().at("Readme.txt");
    offer(otherCase);
    expectRefused(24);
}

TEST_F(ExitCodeTest, AnUnusableInstalledListGives25) {
    for (const char* list : {"", "Vorthmere.exe\n", "KVN_MANAGED_FILES.txt\nVorthmere.exe\nKVNUpdater.exe\nC:/x\n"}) {
        SCOPED_TRACE(list);
        writeFile(scenario.installation / "KVN_MANAGED_FILES.txt", list);
        expectRefused(25);
        expectRefused(command(Source::incremental), 25);
    }
}

TEST_F(ExitCodeTest, ABackupFolderThatCannotBeCreatedGives27) {
    const TreeSnapshot before = scenario.takeInstallationSnapshot();
    EXPECT_EQ(runUpdater(command(Source::incremental), [this] { writeFile(scenario.workFolder / "backup", "a file"); }),
              27);
    expectInstallation(before);
}

}  // namespace
}  // namespace vorthmere::end_to_end
