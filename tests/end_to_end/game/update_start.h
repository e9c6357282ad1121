#pragma once

#include <string>

/// Starts the updater that lies beside this game. When that worked the game has to exit: the updater waits for its end
/// before it changes anything, two minutes at most, and starts the game again at its own end.
///
/// @param moreOptions for tests with local files: what is to follow the options that every update needs
/// @return false when the installation does not tell its release, or the updater could not be started
[[nodiscard]] bool startUpdater(const std::wstring& moreOptions);
