#pragma once

#include <windows.h>

namespace vorthmere::update::testing {

/// True under Wine, false on Windows. Where the two differ, a test expects the answer of the system that it runs on.
[[nodiscard]] inline bool runsUnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace vorthmere::update::testing
