// Every single step of the installation fails once. The faults are prepared while the updater waits for the game, that
// is, after the last check of the new release and before the first file moves.

#include <functional>
#include <set>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/installation_fault_fixture.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

constexpr int kInstallationFailed = 27;

/// The folders in which a release has files, without the installation folder itself.
std::set<std::string> foldersOf(const ReleaseFiles& files) {
    std::set<std::string> folders;
    for (const auto& [path, file] : files)
        for (fs::path folder = fs::path(path).parent_path(); !folder.empty(); folder = folder.parent_path())
            folders.insert(folder.generic_string());
    return folders;
}

class ForwardFaultTest : public InstallationFaultTest {
protected:
    /// Runs the updater until it is about to install, prepares a fault, and expects that the run fails and that
    /// everything is where it was before.
    void expectRestoredAfter(const std::function<void()>& prepare) {
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(runUpdater(command(Source::incremental), prepare), kInstallationFailed);
        expectInstallation(before);
        EXPECT_EQ(filesIn("backup"), std::set<std::string>());
    }

    /// The same for a fault that changes the installation: everything must be where it was after that change.
    void expectRestoredWith(const std::function<void()>& change) {
        TreeSnapshot before;
        EXPECT_EQ(runUpdater(command(Source::incremental),
                             [&] {
                                 change();
                                 before = scenario.takeInstallationSnapshot();
                             }),
                  kInstallationFailed);
        expectInstallation(before);
        EXPECT_EQ(filesIn("backup"), std::set<std::string>());
    }

    const fs::path aside = scenario.workFolder / "aside";
};

TEST_F(ForwardFaultTest, EveryInstalledFileCanBeInUse) {
    for (const std::string& path : oldPaths) {
        SCOPED_TRACE(path);
        std::optional<FileLock> lock;
        expectRestoredAfter([&] { lock.emplace(std::vector{scenario.installation / path}); });
    }
}

TEST_F(ForwardFaultTest, EveryStagedFileCanBeInUse) {
    for (const std::string& path : newPaths) {
        SCOPED_TRACE(path);
        std::optional<FileLock> lock;
        expectRestoredAfter([&] { lock.emplace(std::vector{scenario.workFolder / "staging" / path}); });
    }
}

TEST_F(ForwardFaultTest, EveryStagedFileCanVanish) {
    for (const std::string& path : newPaths) {
        SCOPED_TRACE(path);
        expectRestoredAfter([&] { fs::remove(scenario.workFolder / "staging" / path); });
    }
}

TEST_F(ForwardFaultTest, AFolderCanBeInThePlaceOfEveryFile) {
    for (const std::string& path : scenario.managedPaths) {
        SCOPED_TRACE(path);
        const fs::path file = scenario.installation / path;
        std::optional<MovedAside> moved;
        expectRestoredWith([&] {
            if (fs::exists(file)) moved.emplace(file, aside);
            fs::create_directories(file);
        });
        if (!moved) fs::remove(file);
    }
}

TEST_F(ForwardFaultTest, AFileCanBeInThePlaceOfEveryFolder) {
    for (const std::string& path : foldersOf(scenario.offered)) {
        SCOPED_TRACE(path);
        const fs::path folder = scenario.installation / path;
        std::optional<MovedAside> moved;
        // The player's files in the folder move aside with it.
        expectRestoredWith([&] {
            if (fs::exists(folder))
                moved.emplace(folder, aside);
            else
                fs::create_directories(folder.parent_path());
            writeFile(folder, "a file");
            recordProtectedAgain();
        });
        if (!moved) fs::remove(folder);
    }
}

TEST_F(ForwardFaultTest, EveryPlaceInTheBackupCanBeTaken) {
    for (const std::string& path : oldPaths) {
        SCOPED_TRACE(path);
        expectRestoredAfter([&] { fs::create_directories(scenario.workFolder / "backup" / path); });
    }
}

TEST_F(ForwardFaultTest, EveryFolderInTheBackupCanBeAFile) {
    for (const std::string& path : foldersOf(scenario.installed)) {
        SCOPED_TRACE(path);
        const TreeSnapshot before = scenario.takeInstallationSnapshot();
        EXPECT_EQ(runUpdater(command(Source::incremental),
                             [&] { writeFile(scenario.workFolder / "backup" / path, "a file"); }),
                  kInstallationFailed);
        expectInstallation(before);
    }
}

TEST_F(ForwardFaultTest, ReadOnlyFilesHinderNeitherTheInstallationNorItsRollback) {
    for (const std::string& path : oldPaths)
        setReadOnly(scenario.installation / path);
    expectRestoredAfter([&] {
        for (const std::string& path : newPaths)
            setReadOnly(scenario.workFolder / "staging" / path);
        fs::remove(scenario.workFolder / "staging" / newPaths.back());
    });
    EXPECT_EQ(runUpdater(Source::incremental), 0);
    expectRelease42();
}

}  // namespace
}  // namespace vorthmere::end_to_end
