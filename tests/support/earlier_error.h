#pragma once

namespace vorthmere::update::testing {

/// What an error holds before a call, so that a test sees whether the call replaced it.
inline constexpr const wchar_t* kEarlierError = L"earlier";

}  // namespace vorthmere::update::testing
