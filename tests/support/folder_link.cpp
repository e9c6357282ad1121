#include "tests/support/folder_link.h"

#include <windows.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "install/command_line_quoting.h"
#include "tests/support/child_process.h"
#include "tests/support/junction.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_handle.h"
#include "tests/support/wine.h"

namespace vorthmere::update::testing {
namespace {

constexpr const char* kContent = "not of the installation";

using UnixNameFunction = char*(CDECL*)(const wchar_t*);

UnixNameFunction unixNameFunction() {
    const FARPROC function = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
    return reinterpret_cast<UnixNameFunction>(reinterpret_cast<void*>(function));
}

struct HeapDeleter {
    void operator()(char* memory) const noexcept {
        HeapFree(GetProcessHeap(), 0, memory);
    }
};

/// A blank and the name in quotes; the names that tests use are ASCII.
std::wstring unixArgument(const std::filesystem::path& path) {
    const std::unique_ptr<char, HeapDeleter> name(unixNameFunction()(path.c_str()));
    if (!name) throw std::runtime_error("no Unix name: " + path.string());
    const std::string text = name.get();
    return L" \"" + std::wstring(text.begin(), text.end()) + L"\"";
}

/// Runs one command of the Unix shell and waits for it. Wine gives no handle of a Unix program, so the shell creates a
/// file after the command, and this waits for the file.
void runUnixCommand(const std::wstring& command) {
    const TemporaryFolder folder;
    const std::filesystem::path done = folder / L"done";
    const std::wstring script = command + L"; : >" + unixArgument(done);
    std::wstring commandLine = L"sh -c " + quoteCommandLineArgument(script);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(L"\\\\?\\unix\\bin\\sh", commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started))
        throw std::runtime_error("cannot start the Unix shell");
    const KernelHandle process(started.hProcess);
    const KernelHandle thread(started.hThread);
    if (!waitForFile(done)) throw std::runtime_error("a Unix command does not end");
}

bool linkFile(const std::filesystem::path& link, const std::filesystem::path& target) {
    constexpr DWORD inDeveloperMode = 2;
    return CreateSymbolicLinkW(link.c_str(), target.c_str(), inDeveloperMode) != 0;
}

}  // namespace

bool canLinkFiles() {
    if (runsUnderWine()) return true;
    const TemporaryFolder folder;
    return linkFile(folder / L"link", folder / L"target");
}

Link::Link(const std::filesystem::path& link, const std::filesystem::path& target) : link_(link) {
    if (!runsUnderWine()) {
        const DWORD attributes = GetFileAttributesW(target.c_str());
        const bool toFile = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
        if (!toFile) {
            makeJunction(link, target);
        } else if (!linkFile(link, target)) {
            throw std::runtime_error("cannot make the link " + link.string());
        }
        return;
    }
    runUnixCommand(L"ln -s" + unixArgument(target) + unixArgument(link));
}

Link::~Link() {
    if (!runsUnderWine()) {
        if (!RemoveDirectoryW(link_.c_str())) DeleteFileW(link_.c_str());
        return;
    }
    try {
        runUnixCommand(L"rm -f" + unixArgument(link_));
    } catch (const std::runtime_error&) {
        // The link stays in the temporary folder.
    }
}

LinkedFolder::LinkedFolder(const std::filesystem::path& link, const std::filesystem::path& target)
    : target_((writeFile(target / L"precious.txt", kContent), target)), link_(link, target) {}

bool LinkedFolder::targetIsWhole() const {
    return std::filesystem::exists(target_ / L"precious.txt") && readFile(target_ / L"precious.txt") == kContent;
}

}  // namespace vorthmere::update::testing
