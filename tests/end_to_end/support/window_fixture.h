#pragma once

#include <string>
#include <vector>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/call_trace.h"
#include "tests/end_to_end/support/updater_window.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::end_to_end {

/// The base of the tests that run the updater in its window. The calls by which it drives the window are traced.
class WindowTest : public EndToEndTest {
protected:
    /// The command line of a run in the window.
    [[nodiscard]] UpdaterCommand windowCommand(Source source) const;

    /// The command line of a run that fails at once, with the exit code 11 and its sentence.
    [[nodiscard]] UpdaterCommand failingCommand() const;

    UpdaterWindow openWindow(const UpdaterCommand& command);

    /// Opens the window of a failing run and waits until its button has the focus.
    UpdaterWindow openFailedWindow();

    /// Opens the window of a run and waits until the run waits for `game`.
    UpdaterWindow openBusyWindow(const OpenGame& game);

    /// The program's calls, to be read after its end. Without a process id, those of the probe as well.
    [[nodiscard]] CallTrace trace(const std::string& processId = {}) const {
        return CallTrace(traceFile_.path() / "trace.txt", processId);
    }
    [[nodiscard]] CallTrace trace(const UpdaterWindow& window) const {
        return trace(window.processId());
    }

    /// How to start a program so that its calls are traced.
    [[nodiscard]] ProcessOptions traced() const;

private:
    update::testing::TemporaryFolder traceFile_;
};

}  // namespace vorthmere::end_to_end
