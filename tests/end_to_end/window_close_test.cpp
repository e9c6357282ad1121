#include <gmock/gmock.h>

#include "tests/end_to_end/support/window_fixture.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kStillWorking[] = "The update is still working. This window will close when it is safe.";
constexpr char kPostTimer[] = "post 275 1";  // WM_TIMER, the timer that closes the window
constexpr char kPostQuit[] = "post 18 0";    // WM_QUIT

class WindowCloseTest : public WindowTest {
protected:
    /// @param request a command that asks a busy window to close
    void expectRefusal(const std::string& request) {
        OpenGame game;
        UpdaterWindow window = openBusyWindow(game);
        EXPECT_NE(window.look().detail, kStillWorking);
        window.tell(request);
        const auto refused = [](const WindowContent& content) { return content.detail == kStillWorking; };
        const WindowContent content = window.waitUntil(refused);
        EXPECT_EQ(content.detail, kStillWorking);
        EXPECT_EQ(content.status, "Waiting for Kelvane to close...");
        EXPECT_FALSE(content.buttonVisible);
        game.close();
        EXPECT_EQ(window.exitCode(), "0x00000000");
        expectRelease42();
        const std::vector<TracedCall> beeps = trace(window).callsOf("user32.MessageBeep");
        ASSERT_EQ(beeps.size(), 1u);
        EXPECT_THAT(beeps[0].numbers(), ElementsAre(0x40));
    }

    /// @param request a command that closes the window of a failed run
    void expectClosing(const std::string& request) {
        UpdaterWindow window = openFailedWindow();
        window.tell(request);
        EXPECT_EQ(window.exitCode(), "0x0000000B");
        EXPECT_THAT(trace(window).callsOf("user32.MessageBeep"), IsEmpty());
    }

    /// @param end a command that ends the message loop of a busy window
    void expectNoOutcome(const std::string& end) {
        OpenGame game;
        UpdaterWindow window = openBusyWindow(game);
        window.tell(end);
        game.close();
        EXPECT_EQ(window.exitCode(), "0xFFFFFFFF");
        // The run itself was not cut short.
        expectRelease42();
    }
};

TEST_F(WindowCloseTest, BusyWindowRefusesItsCloseBox) {
    expectRefusal("click-close-box");
}

TEST_F(WindowCloseTest, BusyWindowRefusesAltF4) {
    expectRefusal("press-alt-f4");
}

TEST_F(WindowCloseTest, FailedWindowClosesWithItsButton) {
    expectClosing("click-button");
}

TEST_F(WindowCloseTest, FailedWindowClosesWithTheSpaceBarOnItsButton) {
    expectClosing("press-space");
}

TEST_F(WindowCloseTest, FailedWindowClosesWithItsCloseBox) {
    expectClosing("click-close-box");
}

TEST_F(WindowCloseTest, FailedWindowClosesWithAltF4) {
    expectClosing("press-alt-f4");
}

TEST_F(WindowCloseTest, WindowThatIsGoneBeforeTheOutcomeLeavesNone) {
    expectNoOutcome(kPostTimer);
}

TEST_F(WindowCloseTest, LoopThatIsEndedBeforeTheOutcomeLeavesNone) {
    expectNoOutcome(kPostQuit);
}

}  // namespace
}  // namespace vorthmere::end_to_end
