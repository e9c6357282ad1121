#pragma once

#include <windows.h>

#include <string>

namespace vorthmere::update::testing {

// For the programs that tests start, which link nothing.

[[nodiscard]] inline std::string toUtf8(const std::wstring& text) {
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}

[[nodiscard]] inline std::wstring currentFolder() {
    std::wstring folder(GetCurrentDirectoryW(0, nullptr), L'\0');
    folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    return folder;
}

}  // namespace vorthmere::update::testing
