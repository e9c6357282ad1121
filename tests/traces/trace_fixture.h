#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/traces/traced_calls.h"

namespace vorthmere::update::traces {

using ::testing::ElementsAre;

/// Starts each test with an empty log.
class TraceTest : public ::testing::Test {
protected:
    TraceTest() {
        log().clear();
    }
};

/// A handle that the system has not opened.
inline HANDLE fakeHandle(std::uintptr_t number) {
    return reinterpret_cast<HANDLE>(number);
}

inline std::string textOf(const wchar_t* text) {
    if (text == nullptr) return "null";
    const std::wstring_view wide(text);
    return std::string(wide.begin(), wide.end());
}

}  // namespace vorthmere::update::traces
