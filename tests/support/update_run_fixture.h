#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "tests/support/file_tree.h"
#include "tests/support/recorded_progress.h"
#include "tests/support/sample_release.h"
#include "tests/support/temporary_folder.h"
#include "update/arguments.h"

namespace vorthmere::update::testing {

/// Release 41 is installed, with files of the player's beside it, and release 42 is offered by local files. The game is
/// not relaunched unless a test asks for it.
///
/// Whatever the run does, the player's files and what lies outside the installation must stay as they were: that is
/// checked at the end of every test.
class UpdateRunTest : public ::testing::Test {
protected:
    explicit UpdateRunTest(const std::wstring& installationName = L"a game");
    void TearDown() override;

    /// Publishes release 42 with these files: package, inventory and objects. Tests that need none of them never call
    /// it.
    void publish(const FileTree& files);
    void publishSampleRelease() {
        publish(sampleReleaseFiles(42));
    }

    /// Calls runUpdate and returns its code; `error` is empty before.
    int run();

    /// Expects a failing run with this code and sentence that leaves the managed files as they were.
    void expectFailure(int code, const std::wstring& sentence);

    /// The managed files that are installed now.
    [[nodiscard]] FileTree installedFiles() const;

    TemporaryFolder folder;
    const std::filesystem::path install;
    const std::filesystem::path work = install / L".kvn-update";
    const FileTree oldFiles = sampleReleaseFiles(41);
    FileTree newFiles;
    std::unique_ptr<LocalRelease> release;
    Arguments arguments;
    RecordedProgress progress;
    std::wstring error;

private:
    const FileTree unmanaged_{{"saves/first.sav", "mine"}, {"data/maps/my own.pak", "mine, too"}};
    const FileTree outside_{{"neighbour/file.txt", "somebody else's"}};
};

}  // namespace vorthmere::update::testing
