#pragma once

#include <string>

#include "update/arguments.h"
#include "update/progress.h"

namespace vorthmere::update {

/// How a run ended; the values are the program's exit codes and never change their meaning.
enum class RunResult : int {
    done = 0,  ///< updated, or already current
    installationRejected = 10,
    manifestUnavailable = 11,
    currentButNotRelaunched = 12,
    workFolderUnsafe = 13,
    workFolderNotWritable = 14,
    downloadFailed = 15,
    localPackageNotCopied = 16,
    packageSizeWrong = 17,
    packageDigestWrong = 18,
    systemFolderUnknown = 19,
    archiveToolMissing = 20,
    packageListingRejected = 21,
    unpackingFailed = 22,
    newListUnreadable = 23,
    stagedTreeMismatch = 24,
    installedListUnreadable = 25,
    gameStillRunning = 26,
    installationFailed = 27,
    relaunchFailed = 28,
};

/// Brings an installation to the release that the channel, or the local manifest, offers.
///
/// @param arguments the parsed command line
/// @param error     receives one sentence when the result is not 0; it may stay empty where the platform gave none
/// @param progress  receives each step's text and percentage; may be empty
/// @return a RunResult as a number
/// @throws std::filesystem::filesystem_error when the status of the installation folder or of a managed path cannot be
///         told
///
/// The installed game is untouched until everything about the new release is proven; from then on it is either the new
/// release or, after a failure, the previous one again. Runs on one thread and must not run twice at the same time on
/// one installation.
[[nodiscard]] int runUpdate(Arguments arguments, std::wstring& error, const ProgressCallback& progress);

}  // namespace vorthmere::update
