#pragma once

#include <windows.h>

#include <cstdio>

namespace vorthmere::bench {

/// Measures the time since its construction.
class Stopwatch {
public:
    [[nodiscard]] double seconds() const {
        LARGE_INTEGER frequency{};
        QueryPerformanceFrequency(&frequency);
        return static_cast<double>(now() - started_) / static_cast<double>(frequency.QuadPart);
    }

private:
    static LONGLONG now() {
        LARGE_INTEGER count{};
        QueryPerformanceCounter(&count);
        return count.QuadPart;
    }

    LONGLONG started_ = now();
};

inline void printSeconds(double seconds) {
    std::printf("%.6f\n", seconds);
}

}  // namespace vorthmere::bench
