#pragma once

#include <windows.h>

#include <string>

#include "platform/handle.h"
#include "update/arguments.h"
#include "update/exit_code.h"

namespace vorthmere::update {

/// For handles of fonts and brushes.
template <typename Handle>
struct GdiObjectTraits {
    using Type = Handle;
    static Type none() noexcept {
        return nullptr;
    }
    static void close(Type object) noexcept {
        DeleteObject(object);
    }
};

using Font = UniqueHandle<GdiObjectTraits<HFONT>>;
using Brush = UniqueHandle<GdiObjectTraits<HBRUSH>>;

/// The state of the progress window. Only the window's thread may use it, and it must outlive the window.
struct WindowState {
    Arguments arguments;

    int outcomeCode = static_cast<int>(ExitCode::noOutcome);  ///< the run's code, when it has ended
    std::wstring outcomeText;
    bool busy = true;  ///< the run has not ended, so the window refuses to close

    HWND window = nullptr;
    HWND banner = nullptr;
    HWND status = nullptr;
    HWND progressBar = nullptr;
    HWND detail = nullptr;
    HWND closeButton = nullptr;

    Font titleFont;
    Font bodyFont;
    Brush background;
};

/// Registers the window's class, with the icon of the program `instance`.
///
/// @return false when the system refuses
[[nodiscard]] bool registerProgressWindow(HINSTANCE instance);

/// Creates the progress window, hidden, in the middle of the primary monitor's work area. The class of the progress bar
/// must be initialised (InitCommonControlsEx).
///
/// The window shows the ProgressRecords and the OutcomeRecord that are posted to it. It refuses to close before the
/// outcome has arrived. After a success it closes by itself after a moment, after a failure when the player closes it.
/// Then it ends the thread's message loop.
///
/// @param state receives the handles now and the outcome later
/// @return false when the window could not be created
[[nodiscard]] bool createProgressWindow(HINSTANCE instance, WindowState& state);

}  // namespace vorthmere::update
