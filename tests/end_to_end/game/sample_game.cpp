// A game that writes how it was started into the file that KVN_GAME_REPORT names, and ends. With "--update" it starts
// its updater instead, with the options that follow.
#include <windows.h>

#include <cstdio>
#include <string>
#include <string_view>

#include "tests/support/own_process.h"
#include "update_start.h"

namespace {

using vorthmere::update::testing::currentFolder;
using vorthmere::update::testing::toUtf8;

/// Counts the pipes among this process's handles. It opens none itself, so they were inherited.
int countPipes() {
    constexpr std::size_t kHandlesLookedAt = 1024;
    int pipes = 0;
    for (std::size_t value = 4; value <= 4 * kHandlesLookedAt; value += 4)
        if (GetFileType(reinterpret_cast<HANDLE>(value)) == FILE_TYPE_PIPE) ++pipes;
    return pipes;
}

void writeLine(FILE* file, const char* key, const std::wstring& value) {
    std::fprintf(file, "%s=%s\n", key, toUtf8(value).c_str());
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR arguments, int) {
    constexpr std::wstring_view update = L"--update";
    if (std::wstring_view(arguments).starts_with(update)) return startUpdater(arguments + update.size()) ? 0 : 2;

    // Counted before the report is opened.
    const int pipes = countPipes();
    const wchar_t* name = _wgetenv(L"KVN_GAME_REPORT");
    if (!name) return 1;
    // The report gets its final name only when it is complete.
    const std::wstring incoming = std::wstring(name) + L".new";
    FILE* report = _wfopen(incoming.c_str(), L"wb");
    if (!report) return 1;
    writeLine(report, "command line", GetCommandLineW());
    writeLine(report, "current folder", currentFolder());
    writeLine(report, "inherited pipes", std::to_wstring(pipes));
    std::fclose(report);
    return MoveFileExW(incoming.c_str(), name, MOVEFILE_REPLACE_EXISTING) ? 0 : 1;
}
