// The child program that tests start. With arguments it is the archive tool and does what they say. Without arguments
// it is the game and reports how it was started.
#include <windows.h>
// windows.h has to come first.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <string>

#include "tests/support/own_process.h"

namespace {

using vorthmere::update::testing::currentFolder;
using vorthmere::update::testing::toUtf8;

/// The longest that the program waits for anything, so that a failed test leaves nothing running.
constexpr DWORD kLongestWaitMs = 200000;

std::wstring programPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::wstring environmentVariable(const wchar_t* name) {
    std::wstring value(32768, L'\0');
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

/// Counts the readable pipes except standard input. This program opens none, so they were inherited.
int countReadablePipes() {
    constexpr std::size_t handlesLookedAt = 1024;
    int pipes = 0;
    for (std::size_t value = 4; value <= 4 * handlesLookedAt; value += 4) {
        const auto handle = reinterpret_cast<HANDLE>(value);
        if (handle != GetStdHandle(STD_INPUT_HANDLE) && PeekNamedPipe(handle, nullptr, 0, nullptr, nullptr, nullptr))
            ++pipes;
    }
    return pipes;
}

void writeFacts(FILE* file) {
    STARTUPINFOW startup{};
    GetStartupInfoW(&startup);
    std::fprintf(file, "command line=%s\n", toUtf8(GetCommandLineW()).c_str());
    std::fprintf(file, "current folder=%s\n", toUtf8(currentFolder()).c_str());
    std::fprintf(file, "process=%lu\n", GetCurrentProcessId());
    std::fprintf(file, "startup flags=%lu\n", startup.dwFlags);
    std::fprintf(file, "show window=%u\n", startup.wShowWindow);
    std::fprintf(file, "error mode=%u\n", GetErrorMode());
    std::fprintf(file, "readable pipes=%d\n", countReadablePipes());
    std::fprintf(file, "environment=%s\n", toUtf8(environmentVariable(L"KVN_TEST_MARK")).c_str());
}

void waitForEvent(const std::wstring& name) {
    const HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, name.c_str());
    if (event) WaitForSingleObject(event, kLongestWaitMs);
}

/// The report gets its final name when it is complete, before the game waits for an event.
int playGame() {
    const std::wstring program = programPath();
    const std::wstring folder = program.substr(0, program.find_last_of(L'\\') + 1);
    const std::wstring incoming = folder + L"launched.new";
    FILE* report = _wfopen(incoming.c_str(), L"wb");
    if (!report) return 1;
    writeFacts(report);
    std::fclose(report);
    MoveFileExW(incoming.c_str(), (folder + L"launched.txt").c_str(), MOVEFILE_REPLACE_EXISTING);
    waitForEvent(environmentVariable(L"KVN_TEST_GAME_EVENT"));
    return 0;
}

void print(std::size_t count) {
    const std::string block(4096, 'x');
    for (; count > block.size(); count -= block.size())
        std::fwrite(block.data(), 1, block.size(), stdout);
    std::fwrite(block.data(), 1, count, stdout);
    std::fflush(stdout);
}

/// Duplicates a handle of this process into its parent, and writes the handle's value to a file.
void handOverProcess(DWORD parentProcessId, const wchar_t* file) {
    const HANDLE parent = OpenProcess(PROCESS_DUP_HANDLE, FALSE, parentProcessId);
    HANDLE own = nullptr;
    DuplicateHandle(GetCurrentProcess(), GetCurrentProcess(), parent, &own, 0, FALSE, DUPLICATE_SAME_ACCESS);
    FILE* report = _wfopen(file, L"wb");
    if (!report) return;
    std::fprintf(report, "%llu", static_cast<unsigned long long>(reinterpret_cast<std::uintptr_t>(own)));
    std::fclose(report);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    if (argc < 2) return playGame();

    const std::wstring action = argv[1];
    if (action == L"arguments") {
        for (int i = 2; i < argc; ++i)
            std::printf("%s\n", toUtf8(argv[i]).c_str());
    } else if (action == L"facts") {
        writeFacts(stdout);
    } else if (action == L"print") {
        print(std::wcstoul(argv[2], nullptr, 10));
    } else if (action == L"print-then-wait") {
        handOverProcess(std::wcstoul(argv[3], nullptr, 10), argv[4]);
        print(std::wcstoul(argv[2], nullptr, 10));
        Sleep(kLongestWaitMs);
    } else if (action == L"interleave") {
        for (int i = 2; i < argc; ++i) {
            FILE* stream = i % 2 == 0 ? stdout : stderr;
            std::fprintf(stream, "%s", toUtf8(argv[i]).c_str());
            std::fflush(stream);
        }
    } else if (action == L"print-error") {
        std::fprintf(stderr, "%s", toUtf8(argv[2]).c_str());
    } else if (action == L"exit") {
        std::printf("before the end");
        std::fflush(stdout);
        return static_cast<int>(std::wcstoul(argv[2], nullptr, 10));
    } else if (action == L"close-output-then-wait") {
        CloseHandle(GetStdHandle(STD_OUTPUT_HANDLE));
        CloseHandle(GetStdHandle(STD_ERROR_HANDLE));
        CloseHandle(CreateFileW(argv[2], GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        waitForEvent(argv[3]);
        return 0;
    } else if (action == L"sleep") {
        Sleep(kLongestWaitMs);
    } else if (action == L"wait") {
        waitForEvent(argv[2]);
    } else {
        return 99;
    }
    return 0;
}
