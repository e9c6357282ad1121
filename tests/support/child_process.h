#pragma once

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/windows_handle.h"

namespace vorthmere::update::testing {

/// The longest that a test waits for something that must happen.
inline constexpr DWORD kPatienceMs = 30000;

/// The program of tests/unit/child.
[[nodiscard]] std::filesystem::path childProgram();

/// The bytes of that program, to be installed as a game that can be launched.
[[nodiscard]] std::string childProgramBytes();

/// A program that a test started. The destructor ends it.
class ChildProcess {
public:
    /// @param arguments without blanks or quotes of their own
    /// @param security  who may open the process; null for the default
    /// @throws std::runtime_error when it does not start
    ChildProcess(const std::filesystem::path& program, const std::vector<std::wstring>& arguments,
                 SECURITY_ATTRIBUTES* security = nullptr);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] DWORD id() const {
        return id_;
    }

    [[nodiscard]] bool hasEnded() const {
        return WaitForSingleObject(process_.get(), 0) == WAIT_OBJECT_0;
    }

    /// Waits for its end and returns its exit code.
    ///
    /// @throws std::runtime_error when it has not ended after kPatienceMs
    DWORD waitForEnd() const;

private:
    KernelHandle process_;
    DWORD id_ = 0;
};

/// An event that other processes can open by name; unset at first.
class NamedEvent {
public:
    NamedEvent();

    [[nodiscard]] const std::wstring& name() const {
        return name_;
    }

    void set() const {
        SetEvent(event_.get());
    }

private:
    std::wstring name_;
    KernelHandle event_;
};

/// Waits up to kPatienceMs for a file to appear; returns whether it did.
[[nodiscard]] bool waitForFile(const std::filesystem::path& file);

/// Sets a variable of this process's environment for as long as the object lives.
class EnvironmentVariable {
public:
    EnvironmentVariable(std::wstring name, const std::wstring& value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

private:
    std::wstring name_;
    std::optional<std::wstring> before_;
};

}  // namespace vorthmere::update::testing
