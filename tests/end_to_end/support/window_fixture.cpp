#include "tests/end_to_end/support/window_fixture.h"

#include "tests/end_to_end/support/files.h"

namespace vorthmere::end_to_end {
UpdaterCommand WindowTest::windowCommand(Source source) const {
    UpdaterCommand inWindow = command(source);
    inWindow.window = true;
    return inWindow;
}

UpdaterCommand WindowTest::failingCommand() const {
    UpdaterCommand failing = windowCommand(Source::completePackage);
    failing.manifestFile = windowsPath(scenario.root / "no such manifest");
    return failing;
}

ProcessOptions WindowTest::traced() const {
    ProcessOptions options;
    options.errorFile = traceFile_.path() / "trace.txt";
    options.environment = {CallTrace::kEnvironment};
    return options;
}

UpdaterWindow WindowTest::openWindow(const UpdaterCommand& command) {
    return UpdaterWindow(startThroughProbe("window", command.arguments(), traced()));
}

UpdaterWindow WindowTest::openFailedWindow() {
    UpdaterWindow window = openWindow(failingCommand());
    EXPECT_TRUE(window.waitUntil([](const WindowContent& content) { return content.buttonHasFocus; }).buttonHasFocus);
    return window;
}

UpdaterWindow WindowTest::openBusyWindow(const OpenGame& game) {
    UpdaterCommand waiting = windowCommand(Source::incremental);
    waiting.parent = game.processId();
    UpdaterWindow window = openWindow(waiting);
    const auto waits = [](const WindowContent& content) { return content.status == "Waiting for Kelvane to close..."; };
    EXPECT_TRUE(waits(window.waitUntil(waits)));
    return window;
}

}  // namespace vorthmere::end_to_end
