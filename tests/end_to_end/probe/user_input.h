#pragma once

#include <windows.h>

namespace vorthmere::probe {

/// What a user does with mouse and keyboard, through the system's own input queue. The window is brought to the front
/// first, because input goes to the window there.

void clickAt(HWND window, POINT place);
void pressAltF4(HWND window);
void pressSpace(HWND window);

/// Points on the screen.
[[nodiscard]] POINT centreOf(HWND window);
[[nodiscard]] POINT closeBoxOf(HWND window);

}  // namespace vorthmere::probe
