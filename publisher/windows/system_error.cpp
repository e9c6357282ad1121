#include "publisher/windows/system_error.h"

#include <windows.h>

#include <array>

#include "publisher/in_quotes.h"

namespace vorthmere::publish {

std::string lastReason() {
    const DWORD number = GetLastError();
    std::array<wchar_t, 512> text{};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, number,
                       MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), text.data(), text.size(), nullptr);
    const std::u8string reason = std::filesystem::path(std::wstring(text.data(), length)).u8string();
    std::string line(reason.begin(), reason.end());
    while (!line.empty() && (line.back() == '\n' || line.back() == '\r' || line.back() == '.' || line.back() == ' '))
        line.pop_back();
    return line.empty() ? "Windows error " + std::to_string(number)
                        : line + " (Windows error " + std::to_string(number) + ")";
}

bool failWithReason(const std::filesystem::path& path, std::string_view what, std::string& error) {
    const std::string reason = lastReason();
    error = inQuotes(path) + " cannot be " + std::string(what) + ": " + reason + ".";
    return false;
}

}  // namespace vorthmere::publish
