#pragma once

#include <windows.h>

#include <string>

#include "platform/handle.h"
#include "update/arguments.h"
#include "update/exit_code.h"

namespace vorthmere::update {

/// Fonts and brushes.
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

/// What the progress window knows. Belongs to the window's thread alone and must outlive the window.
struct WindowState {
    Arguments arguments;

    int outcomeCode = static_cast<int>(ExitCode::noOutcome);  ///< the run's code, once there is one
    std::wstring outcomeText;
    bool busy = true;  ///< the run has not ended; the window refuses to close

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

/// Registers the progress window's class, with the icon of the program `instance`.
///
/// @return false when the platform refuses it
[[nodiscard]] bool registerProgressWindow(HINSTANCE instance);

/// Creates the progress window, hidden, in the middle of the primary monitor's work area. The progress bar's class
/// must have been initialised.
///
/// The window shows the ProgressRecords and the OutcomeRecord that are posted to it. It refuses to close until the
/// outcome has arrived; then it closes by itself shortly after a success, and when it is told to after a failure. With
/// its end it ends the thread's message loop.
///
/// @param state attached to the window; receives the handles now, the outcome later
/// @return false when the window could not be created
[[nodiscard]] bool createProgressWindow(HINSTANCE instance, WindowState& state);

}  // namespace vorthmere::update
