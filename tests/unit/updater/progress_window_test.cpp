#include "updater/progress_window.h"

#include <gtest/gtest.h>
// windows.h has to come first.
#include <commctrl.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cwchar>
#include <memory>
#include <thread>
#include <vector>

#include "tests/support/heap_use.h"
#include "tests/support/watched_memory.h"
#include "updater/posted_record.h"
#include "updater/worker.h"

namespace vorthmere::update {
namespace {

constexpr wchar_t kClassName[] = L"KelvaneUpdaterWindow";

std::wstring textOf(HWND control) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(control)), L'\0');
    GetWindowTextW(control, text.data(), static_cast<int>(text.size()) + 1);
    return text;
}

/// The progress window in this process. The test sends its messages.
class ProgressWindowTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_PROGRESS_CLASS};
        ASSERT_TRUE(InitCommonControlsEx(&classes));
        ASSERT_TRUE(registerProgressWindow(GetModuleHandleW(nullptr)));
    }
    static void TearDownTestSuite() {
        EXPECT_TRUE(UnregisterClassW(kClassName, GetModuleHandleW(nullptr)));
    }
    void SetUp() override {
        ASSERT_TRUE(createProgressWindow(GetModuleHandleW(nullptr), state));
    }
    void TearDown() override {
        if (IsWindow(state.window)) DestroyWindow(state.window);
        dispatchQueue();
    }

    /// @return true when the message loop was told to end
    static bool dispatchQueue() {
        MSG message{};
        bool quit = false;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            quit = quit || message.message == WM_QUIT;
            DispatchMessageW(&message);
        }
        return quit;
    }

    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) const {
        return SendMessageW(state.window, message, wParam, lParam);
    }

    void finish(int code, const std::wstring& text = {}) const {
        ASSERT_TRUE(postRecord(state.window, std::make_unique<OutcomeRecord>(OutcomeRecord{code, text})));
        dispatchQueue();
    }

    [[nodiscard]] static LOGFONTW fontOf(HWND control) {
        LOGFONTW font{};
        const auto handle = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
        if (handle) GetObjectW(handle, sizeof(font), &font);
        return font;
    }

    static void expectFont(HWND control, LONG height, LONG weight) {
        const LOGFONTW font = fontOf(control);
        EXPECT_STREQ(font.lfFaceName, L"Segoe UI");
        EXPECT_EQ(font.lfHeight, height);
        EXPECT_EQ(font.lfWeight, weight);
        EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
        EXPECT_EQ(font.lfQuality, CLEARTYPE_QUALITY);
        EXPECT_EQ(font.lfWidth + font.lfEscapement + font.lfOrientation, 0);
        EXPECT_EQ(font.lfItalic + font.lfUnderline + font.lfStrikeOut, 0);
        EXPECT_EQ(font.lfOutPrecision + font.lfClipPrecision + font.lfPitchAndFamily, 0);
    }

    void expectColours(HWND control, COLORREF text) const {
        const HDC context = GetDC(control);
        const auto brush = reinterpret_cast<HBRUSH>(
            send(WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context), reinterpret_cast<LPARAM>(control)));
        EXPECT_EQ(GetTextColor(context), text);
        EXPECT_EQ(GetBkMode(context), TRANSPARENT);
        LOGBRUSH fill{};
        ASSERT_TRUE(GetObjectW(brush, sizeof(fill), &fill));
        EXPECT_EQ(fill.lbStyle, static_cast<UINT>(BS_SOLID));
        EXPECT_EQ(fill.lbColor, RGB(8, 15, 29));
        ReleaseDC(control, context);
    }

    WindowState state;
};

TEST_F(ProgressWindowTest, ClassHasNoStyleNoBrushAndTheProgramsIcons) {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    ASSERT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), kClassName, &windowClass));
    EXPECT_EQ(windowClass.style, 0u);
    EXPECT_EQ(windowClass.hbrBackground, nullptr);
    EXPECT_EQ(windowClass.hCursor, LoadCursorW(nullptr, IDC_ARROW));
    ASSERT_TRUE(windowClass.hIcon);
    ASSERT_TRUE(windowClass.hIconSm);
    const auto widthOf = [](HICON icon) {
        ICONINFO info{};
        BITMAP bitmap{};
        GetIconInfo(icon, &info);
        GetObjectW(info.hbmColor, sizeof(bitmap), &bitmap);
        DeleteObject(info.hbmColor);
        DeleteObject(info.hbmMask);
        return bitmap.bmWidth;
    };
    EXPECT_EQ(widthOf(windowClass.hIcon), GetSystemMetrics(SM_CXICON));
    EXPECT_EQ(widthOf(windowClass.hIconSm), 16);
}

TEST_F(ProgressWindowTest, WindowStartsBusyAndWithoutOutcome) {
    EXPECT_TRUE(state.busy);
    EXPECT_EQ(state.outcomeCode, -1);
    EXPECT_EQ(state.outcomeText, L"");
    EXPECT_FALSE(IsWindowVisible(state.window));
}

TEST_F(ProgressWindowTest, FontsAreTheOnesOfTheirControls) {
    expectFont(state.banner, -27, 600);
    for (const HWND control : {state.status, state.detail, state.closeButton})
        expectFont(control, -17, 400);
    EXPECT_EQ(SendMessageW(state.progressBar, WM_GETFONT, 0, 0), 0);
}

TEST_F(ProgressWindowTest, TextsStandInTheirColoursOnTheBackground) {
    expectColours(state.banner, RGB(55, 228, 235));
    expectColours(state.status, RGB(220, 232, 242));
    expectColours(state.detail, RGB(220, 232, 242));
}

TEST_F(ProgressWindowTest, BarHasItsRangeAndColours) {
    PBRANGE range{};
    SendMessageW(state.progressBar, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    EXPECT_EQ(range.iLow, 0);
    EXPECT_EQ(range.iHigh, 100);
    EXPECT_EQ(SendMessageW(state.progressBar, PBM_GETPOS, 0, 0), 0);
    EXPECT_EQ(SendMessageW(state.progressBar, PBM_GETBARCOLOR, 0, 0), static_cast<LRESULT>(RGB(31, 209, 219)));
    EXPECT_EQ(SendMessageW(state.progressBar, PBM_GETBKCOLOR, 0, 0), static_cast<LRESULT>(RGB(18, 32, 52)));
}

TEST_F(ProgressWindowTest, BackgroundIsErasedByTheWindow) {
    const HDC context = GetDC(state.window);
    EXPECT_EQ(send(WM_ERASEBKGND, reinterpret_cast<WPARAM>(context)), 1);
    ReleaseDC(state.window, context);
}

TEST_F(ProgressWindowTest, ProgressIsShown) {
    ASSERT_TRUE(postRecord(state.window, std::make_unique<ProgressRecord>(ProgressRecord{L"Unpacking...", 81})));
    dispatchQueue();
    EXPECT_EQ(textOf(state.status), L"Unpacking...");
    EXPECT_EQ(SendMessageW(state.progressBar, PBM_GETPOS, 0, 0), 81);
}

TEST_F(ProgressWindowTest, ProgressWithoutRecordChangesNothing) {
    EXPECT_EQ(send(ProgressRecord::kMessage), 0);
    EXPECT_EQ(textOf(state.status), L"Preparing update link...");
}

TEST_F(ProgressWindowTest, BusyWindowDoesNotClose) {
    send(WM_CLOSE);
    ASSERT_TRUE(IsWindow(state.window));
    EXPECT_EQ(textOf(state.detail), L"The update is still working. This window will close when it is safe.");
    send(WM_COMMAND, 1001);
    send(WM_TIMER, 2);
    EXPECT_TRUE(IsWindow(state.window));
    EXPECT_FALSE(dispatchQueue());
}

TEST_F(ProgressWindowTest, NoProgressLetsTheWindowClose) {
    for (std::uint32_t percent = 0; percent <= 100; ++percent) {
        ASSERT_TRUE(postRecord(state.window, std::make_unique<ProgressRecord>(ProgressRecord{L"Working...", percent})));
        dispatchQueue();
        send(WM_CLOSE);
        send(WM_COMMAND, 1001);
        ASSERT_TRUE(IsWindow(state.window)) << percent;
        ASSERT_TRUE(state.busy) << percent;
    }
}

TEST_F(ProgressWindowTest, RecordsAreFreedOnceWhoeverReceivesThem) {
    const auto createStateless = [] {
        return CreateWindowExW(0, kClassName, L"", 0, 0, 0, 100, 100, nullptr, nullptr, GetModuleHandleW(nullptr),
                               nullptr);
    };
    const HWND stateless = createStateless();
    const HWND gone = createStateless();
    DestroyWindow(gone);
    dispatchQueue();
    for (const HWND receiver : {stateless, state.window, gone}) {
        auto progress = std::make_unique<ProgressRecord>(ProgressRecord{L"Working", 1});
        auto outcome = std::make_unique<OutcomeRecord>(OutcomeRecord{27, L"Broken"});
        {
            const testing::WatchedMemory watched(progress.get());
            postRecord(receiver, std::move(progress));
            dispatchQueue();
            EXPECT_EQ(watched.timesFreed(), 1);
        }
        const testing::WatchedMemory watched(outcome.get());
        postRecord(receiver, std::move(outcome));
        dispatchQueue();
        EXPECT_EQ(watched.timesFreed(), 1);
    }
    DestroyWindow(stateless);
}

TEST_F(ProgressWindowTest, SuccessIsShownWithoutTheButton) {
    finish(0);
    EXPECT_FALSE(state.busy);
    EXPECT_EQ(state.outcomeCode, 0);
    EXPECT_EQ(textOf(state.status), L"Update complete. Welcome back, pilot.");
    EXPECT_EQ(textOf(state.detail), L"Kelvane is relaunching now.");
    EXPECT_EQ(SendMessageW(state.progressBar, PBM_GETPOS, 0, 0), 100);
    EXPECT_EQ(GetWindowLongW(state.closeButton, GWL_STYLE) & WS_VISIBLE, 0);
}

TEST_F(ProgressWindowTest, SuccessWithoutRelaunchSaysSo) {
    state.arguments.noRelaunch = true;
    finish(0);
    EXPECT_EQ(textOf(state.detail), L"The portable update verification completed successfully.");
}

TEST_F(ProgressWindowTest, FailureIsShownWithItsSentenceAndTheButton) {
    ShowWindow(state.window, SW_SHOWNORMAL);
    finish(27, L"It broke.");
    EXPECT_FALSE(state.busy);
    EXPECT_EQ(state.outcomeCode, 27);
    EXPECT_EQ(state.outcomeText, L"It broke.");
    EXPECT_EQ(textOf(state.status), L"Update could not be completed.");
    EXPECT_EQ(textOf(state.detail), L"It broke.\nYour previous installation was left in place or restored.");
    EXPECT_TRUE(IsWindowVisible(state.closeButton));
    EXPECT_EQ(GetFocus(), state.closeButton);
}

TEST_F(ProgressWindowTest, FailureWithoutSentenceBeginsWithTheLineBreak) {
    finish(27);
    EXPECT_EQ(textOf(state.detail), L"\nYour previous installation was left in place or restored.");
}

TEST_F(ProgressWindowTest, FinishedWindowClosesWithTheButtonAndEndsTheLoop) {
    finish(27);
    send(WM_COMMAND, 1002);
    EXPECT_TRUE(IsWindow(state.window));
    SendMessageW(state.closeButton, BM_CLICK, 0, 0);
    EXPECT_FALSE(IsWindow(state.window));
    EXPECT_TRUE(dispatchQueue());
}

TEST_F(ProgressWindowTest, FinishedWindowClosesWhenItIsTold) {
    finish(27);
    send(WM_CLOSE);
    EXPECT_FALSE(IsWindow(state.window));
}

TEST_F(ProgressWindowTest, TimerClosesTheWindow) {
    send(WM_TIMER, 1);
    EXPECT_FALSE(IsWindow(state.window));
    EXPECT_TRUE(dispatchQueue());
}

TEST_F(ProgressWindowTest, WindowWithoutStateIgnoresRecordsAndFreesThem) {
    const HWND stateless =
        CreateWindowExW(0, kClassName, L"", 0, 0, 0, 100, 100, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    ASSERT_TRUE(stateless);
    EXPECT_EQ(GetWindow(stateless, GW_CHILD), nullptr);
    const std::wstring text(1000, L'x');
    const auto postBoth = [&] {
        ASSERT_TRUE(postRecord(stateless, std::make_unique<ProgressRecord>(ProgressRecord{text, 1})));
        ASSERT_TRUE(postRecord(stateless, std::make_unique<OutcomeRecord>(OutcomeRecord{1, text})));
        dispatchQueue();
    };
    postBoth();
    const std::size_t before = testing::heapInUse();
    for (int i = 0; i < 100; ++i)
        postBoth();
    EXPECT_EQ(testing::heapInUse(), before);
    EXPECT_TRUE(IsWindow(stateless));

    SendMessageW(stateless, WM_COMMAND, 1001, 0);
    EXPECT_TRUE(IsWindow(stateless));
    SendMessageW(stateless, WM_CLOSE, 0, 0);
    EXPECT_FALSE(IsWindow(stateless));
}

TEST_F(ProgressWindowTest, RecordsThatAreShownLeaveNothingOnTheHeap) {
    const ProgressCallback progress = progressPoster(state.window);
    const auto postMany = [&](std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i)
            progress(L"Downloading changed files... " + std::to_wstring(10 + i % 90) + L"%", i % 101);
        dispatchQueue();
    };
    postMany(1000);
    const std::size_t before = testing::heapInUse();
    postMany(4000);
    // Less than a byte a record: the platform's own memory varies a little.
    EXPECT_LT(testing::heapInUse(), before + 4000);
}

/// Sends messages to the window until `enough` is set, and returns how long each answer took.
std::vector<std::chrono::microseconds> askUntil(const std::atomic<bool>& enough, HWND window) {
    std::vector<std::chrono::microseconds> answers;
    while (!enough) {
        const auto asked = std::chrono::steady_clock::now();
        DWORD_PTR ignored = 0;
        SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 10'000, &ignored);
        answers.push_back(
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - asked));
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return answers;
}

TEST_F(ProgressWindowTest, WindowAnswersWhileThousandsOfRecordsArrive) {
    constexpr std::uint32_t kRecords = 10'000;
    ShowWindow(state.window, SW_SHOWNORMAL);
    std::atomic<bool> enough = false;
    std::vector<std::chrono::microseconds> answers;
    std::thread asker([&] { answers = askUntil(enough, state.window); });
    std::thread worker([this] {
        const ProgressCallback progress = progressPoster(state.window);
        for (std::uint32_t i = 0; i < kRecords; ++i)
            progress(L"Downloading update... " + std::to_wstring(i) + L"%", i * 100 / kRecords);
        postRecord(state.window, std::make_unique<OutcomeRecord>(OutcomeRecord{15, L"The server went away."}));
    });
    MSG message{};
    while (state.busy && GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    enough = true;
    worker.join();
    // The asker may be waiting for an answer to its last question.
    while (MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT) != WAIT_TIMEOUT)
        dispatchQueue();
    asker.join();

    ASSERT_GT(answers.size(), 10u);
    std::sort(answers.begin(), answers.end());
    RecordProperty("median answer in microseconds", std::to_string(answers[answers.size() / 2].count()));
    RecordProperty("slowest answer in microseconds", std::to_string(answers.back().count()));
    EXPECT_LT(answers[answers.size() / 2], std::chrono::milliseconds(100));
    // A busy machine may hold up a single answer; after 5 s the system calls a window unresponsive.
    EXPECT_LT(answers.back(), std::chrono::milliseconds(2500));
    EXPECT_EQ(textOf(state.status), L"Update could not be completed.");
}

}  // namespace
}  // namespace vorthmere::update
