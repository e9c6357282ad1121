#pragma once

#include <filesystem>
#include <string>

#include "update/arguments.h"
#include "update/manifest.h"
#include "update/progress.h"

namespace vorthmere::update {

/// Builds the tree of the new release in the staging folder: files that are installed unchanged are copied from the
/// installation, the others fetched as objects named by their SHA-256. Every file is verified where it was put.
///
/// @param arguments     the installation folder and the local test inputs, if any
/// @param manifest      the selected release
/// @param workFolder    receives `inventory.txt` and, on success, the transfer report
/// @param stagingFolder exists and is empty
/// @param progress      receives 9 % to 84 %; may be empty
/// @param error         receives a sentence for diagnostics, or stays empty when the complete package is simply the
///                      better way: no inventory given beside a local manifest, or changed files as large as the
///                      package
/// @return true when the staging folder holds the complete, verified release. False for any other outcome; the staging
///         folder may then hold a part of it, and the complete package is to be used.
[[nodiscard]] bool stageIncremental(const Arguments& arguments, const Manifest& manifest,
                                    const std::filesystem::path& workFolder, const std::filesystem::path& stagingFolder,
                                    const ProgressCallback& progress, std::wstring& error);

}  // namespace vorthmere::update
