#pragma once

#include <filesystem>
#include <string>

#include "update/arguments.h"
#include "update/manifest.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Puts the new release into the staging folder, file by file. Copies the files that the installation already has,
/// fetches the others as objects, and verifies the size and SHA-256 of each file in the staging folder.
///
/// @param arguments     the installation, and the local files to test with, if any
/// @param manifest      the new release
/// @param workFolder    receives `inventory.txt` and, on success, the transfer report
/// @param stagingFolder exists and is empty
/// @param progress      receives 9 % to 84 %; may be empty
/// @param error         empty on entry; receives the sentence of a failure. Stays empty when the package is the better
///                      way (a local manifest without an inventory, or changed files that are together at least as
///                      large as the package) and when reading the inventory breaks off.
/// @return true when the staging folder holds the whole, verified release. False otherwise: the staging folder may then
///         hold a part of it, and the package has to be used.
[[nodiscard]] bool stageIncremental(const Arguments& arguments, const Manifest& manifest,
                                    const std::filesystem::path& workFolder, const std::filesystem::path& stagingFolder,
                                    const ProgressCallback& progress, std::wstring& error);

}  // namespace vorthmere::update
