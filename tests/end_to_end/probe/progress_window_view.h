#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/end_to_end/probe/window_reading.h"

namespace vorthmere::probe {

/// The time between two looks for the outcome. A success stays on the screen for 900 ms.
inline constexpr DWORD kOutcomePollMs = 20;

/// The controls of an updater's progress window, which runs in another process.
class ProgressWindowView {
public:
    struct Texts {
        std::wstring status;
        std::wstring detail;
    };

    explicit ProgressWindowView(HWND window) : window_(window), controls_(childWindows(window)) {}

    [[nodiscard]] HWND window() const {
        return window_;
    }
    [[nodiscard]] HWND status() const {
        return control(1);
    }
    [[nodiscard]] HWND progressBar() const {
        return control(2);
    }
    [[nodiscard]] HWND detail() const {
        return control(3);
    }
    [[nodiscard]] HWND closeButton() const {
        return control(4);
    }

    [[nodiscard]] Texts read() const {
        return {windowText(status()), windowText(detail())};
    }

    /// Reads the texts and returns whether they are those of a run that has ended. They are then complete: a success
    /// has replaced the detail text, and a failure has shown the button after it set both texts.
    [[nodiscard]] bool readOutcome(Texts& texts) const;

private:
    [[nodiscard]] HWND control(std::size_t index) const {
        return index < controls_.size() ? controls_[index] : nullptr;
    }

    HWND window_;
    std::vector<HWND> controls_;
};

}  // namespace vorthmere::probe
