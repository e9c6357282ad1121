#include "tests/support/child_process.h"

#include <stdexcept>
#include <utility>

#include "tests/support/temporary_folder.h"

namespace vorthmere::update::testing {

std::filesystem::path childProgram() {
    std::wstring own(32768, L'\0');
    own.resize(GetModuleFileNameW(nullptr, own.data(), static_cast<DWORD>(own.size())));
    return std::filesystem::path(own).parent_path() / L"kvn_unit_child.exe";
}

std::string childProgramBytes() {
    return readFile(childProgram());
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::wstring>& arguments,
                           SECURITY_ATTRIBUTES* security) {
    std::wstring commandLine = L"\"" + program.native() + L"\"";
    for (const std::wstring& argument : arguments)
        commandLine += L" " + argument;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(program.c_str(), commandLine.data(), security, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &started))
        throw std::runtime_error("cannot start " + program.string());
    const KernelHandle thread(started.hThread);
    process_.reset(started.hProcess);
    id_ = started.dwProcessId;
}

ChildProcess::~ChildProcess() {
    TerminateProcess(process_.get(), 1);
    WaitForSingleObject(process_.get(), kPatienceMs);
}

DWORD ChildProcess::waitForEnd() const {
    if (WaitForSingleObject(process_.get(), kPatienceMs) != WAIT_OBJECT_0)
        throw std::runtime_error("a child process does not end");
    DWORD exitCode = 0;
    GetExitCodeProcess(process_.get(), &exitCode);
    return exitCode;
}

NamedEvent::NamedEvent() {
    static int count = 0;
    name_ = L"kelvane-test-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
    event_.reset(CreateEventW(nullptr, TRUE, FALSE, name_.c_str()));
}

bool waitForFile(const std::filesystem::path& file) {
    for (const ULONGLONG end = GetTickCount64() + kPatienceMs; GetTickCount64() < end; Sleep(5))
        if (GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES) return true;
    return false;
}

EnvironmentVariable::EnvironmentVariable(std::wstring name, const std::wstring& value) : name_(std::move(name)) {
    std::wstring before(32768, L'\0');
    before.resize(GetEnvironmentVariableW(name_.c_str(), before.data(), static_cast<DWORD>(before.size())));
    if (!before.empty()) before_ = before;
    SetEnvironmentVariableW(name_.c_str(), value.c_str());
}

EnvironmentVariable::~EnvironmentVariable() {
    SetEnvironmentVariableW(name_.c_str(), before_ ? before_->c_str() : nullptr);
}

}  // namespace vorthmere::update::testing
