#pragma once

#include <cstdint>

namespace vorthmere::update {

/// The program's exit codes. A number never changes its meaning, and an abandoned number is never used again.
/// docs/failures.md lists each code with its sentences.
enum class ExitCode : int {
    noOutcome = -1,  ///< the window closed before the run reported its outcome
    done = 0,        ///< updated, or already current
    commandLineRejected = 2,
    windowClassNotRegistered = 3,
    windowNotCreated = 4,
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

/// The exit code after an exception that nobody caught: Windows' code for the fatal exit of an application.
inline constexpr std::uint32_t kAbnormalExitCode = 0x40000015;

}  // namespace vorthmere::update
