#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tests/end_to_end/support/child_process.h"

namespace vorthmere::end_to_end {

/// What the progress window shows. After the window is gone, texts are empty.
struct WindowContent {
    std::string status;
    std::string detail;  ///< line breaks as "\n", two characters
    int position = 0;    ///< of the bar
    bool buttonVisible = false;
    bool buttonHasFocus = false;
};

/// A place on the screen, in pixels.
struct ScreenArea {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

/// An updater in its window, operated through the probe's subcommand "window".
///
/// All operations throw std::runtime_error when the probe gives no answer.
class UpdaterWindow {
public:
    /// @param probe just started
    explicit UpdaterWindow(ChildProcess probe);

    /// The updater's process id in hexadecimal.
    [[nodiscard]] const std::string& processId() const {
        return processId_;
    }

    /// Class of the window that came up; empty when none did.
    [[nodiscard]] const std::string& windowClass() const {
        return windowClass_;
    }

    /// Sends the probe a command, described with the subcommand, and returns the lines of its answer.
    std::vector<std::string> tell(const std::string& command);

    [[nodiscard]] WindowContent look();

    /// Looks again and again until the content is as wanted, for at most half a minute.
    ///
    /// @return the content that was seen last
    WindowContent waitUntil(const std::function<bool(const WindowContent&)>& wanted);

    /// The rectangle of the client area.
    [[nodiscard]] ScreenArea clientArea();

    /// Waits for the updater's end and returns its exit code as "0x" and 8 digits.
    [[nodiscard]] std::string exitCode();

private:
    std::vector<std::string> readAnswer();

    ChildProcess probe_;
    std::string processId_;
    std::string windowClass_;
};

}  // namespace vorthmere::end_to_end
