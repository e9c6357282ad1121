#pragma once

#include <cstdint>
#include <filesystem>

namespace vorthmere::update {

/// The options of the command line. An empty path or a zero means that the option was not given.
struct Arguments {
    std::filesystem::path install;          ///< the installation folder
    std::filesystem::path manifestFile;     ///< local manifest instead of the channel's
    std::filesystem::path packageFile;      ///< local package instead of the channel's
    std::filesystem::path inventoryFile;    ///< local inventory; goes with `objectDirectory`
    std::filesystem::path objectDirectory;  ///< folder of local objects
    std::uint32_t parentProcessId = 0;      ///< the game's process, which must exit before the installation; 0 = none
    std::uint32_t currentRelease = 0;       ///< number of the installed release
    bool noRelaunch = false;                ///< leave the game closed at the end
    bool testNoUi = false;                  ///< no window and no message box
};

}  // namespace vorthmere::update
