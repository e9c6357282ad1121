#pragma once

#include <filesystem>

#include "update/release_channel.h"

namespace vorthmere::update {

/// Names in the work folder.
inline constexpr std::string_view kInventoryName = "inventory.txt";
inline constexpr std::string_view kTransferReportName = "transfer.txt";

/// Where one run keeps its files: in the work folder inside the installation, and so on the same volume.
struct WorkFolder {
    explicit WorkFolder(const std::filesystem::path& install)
        : folder(install / kWorkFolderName),
          package(folder / "package.zip"),
          staging(folder / "staging"),
          backup(folder / "backup") {}

    std::filesystem::path folder;
    std::filesystem::path package;  ///< the complete package
    std::filesystem::path staging;  ///< the new release's tree
    std::filesystem::path backup;   ///< the files that the installation moved aside
};

}  // namespace vorthmere::update
