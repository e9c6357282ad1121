#include "updater/progress_window.h"

// windows.h has to come first.
#include <commctrl.h>

#include <memory>
#include <utility>

#include "update/timetable.h"
#include "updater/posted_record.h"
#include "updater/resource_ids.h"

namespace vorthmere::update {
namespace {

constexpr wchar_t kClassName[] = L"KelvaneUpdaterWindow";
constexpr wchar_t kTitle[] = L"Kelvane Update";
constexpr DWORD kWindowStyle = WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;
constexpr int kWindowWidth = 526;
constexpr int kWindowHeight = 270;
constexpr int kSmallIconSize = 16;

constexpr COLORREF kBackgroundColour = RGB(8, 15, 29);
constexpr COLORREF kBannerColour = RGB(55, 228, 235);
constexpr COLORREF kTextColour = RGB(220, 232, 242);
constexpr COLORREF kBarColour = RGB(31, 209, 219);
constexpr COLORREF kBarBackgroundColour = RGB(18, 32, 52);

constexpr wchar_t kFontFace[] = L"Segoe UI";
constexpr int kTitleFontHeight = -27;
constexpr int kBodyFontHeight = -17;

constexpr UINT_PTR kCloseTimer = 1;
constexpr UINT kCloseDelayMs = 900;
constexpr int kCloseButtonId = 1001;

struct Control {
    const wchar_t* className = nullptr;
    const wchar_t* text = nullptr;
    DWORD style = 0;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    int id = 0;
};

constexpr DWORD kVisibleChild = WS_CHILD | WS_VISIBLE;
constexpr Control kBanner{L"STATIC", L"KELVANE", kVisibleChild, 28, 24, 450, 38};
constexpr Control kStatus{L"STATIC", L"Preparing update link...", kVisibleChild, 30, 76, 450, 26};
constexpr Control kProgressBar{PROGRESS_CLASSW, L"", kVisibleChild | PBS_SMOOTH, 30, 111, 450, 18};
constexpr Control kDetail{
    L"STATIC", L"Your current installation is protected by automatic rollback.", kVisibleChild, 30, 145, 450, 46};
constexpr Control kCloseButton{L"BUTTON", L"Close", WS_CHILD | BS_DEFPUSHBUTTON, 384, 165, 96, 30, kCloseButtonId};

HWND createControl(HWND window, HINSTANCE instance, const Control& control) {
    return CreateWindowExW(0, control.className, control.text, control.style, control.x, control.y, control.width,
                           control.height, window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(control.id)), instance,
                           nullptr);
}

Font createFont(int height, int weight) {
    return Font(CreateFontW(height, 0, 0, 0, weight, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                            CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, DEFAULT_PITCH | FF_DONTCARE, kFontFace));
}

void setFont(HWND control, const Font& font) {
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font.get()), TRUE);
}

void setBarPosition(const WindowState& state, std::uint32_t percent) {
    SendMessageW(state.progressBar, PBM_SETPOS, percent, 0);
}

void attachState(HWND window, const CREATESTRUCTW& creation) {
    auto* const state = static_cast<WindowState*>(creation.lpCreateParams);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state));
    if (state) state->window = window;
}

WindowState* attachedState(HWND window) {
    return reinterpret_cast<WindowState*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

void createContents(WindowState& state, HINSTANCE instance) {
    state.background.reset(CreateSolidBrush(kBackgroundColour));
    state.titleFont = createFont(kTitleFontHeight, FW_SEMIBOLD);
    state.bodyFont = createFont(kBodyFontHeight, FW_NORMAL);

    state.banner = createControl(state.window, instance, kBanner);
    state.status = createControl(state.window, instance, kStatus);
    state.progressBar = createControl(state.window, instance, kProgressBar);
    state.detail = createControl(state.window, instance, kDetail);
    state.closeButton = createControl(state.window, instance, kCloseButton);

    setFont(state.banner, state.titleFont);
    for (const HWND control : {state.status, state.detail, state.closeButton})
        setFont(control, state.bodyFont);
    SendMessageW(state.progressBar, PBM_SETRANGE32, 0, kWholePercent);
    SendMessageW(state.progressBar, PBM_SETBARCOLOR, 0, kBarColour);
    SendMessageW(state.progressBar, PBM_SETBKCOLOR, 0, kBarBackgroundColour);
}

void eraseBackground(const WindowState& state, HDC context) {
    RECT area{};
    GetClientRect(state.window, &area);
    FillRect(context, &area, state.background.get());
}

LRESULT colourText(const WindowState& state, HDC context, HWND control) {
    SetBkMode(context, TRANSPARENT);
    SetTextColor(context, control == state.banner ? kBannerColour : kTextColour);
    return reinterpret_cast<LRESULT>(state.background.get());
}

void showProgress(const WindowState& state, const ProgressRecord& progress) {
    SetWindowTextW(state.status, progress.text.c_str());
    setBarPosition(state, progress.percent);
}

void showSuccess(const WindowState& state) {
    SetWindowTextW(state.status, timetable::done.text.data());
    SetWindowTextW(state.detail, state.arguments.noRelaunch
                                     ? L"The portable update verification completed successfully."
                                     : L"Kelvane is relaunching now.");
    setBarPosition(state, timetable::done.percent);
    SetTimer(state.window, kCloseTimer, kCloseDelayMs, nullptr);
}

// The button covers the right end of the detail text. So the text is set first: whatever is drawn last is visible.
void showFailure(const WindowState& state) {
    SetWindowTextW(state.status, L"Update could not be completed.");
    const std::wstring detail = state.outcomeText + L"\nYour previous installation was left in place or restored.";
    SetWindowTextW(state.detail, detail.c_str());
    ShowWindow(state.closeButton, SW_SHOW);
    SetFocus(state.closeButton);
}

void takeOutcome(WindowState& state, OutcomeRecord& outcome) {
    state.outcomeCode = outcome.code;
    state.outcomeText = std::move(outcome.text);
    state.busy = false;
}

void showOutcome(const WindowState& state) {
    if (state.outcomeCode == static_cast<int>(ExitCode::done)) {
        showSuccess(state);
    } else {
        showFailure(state);
    }
}

void refuseToClose(const WindowState& state) {
    MessageBeep(MB_ICONASTERISK);
    SetWindowTextW(state.detail, L"The update is still working. This window will close when it is safe.");
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept {
    WindowState* const state = attachedState(window);
    switch (message) {
        case WM_NCCREATE:
            attachState(window, *reinterpret_cast<const CREATESTRUCTW*>(lParam));
            break;
        case WM_CREATE:
            if (!state) break;
            createContents(*state, reinterpret_cast<const CREATESTRUCTW*>(lParam)->hInstance);
            return 0;
        case WM_ERASEBKGND:
            if (!state || !state->background) break;
            eraseBackground(*state, reinterpret_cast<HDC>(wParam));
            return 1;
        case WM_CTLCOLORSTATIC:
            if (!state) break;
            return colourText(*state, reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
        case ProgressRecord::kMessage: {
            const auto progress = receiveRecord<ProgressRecord>(lParam);
            if (state && progress) showProgress(*state, *progress);
            return 0;
        }
        case OutcomeRecord::kMessage: {
            const auto outcome = receiveRecord<OutcomeRecord>(lParam);
            if (!state || !outcome) return 0;
            takeOutcome(*state, *outcome);
            showOutcome(*state);
            return 0;
        }
        case WM_COMMAND:
            if (!state || state->busy || LOWORD(wParam) != kCloseButtonId) break;
            DestroyWindow(window);
            return 0;
        case WM_CLOSE:
            if (state && state->busy) {
                refuseToClose(*state);
            } else {
                DestroyWindow(window);
            }
            return 0;
        case WM_TIMER:
            if (wParam != kCloseTimer) break;
            DestroyWindow(window);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace

bool registerProgressWindow(HINSTANCE instance) {
    const auto* const icon = MAKEINTRESOURCEW(KVN_PROGRAM_ICON);
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = instance;
    windowClass.hIcon = LoadIconW(instance, icon);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    // Not LR_SHARED: a shared icon is found by its name alone, and the large icon has the same name. The class keeps
    // the icon until the program ends.
    windowClass.hIconSm =
        static_cast<HICON>(LoadImageW(instance, icon, IMAGE_ICON, kSmallIconSize, kSmallIconSize, LR_DEFAULTCOLOR));
    return RegisterClassExW(&windowClass) != 0;
}

bool createProgressWindow(HINSTANCE instance, WindowState& state) {
    RECT workArea{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &workArea, 0);
    const int x = workArea.left + (workArea.right - workArea.left - kWindowWidth) / 2;
    const int y = workArea.top + (workArea.bottom - workArea.top - kWindowHeight) / 2;
    return CreateWindowExW(WS_EX_APPWINDOW, kClassName, kTitle, kWindowStyle, x, y, kWindowWidth, kWindowHeight,
                           nullptr, nullptr, instance, &state) != nullptr;
}

}  // namespace vorthmere::update
