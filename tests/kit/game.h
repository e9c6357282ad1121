#pragma once

#include <filesystem>
#include <string>

#include "tests/kit/machine.h"
#include "tests/support/file_tree.h"
#include "tests/support/sample_release.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::kit {

/// An update that runs longer than this hangs.
inline constexpr DWORD kRunLimitMs = 120000;

enum class Way { incremental, completePackage };

/// Fails the current update unless a condition holds.
///
/// @throws std::runtime_error with the text when `condition` is false
void require(bool condition, const std::string& text);

/// An installation of release 41 of a sample game, and release 42 in local files, in a temporary folder. The installed
/// updater is a copy of the one beside the kit.
class Game {
public:
    /// @param installationName name of the installation folder
    /// @param more             more files of release 42
    explicit Game(const std::wstring& installationName = L"a game", const update::testing::FileTree& more = {});

    /// Starts the updater of the installation.
    [[nodiscard]] Program startUpdater(Way way, const std::wstring& moreArguments);

    /// Runs the updater to its end, without a window and without starting the game.
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
