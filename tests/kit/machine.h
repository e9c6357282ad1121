#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/kit/report.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::kit {

/// A text for the console and the report: what is not ASCII becomes a question mark.
[[nodiscard]] std::string plainText(const std::wstring& text);

/// The folder in which the kit lies.
[[nodiscard]] std::filesystem::path kitFolder();

/// A program that the kit started. It is ended with this object.
class Program {
public:
    /// @param output   receives what the program prints; empty: nobody does
    /// @param folder   the folder that it is started in; empty: the kit's own
    /// @throws std::runtime_error when it does not start
    Program(const std::filesystem::path& program, const std::wstring& arguments,
            const std::filesystem::path& output = {}, const std::filesystem::path& folder = {});
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] DWORD id() const {
        return id_;
    }
    [[nodiscard]] bool hasEnded(DWORD timeLimitMs) const {
        return WaitForSingleObject(process_.get(), timeLimitMs) == WAIT_OBJECT_0;
    }

    /// @throws std::runtime_error when it has not ended after `timeLimitMs`
    [[nodiscard]] DWORD waitForEnd(DWORD timeLimitMs) const;

private:
    update::testing::KernelHandle process_;
    DWORD id_ = 0;
};

/// Which Windows this is, what its file system is, and the settings that matter to the updater.
void describeMachine(Report& report, const std::filesystem::path& workFolder);

}  // namespace vorthmere::kit
