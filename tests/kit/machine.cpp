#include "tests/kit/machine.h"

#include <array>
#include <stdexcept>

#include "tests/support/temporary_folder.h"
#include "tests/support/wine.h"

namespace vorthmere::kit {
namespace {

namespace fs = std::filesystem;

constexpr wchar_t kWindowsVersion[] = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
constexpr wchar_t kFileSystemSettings[] = L"SYSTEM\\CurrentControlSet\\Control\\FileSystem";
constexpr wchar_t kDeveloperSettings[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\AppModelUnlock";

std::string settingText(const wchar_t* key, const wchar_t* name) {
    std::array<wchar_t, 256> text{};
    DWORD size = sizeof(text);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, text.data(), &size) != ERROR_SUCCESS)
        return "?";
    return plainText(text.data());
}

std::string settingNumber(const wchar_t* key, const wchar_t* name, const std::string& missing) {
    DWORD value = 0;
    DWORD size = sizeof(value);
    if (RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_DWORD, nullptr, &value, &size) != ERROR_SUCCESS)
        return missing;
    return std::to_string(value);
}

std::string wineVersion() {
    if (!update::testing::runsUnderWine()) return {};
    using Version = const char*(CDECL*)();
    const FARPROC function = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version");
    return reinterpret_cast<Version>(reinterpret_cast<void*>(function))();
}

std::string fileSystemOf(const fs::path& folder) {
    std::array<wchar_t, MAX_PATH + 1> root{};
    std::array<wchar_t, MAX_PATH + 1> name{};
    GetVolumePathNameW(folder.c_str(), root.data(), MAX_PATH);
    if (!GetVolumeInformationW(root.data(), nullptr, 0, nullptr, nullptr, nullptr, name.data(), MAX_PATH)) return "?";
    return plainText(name.data()) + " on " + plainText(root.data());
}

std::string isElevated() {
    update::testing::KernelHandle token;
    TOKEN_ELEVATION elevation{};
    DWORD size = sizeof(elevation);
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, token.receive()) ||
        !GetTokenInformation(token.get(), TokenElevation, &elevation, size, &size))
        return "?";
    return elevation.TokenIsElevated ? "yes" : "no";
}

std::string archiveToolVersion(const fs::path& workFolder) {
    std::array<wchar_t, MAX_PATH + 1> system{};
    GetSystemDirectoryW(system.data(), MAX_PATH);
    try {
        const fs::path output = workFolder / L"archive tool.txt";
        static_cast<void>(Program(fs::path(system.data()) / L"tar.exe", L"--version", output).waitForEnd(10000));
        const std::string text = update::testing::readFile(output);
        return text.substr(0, text.find_first_of("\r\n"));
    } catch (const std::exception& failure) {
        return failure.what();
    }
}

}  // namespace

std::string plainText(const std::wstring& text) {
    std::string plain;
    for (const wchar_t c : text)
        plain.push_back(c < 128 ? static_cast<char>(c) : '?');
    return plain;
}

fs::path kitFolder() {
    std::wstring own(32768, L'\0');
    own.resize(GetModuleFileNameW(nullptr, own.data(), static_cast<DWORD>(own.size())));
    return fs::path(own).parent_path();
}

Program::Program(const fs::path& program, const std::wstring& arguments, const fs::path& output,
                 const fs::path& folder) {
    std::wstring commandLine = L"\"" + program.native() + L"\" " + arguments;
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    const update::testing::OpenFile file(CreateFileW(output.empty() ? L"NUL" : output.c_str(), GENERIC_WRITE,
                                                     FILE_SHARE_READ, &inheritable, CREATE_ALWAYS, 0, nullptr));
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = file.get();
    startup.hStdError = file.get();
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, CREATE_NO_WINDOW, nullptr,
                        folder.empty() ? nullptr : folder.c_str(), &startup, &started))
        throw std::runtime_error("cannot start " + plainText(program.filename()) + ", error " +
                                 std::to_string(GetLastError()));
    const update::testing::KernelHandle thread(started.hThread);
    process_.reset(started.hProcess);
    id_ = started.dwProcessId;
}

Program::~Program() {
    TerminateProcess(process_.get(), 1);
    static_cast<void>(hasEnded(10000));
}

DWORD Program::waitForEnd(DWORD timeLimitMs) const {
    if (!hasEnded(timeLimitMs)) throw std::runtime_error("a program did not end in time");
    DWORD exitCode = 0;
    GetExitCodeProcess(process_.get(), &exitCode);
    return exitCode;
}

void describeMachine(Report& report, const fs::path& workFolder) {
    report.heading("This machine");
    const std::string wine = wineVersion();
    if (!wine.empty()) report.fact("not Windows, but Wine", wine);
    report.fact("Windows", settingText(kWindowsVersion, L"ProductName") + " " +
                               settingText(kWindowsVersion, L"DisplayVersion") + ", build " +
                               settingText(kWindowsVersion, L"CurrentBuildNumber") + "." +
                               settingNumber(kWindowsVersion, L"UBR", "?"));
    report.fact("file system", fileSystemOf(workFolder));
    report.fact("archive tool", archiveToolVersion(workFolder));
    report.fact("long paths switched on", settingNumber(kFileSystemSettings, L"LongPathsEnabled", "0"));
    report.fact("short names", settingNumber(kFileSystemSettings, L"NtfsDisable8dot3NameCreation", "?") +
                                   " (0 all volumes, 1 none, 2 volume by volume, 3 the system's)");
    report.fact("developer mode", settingNumber(kDeveloperSettings, L"AllowDevelopmentWithoutDevLicense", "0"));
    report.fact("code page", std::to_string(GetACP()));
    report.fact("administrator", isElevated());
}

}  // namespace vorthmere::kit
