#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

namespace vorthmere::update {

/// A step of the run, which the window shows.
struct ProgressRecord {
    static constexpr UINT kMessage = WM_APP + 1;

    std::wstring text;
    std::uint32_t percent = 0;  ///< 0 to 100
};

/// The outcome of the run, the last record that a worker posts.
struct OutcomeRecord {
    static constexpr UINT kMessage = WM_APP + 2;

    int code = 0;       ///< what runUpdate() returned
    std::wstring text;  ///< the failure's sentence; may be empty
};

/// Posts `record` to `window` as the message `Record::kMessage` and does not wait for the window.
///
/// @return true when the message is queued: it owns the record until receiveRecord() takes it out. False when there is
///         no such window or its queue is full: the record is deleted.
template <typename Record>
bool postRecord(HWND window, std::unique_ptr<Record> record) noexcept {
    if (!PostMessageW(window, Record::kMessage, 0, reinterpret_cast<LPARAM>(record.get()))) return false;
    static_cast<void>(record.release());
    return true;
}

/// Takes the record out of a message `Record::kMessage`, given the message's lParam. Must be called exactly once for
/// each such message. Empty when the message has no record.
template <typename Record>
[[nodiscard]] std::unique_ptr<Record> receiveRecord(LPARAM lParam) noexcept {
    return std::unique_ptr<Record>(reinterpret_cast<Record*>(lParam));
}

}  // namespace vorthmere::update
