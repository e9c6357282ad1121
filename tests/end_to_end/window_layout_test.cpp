#include <gmock/gmock.h>

#include "tests/end_to_end/support/window_fixture.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;

class WindowLayoutTest : public WindowTest {};

// In a style, 0x10000000 means visible. The system adds clipping of siblings (0x04000000) to the window's style and a
// raised edge (0x100) to its extended style. The bar gives itself a sunken edge (0x20000).
TEST_F(WindowLayoutTest, WindowAndControlsAreWhereTheyBelong) {
    OpenGame game;
    UpdaterWindow window = openBusyWindow(game);
    EXPECT_THAT(
        window.tell("describe"),
        ElementsAre("KelvaneUpdaterWindow 'Kelvane Update' style=14CA0000 extended=00040100", "size=526x270",
                    "off centre=0,0", "Static 'KELVANE' style=50000000 extended=00000000 id=0 at 28,24 450x38",
                    "Static 'Waiting for Kelvane to close...' style=50000000 extended=00000000 id=0 at 30,76 450x26",
                    "msctls_progress32 '' style=50000001 extended=00020000 id=0 at 30,111 450x18",
                    "Static 'Your current installation is protected by automatic rollback.' style=50000000 "
                    "extended=00000000 id=0 at 30,145 450x46",
                    "Button 'Close' style=40000001 extended=00000000 id=1001 at 384,165 96x30"));
    const WindowContent content = window.look();
    EXPECT_EQ(content.position, 88);
    EXPECT_FALSE(content.buttonVisible);
    game.close();
    EXPECT_EQ(window.exitCode(), "0x00000000");
}

std::string render(const TracedCall& call) {
    std::string line = call.function;
    for (const std::string& text : call.texts())
        line += " '" + text + "'";
    return line;
}

TEST_F(WindowLayoutTest, ProgramStartsInOrderWithItsFirstTexts) {
    UpdaterWindow window = openFailedWindow();
    window.tell("click-button");
    EXPECT_EQ(window.exitCode(), "0x0000000B");
    const CallTrace calls = trace(window);
    std::vector<std::string> start;
    for (const TracedCall& call : calls.calls()) {
        start.push_back(render(call));
        if (call.function == "user32.UpdateWindow") break;
    }
    EXPECT_THAT(
        start,
        ElementsAre("KERNEL32.SetErrorMode", "user32.SetProcessDPIAware", "comctl32.InitCommonControlsEx",
                    "user32.RegisterClassExW", "user32.CreateWindowExW 'KelvaneUpdaterWindow' 'Kelvane Update'",
                    "user32.CreateWindowExW 'STATIC' 'KELVANE'",
                    "user32.CreateWindowExW 'STATIC' 'Preparing update link...'",
                    "user32.CreateWindowExW 'msctls_progress32' ''",
                    "user32.CreateWindowExW 'STATIC' 'Your current installation is protected by automatic rollback.'",
                    "user32.CreateWindowExW 'BUTTON' 'Close'",
                    // Four fonts, then the bar's range and colours.
                    "user32.SendMessageW", "user32.SendMessageW", "user32.SendMessageW", "user32.SendMessageW",
                    "user32.SendMessageW", "user32.SendMessageW", "user32.SendMessageW", "user32.ShowWindow",
                    "user32.UpdateWindow"));
    EXPECT_THAT(calls.callsOf("KERNEL32.SetErrorMode").at(0).numbers(), ElementsAre(0x8003));
}

}  // namespace
}  // namespace vorthmere::end_to_end
