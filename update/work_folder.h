#pragma once

#include <filesystem>

#include "update/release_channel.h"

namespace vorthmere::update {

/// Names of files in the work folder.
inline constexpr std::string_view kInventoryName = "inventory.txt";
inline constexpr std::string_view kTransferReportName = "transfer.txt";

/// The paths of a run's files. They lie in the work folder inside the installation, and so on the same volume.
struct WorkFolder {
    explicit WorkFolder(const std::filesystem::path& install)
        : folder(install / kWorkFolderName),
          package(folder / "package.zip"),
          staging(folder / "staging"),
          backup(folder / "backup") {}

    std::filesystem::path folder;
    std::filesystem::path package;  ///< the downloaded or copied package
    std::filesystem::path staging;  ///< the new release, before it moves in
    std::filesystem::path backup;   ///< the previous release, after it moved out
};

}  // namespace vorthmere::update
