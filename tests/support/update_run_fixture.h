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
/// The end of every test checks that the player's files and everything outside the installation are unchanged.
class UpdateRunTest : public ::testing::Test {
protected:
    explicit UpdateRunTest(const std::wstring& installationName = L"a game");
    void TearDown() override;

    /// Publishes release 42 with these files: package, inventory and objects. Not every test needs it.
    void publish(const FileTree& files);
    void publishSampleRelease() {
        publish(sampleReleaseFiles(42));
    }

    /// Clears `error`, calls runUpdate and returns its code.
    int run();

    /// Expects a run to fail with this code and sentence and to leave the managed files as they were.
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
