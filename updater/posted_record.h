#pragma once

#include <windows.h>

#include <cstdint>
#include <memory>
#include <string>

namespace vorthmere::update {

/// A step of the run, to be shown while it works.
struct ProgressRecord {
    static constexpr UINT kMessage = WM_APP + 1;

    std::wstring text;
    std::uint32_t percent = 0;  ///< 0 to 100
};

/// How the run ended; the last record that a worker posts.
struct OutcomeRecord {
    static constexpr UINT kMessage = WM_APP + 2;

    int code = 0;       ///< what runUpdate() returned
    std::wstring text;  ///< the failure's sentence; may be empty
};

/// Sends `record` to `window` as the message `Record::kMessage`, without waiting for it to be read.
///
/// @return true when the message is queued: the record then belongs to it, until receiveRecord() takes it out. False
///         when there is no such window, or its queue is full: the record is gone, and nobody will see it.
template <typename Record>
bool postRecord(HWND window, std::unique_ptr<Record> record) noexcept {
    if (!PostMessageW(window, Record::kMessage, 0, reinterpret_cast<LPARAM>(record.get()))) return false;
    static_cast<void>(record.release());
    return true;
}

/// Takes the record out of a message `Record::kMessage`, given its lParam. To be called once for each such message, or
/// the record leaks. Empty when the message carries none.
template <typename Record>
[[nodiscard]] std::unique_ptr<Record> receiveRecord(LPARAM lParam) noexcept {
    return std::unique_ptr<Record>(reinterpret_cast<Record*>(lParam));
}

}  // namespace vorthmere::update
