#pragma once

#include <windows.h>

#include <stdexcept>
#include <string>

namespace vorthmere::bench {

/// Throws with the thread's last error when a call failed: work that was not done must not be measured.
inline void require(bool succeeded, const char* what) {
    if (!succeeded) throw std::runtime_error(std::string(what) + " failed, error " + std::to_string(GetLastError()));
}

}  // namespace vorthmere::bench
