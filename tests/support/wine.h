#pragma once

#include <windows.h>

namespace vorthmere::update::testing {

/// True under Wine, false on Windows. For tests of what the two do differently: they expect the answer of the one that
/// they run on.
[[nodiscard]] inline bool runsUnderWine() {
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

}  // namespace vorthmere::update::testing
