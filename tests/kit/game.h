#pragma once

#include <filesystem>
#include <string>

#include "tests/kit/machine.h"
#include "tests/support/file_tree.h"
#include "tests/support/sample_release.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::kit {

enum class Way { incremental, completePackage };

/// Ends an update that did not come out as it should.
///
/// @throws std::runtime_error with the text when `condition` is false
void require(bool condition, const std::string& text);

/// An installation of release 41 of a sample game and a release 42 in local files, in a temporary folder. The updater in
/// it is the one that lies beside the kit.
class Game {
public:
    /// @param installationName of the folder below the temporary one
    /// @param more             what release 42 has besides its other files
    explicit Game(const std::wstring& installationName = L"a game", const update::testing::FileTree& more = {});

    /// Starts the updater of the installation.
    [[nodiscard]] Program startUpdater(Way way, const std::wstring& moreArguments);

    /// Runs it to its end, without a window and without starting the game.
    ///
    /// @throws std::runtime_error when it ends with another code
    void update(Way way, DWORD expectedCode = 0, const std::wstring& moreArguments = {});

    /// @throws std::runtime_error when the managed files are not exactly those of that release, or the player's file is
    ///         not as it was
    void requireRelease(unsigned release) const;

    /// A folder beside the installation.
    [[nodiscard]] std::filesystem::path beside(const wchar_t* name) const {
        return folder_ / name;
    }

    const update::testing::TemporaryFolder folder_;
    const std::filesystem::path install;
    const std::filesystem::path work = install / L".kvn-update";

private:
    [[nodiscard]] const update::testing::FileTree& files(unsigned release) const {
        return release == 41 ? old_ : new_;
    }

    update::testing::FileTree old_;
    update::testing::FileTree new_;
    update::testing::LocalRelease offered_;
};

}  // namespace vorthmere::kit
