#include "tests/end_to_end/probe/window_reading.h"

#include <array>
#include <cstdio>

#include "update/text.h"

namespace vorthmere::probe {
namespace {

constexpr DWORD kWindowLimitMs = 60'000;
constexpr DWORD kPollMs = 5;
constexpr UINT kTextLimitMs = 5'000;

struct Search {
    DWORD processId;
    HWND found;
};

BOOL CALLBACK takeIfWanted(HWND window, LPARAM parameter) {
    auto& search = *reinterpret_cast<Search*>(parameter);
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (processId != search.processId || !IsWindowVisible(window)) return TRUE;
    search.found = window;
    return FALSE;
}

}  // namespace

HWND waitForWindow(const StartedProcess& program) {
    Search search{program.id, nullptr};
    for (DWORD waited = 0; waited < kWindowLimitMs; waited += kPollMs) {
        EnumWindows(takeIfWanted, reinterpret_cast<LPARAM>(&search));
        if (search.found || program.hasEnded(kPollMs)) break;
    }
    return search.found;
}

std::vector<HWND> childWindows(HWND window) {
    std::vector<HWND> children;
    for (HWND child = GetWindow(window, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        children.push_back(child);
    return children;
}

std::wstring className(HWND window) {
    std::array<wchar_t, 256> name{};
    GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return name.data();
}

std::wstring windowText(HWND window) {
    std::array<wchar_t, 4096> text{};
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_NORMAL,
                        kTextLimitMs, &length);
    return std::wstring(text.data(), length);
}

void printLine(std::wstring_view text) {
    std::string line;
    for (const char c : update::narrow(text)) {
        if (c == '\n')
            line += "\\n";
        else
            line += c;
    }
    std::puts(line.c_str());
    std::fflush(stdout);
}

}  // namespace vorthmere::probe
