#pragma once

#include <cstdint>
#include <filesystem>

namespace vorthmere::update {

/// What the command line asks for. Empty paths and zeros mean "not given".
struct Arguments {
    std::filesystem::path install;          ///< the installation folder
    std::filesystem::path manifestFile;     ///< local release manifest instead of the release channel's
    std::filesystem::path packageFile;      ///< local complete package instead of a download
    std::filesystem::path inventoryFile;    ///< local file inventory; goes with `objectDirectory`
    std::filesystem::path objectDirectory;  ///< folder of local update objects
    std::uint32_t parentProcessId = 0;      ///< the game's process, waited for before installing; 0 = none
    std::uint32_t currentRelease = 0;       ///< release number that is installed
    bool noRelaunch = false;                ///< leave the game closed at the end
    bool testNoUi = false;                  ///< run without any window
};

}  // namespace vorthmere::update
