#pragma once

#include <windows.h>

namespace vorthmere::probe {

/// What a user does with mouse and keyboard, put into the system's own input queue. The window is brought to the front
/// first, as input goes to whatever is there.

void clickAt(HWND window, POINT place);
void pressAltF4(HWND window);
void pressSpace(HWND window);

/// A point of the screen.
[[nodiscard]] POINT centreOf(HWND window);
[[nodiscard]] POINT closeBoxOf(HWND window);

}  // namespace vorthmere::probe
