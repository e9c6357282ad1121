// A game that tells how it was started: it writes "last start.txt" into the folder of its own program and ends. With
// one argument, a number, it keeps running for that many milliseconds.
#include <windows.h>

#include <cstdio>
#include <string>

namespace {

std::wstring currentFolder() {
    std::wstring folder(GetCurrentDirectoryW(0, nullptr), L'\0');
    folder.resize(GetCurrentDirectoryW(static_cast<DWORD>(folder.size()), folder.data()));
    return folder;
}

std::wstring programPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

/// Pipes among this process's handles: it opens none itself, so whatever is found was inherited.
int countPipes() {
    constexpr std::size_t kHandlesLookedAt = 1024;
    int pipes = 0;
    for (std::size_t value = 4; value <= 4 * kHandlesLookedAt; value += 4)
        if (GetFileType(reinterpret_cast<HANDLE>(value)) == FILE_TYPE_PIPE) ++pipes;
    return pipes;
}

void writeLine(FILE* file, const char* key, const std::wstring& value) {
    std::string narrow(static_cast<std::size_t>(WideCharToMultiByte(
                           CP_UTF8, 0, value.c_str(), static_cast<int>(value.size()), nullptr, 0, nullptr, nullptr)),
                       '\0');
    WideCharToMultiByte(CP_UTF8, 0, value.c_str(), static_cast<int>(value.size()), narrow.data(),
                        static_cast<int>(narrow.size()), nullptr, nullptr);
    std::fprintf(file, "%s=%s\n", key, narrow.c_str());
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR arguments, int) {
    // Counted before the report is opened, and reported under its final name only when it is complete.
    const int pipes = countPipes();
    const std::wstring program = programPath();
    const std::wstring folder = program.substr(0, program.find_last_of(L'\\') + 1);
    const std::wstring incoming = folder + L"last start.new";
    FILE* report = _wfopen(incoming.c_str(), L"wb");
    if (!report) return 1;
    writeLine(report, "command line", GetCommandLineW());
    writeLine(report, "current folder", currentFolder());
    writeLine(report, "pipes", std::to_wstring(pipes));
    writeLine(report, "process", std::to_wstring(GetCurrentProcessId()));
    std::fclose(report);
    MoveFileExW(incoming.c_str(), (folder + L"last start.txt").c_str(), MOVEFILE_REPLACE_EXISTING);
    Sleep(static_cast<DWORD>(_wtoi(arguments)));
    return 0;
}
