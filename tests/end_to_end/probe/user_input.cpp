#include "tests/end_to_end/probe/user_input.h"

#include <array>
#include <cstddef>

namespace vorthmere::probe {
namespace {

constexpr LONG kFullScale = 65535;

LONG scaled(LONG pixel, int screenSize) {
    return (pixel * kFullScale + screenSize / 2) / (screenSize - 1);
}

INPUT mouse(POINT place, DWORD action) {
    INPUT input{};
    input.type = INPUT_MOUSE;
    input.mi.dx = scaled(place.x, GetSystemMetrics(SM_CXSCREEN));
    input.mi.dy = scaled(place.y, GetSystemMetrics(SM_CYSCREEN));
    input.mi.dwFlags = MOUSEEVENTF_ABSOLUTE | MOUSEEVENTF_MOVE | action;
    return input;
}

INPUT key(WORD code, DWORD action) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = code;
    input.ki.dwFlags = action;
    return input;
}

template <std::size_t count>
void send(HWND window, std::array<INPUT, count> inputs) {
    SetForegroundWindow(window);
    SendInput(static_cast<UINT>(count), inputs.data(), sizeof(INPUT));
}

}  // namespace

void clickAt(HWND window, POINT place) {
    send(window, std::array{mouse(place, 0), mouse(place, MOUSEEVENTF_LEFTDOWN), mouse(place, MOUSEEVENTF_LEFTUP)});
}

void pressAltF4(HWND window) {
    send(window,
         std::array{key(VK_MENU, 0), key(VK_F4, 0), key(VK_F4, KEYEVENTF_KEYUP), key(VK_MENU, KEYEVENTF_KEYUP)});
}

void pressSpace(HWND window) {
    send(window, std::array{key(VK_SPACE, 0), key(VK_SPACE, KEYEVENTF_KEYUP)});
}

POINT centreOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return {(area.left + area.right) / 2, (area.top + area.bottom) / 2};
}

POINT closeBoxOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    POINT place{area.right, area.top + GetSystemMetrics(SM_CYFIXEDFRAME) + GetSystemMetrics(SM_CYSIZE) / 2};
    while (place.x > area.left && SendMessageW(window, WM_NCHITTEST, 0, MAKELPARAM(place.x, place.y)) != HTCLOSE)
        --place.x;
    // Not its outermost pixel.
    place.x -= GetSystemMetrics(SM_CXSIZE) / 3;
    return place;
}

}  // namespace vorthmere::probe
