#include "platform/windows/system_path.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace vorthmere::update {
namespace {

using Text = std::wstring_view;

// The limit for a new folder. The limit for files is a little higher, but using it would gain nothing.
constexpr std::size_t kLongestPlainPath = 247;

constexpr Text kExtendedPrefix = L"\\\\?\\";
constexpr Text kDevicePrefix = L"\\\\.\\";
constexpr Text kExtendedSharePrefix = L"\\\\?\\UNC\\";
constexpr Text kSharePrefix = L"\\\\";

wchar_t toUpper(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

bool isDriveLetter(wchar_t c) {
    return toUpper(c) >= L'A' && toUpper(c) <= L'Z';
}

bool isSystemForm(Text text) {
    return text.starts_with(kExtendedPrefix) || text.starts_with(kDevicePrefix);
}

bool isOnDrive(Text text) {
    return text.size() > 2 && isDriveLetter(text[0]) && text[1] == L':' && text[2] == L'\\';
}

/// An absolute path taken apart: a drive or a share, and the names below it.
struct Parts {
    std::wstring root;  ///< in the extended form, without a "\" at its end
    std::vector<Text> names;
};

std::vector<Text> namesIn(Text text) {
    std::vector<Text> names;
    while (!text.empty()) {
        const std::size_t end = text.find(L'\\');
        if (end != 0) names.push_back(text.substr(0, end));
        text.remove_prefix(end == Text::npos ? text.size() : end + 1);
    }
    return names;
}

Parts takeApart(Text text) {
    Parts parts;
    if (isOnDrive(text)) {
        parts.root = std::wstring(kExtendedPrefix) + std::wstring(text.substr(0, 2));
        parts.names = namesIn(text.substr(2));
        return parts;
    }
    parts.names = namesIn(text);
    const std::size_t rootNames = std::min<std::size_t>(parts.names.size(), 2);
    parts.root = kExtendedSharePrefix;
    for (std::size_t i = 0; i < rootNames; ++i)
        parts.root.append(i == 0 ? L"" : L"\\").append(parts.names[i]);
    parts.names.erase(parts.names.begin(), parts.names.begin() + static_cast<std::ptrdiff_t>(rootNames));
    return parts;
}

bool isDots(Text name) {
    return name == L"." || name == L"..";
}

/// The system compares the part before the first dot, without blanks at its end.
bool isDeviceName(Text name) {
    static constexpr std::array<Text, 6> devices = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
    static constexpr Text portDigits = L"123456789\u00B9\u00B2\u00B3";
    Text stem = name.substr(0, name.find_first_of(L".:"));
    while (stem.ends_with(L' '))
        stem.remove_suffix(1);
    std::wstring upper(stem);
    std::transform(upper.begin(), upper.end(), upper.begin(), toUpper);
    if (std::find(devices.begin(), devices.end(), upper) != devices.end()) return true;
    const bool isPort = upper.size() == 4 && (upper.starts_with(L"COM") || upper.starts_with(L"LPT"));
    return isPort && portDigits.find(upper[3]) != Text::npos;
}

bool isAltered(Text name) {
    return !isDots(name) && (name.ends_with(L'.') || name.ends_with(L' ') || isDeviceName(name));
}

std::wstring extendedForm(Text absolute) {
    Parts parts = takeApart(absolute);
    std::vector<Text> kept;
    for (const Text name : parts.names) {
        if (!isDots(name)) {
            kept.push_back(name);
        } else if (name == L".." && !kept.empty()) {
            kept.pop_back();
        }
    }
    std::wstring text = std::move(parts.root);
    for (const Text name : kept)
        text.append(L"\\").append(name);
    return kept.empty() ? text + L"\\" : text;
}

std::wstring withBackslashes(const std::filesystem::path& path) {
    std::wstring text = path.native();
    std::replace(text.begin(), text.end(), L'/', L'\\');
    return text;
}

bool isAbsolute(Text text) {
    return isOnDrive(text) || text.starts_with(kSharePrefix);
}

/// Empty on failure.
std::wstring fromCurrentFolder(const std::wstring& relative) {
    std::wstring text(GetFullPathNameW(relative.c_str(), 0, nullptr, nullptr), L'\0');
    text.resize(GetFullPathNameW(relative.c_str(), static_cast<DWORD>(text.size()), text.data(), nullptr));
    return text;
}

std::wstring systemForm(const std::filesystem::path& path) {
    std::wstring text = withBackslashes(path);
    if (text.empty() || isSystemForm(text)) return path.native();
    if (!isAbsolute(text)) {
        text = fromCurrentFolder(text);
        return text.size() <= kLongestPlainPath || isSystemForm(text) ? path.native() : extendedForm(text);
    }
    const Parts parts = takeApart(text);
    const bool altered = std::any_of(parts.names.begin(), parts.names.end(), isAltered);
    return altered || text.size() > kLongestPlainPath ? extendedForm(text) : path.native();
}

}  // namespace

SystemPath::SystemPath(const std::filesystem::path& path) : text_(systemForm(path)) {}

std::wstring withoutExtendedPrefix(std::wstring text) {
    if (text.starts_with(kExtendedSharePrefix))
        return std::wstring(kSharePrefix) + text.substr(kExtendedSharePrefix.size());
    if (text.starts_with(kExtendedPrefix)) return text.substr(kExtendedPrefix.size());
    return text;
}

}  // namespace vorthmere::update
