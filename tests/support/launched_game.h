#pragma once

#include <filesystem>
#include <string>

#include "tests/support/windows_handle.h"

namespace vorthmere::update::testing {

/// The child program that the updater started as the game.
class LaunchedGame {
public:
    /// Waits for the game's report and removes it, so that a later start is not mistaken for this one.
    ///
    /// @throws std::runtime_error when no game reports
    explicit LaunchedGame(const std::filesystem::path& installationFolder);

    /// Waits until the game has ended, so that its folder can be removed.
    ~LaunchedGame();
    LaunchedGame(const LaunchedGame&) = delete;
    LaunchedGame& operator=(const LaunchedGame&) = delete;

    /// What the game reported under a name, "(none)" when nothing.
    [[nodiscard]] std::string fact(const std::string& name) const;

    [[nodiscard]] bool hasEnded() const;

private:
    std::string report_;
    KernelHandle process_;
};

/// True when a game was started in the folder and no LaunchedGame has removed its report.
[[nodiscard]] bool gameWasLaunched(const std::filesystem::path& installationFolder);

}  // namespace vorthmere::update::testing
