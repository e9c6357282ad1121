#pragma once

#include <cstdint>
#include <string_view>

namespace vorthmere::update {

/// One step of a run, as the window shows it.
struct Step {
    std::wstring_view text;
    std::uint32_t percent = 0;
};

/// The whole bar, in percent.
inline constexpr std::uint32_t kWholePercent = 100;

/// A step that fills a part of the bar, from `first` to `first` + `span` percent. The text shown begins with `text`.
struct StepRange {
    std::wstring_view text;
    std::uint32_t first = 0;
    std::uint32_t span = 0;
};

/// All steps of a run, in their order. No run takes all of them.
namespace timetable {

inline constexpr Step checkingChannel{L"Checking the alpha channel...", 5};
inline constexpr Step alreadyCurrent{L"This installation is already current.", kWholePercent};

inline constexpr Step checkingInstalledFiles{L"Checking installed files...", 9};
/// "Downloading changed files (3 of 7)...", then "Downloading changed files... 42%".
inline constexpr StepRange fetchingChangedFiles{L"Downloading changed files", 12, 65};
inline constexpr Step changedFilesVerified{L"Changed files verified; unchanged files reused.", 84};

inline constexpr Step preparingCompletePackage{L"Preparing the complete update package...", 12};
inline constexpr Step copyingLocalPackage{L"Preparing the verified update package...", 35};
/// "Downloading Kelvane 0.9.3 alpha...", then "Downloading update... 42%".
inline constexpr std::wstring_view downloadingRelease = L"Downloading Kelvane ";
inline constexpr StepRange downloadingPackage{L"Downloading update", 12, 53};
inline constexpr Step verifyingPackage{L"Verifying package integrity...", 68};
inline constexpr Step inspectingPackage{L"Inspecting the update package...", 75};
inline constexpr Step unpackingPackage{L"Unpacking updated game files...", 81};

inline constexpr Step waitingForGame{L"Waiting for Kelvane to close...", 88};
inline constexpr Step installing{L"Installing the new release...", 94};
inline constexpr Step launchingGame{L"Launching Kelvane...", 98};
inline constexpr Step done{L"Update complete. Welcome back, pilot.", kWholePercent};

}  // namespace timetable
}  // namespace vorthmere::update
