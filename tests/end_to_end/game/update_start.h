#pragma once

#include <string>

/// Starts the updater that lies beside this game. After that the game has to exit: the updater waits up to two minutes
/// for its end before it changes anything, and starts the game again when it is done.
///
/// @param moreOptions for tests with local files: options to add to those that every update needs
/// @return false when the installation does not name its release, or the updater could not be started
[[nodiscard]] bool startUpdater(const std::wstring& moreOptions);
