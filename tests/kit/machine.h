#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

#include "tests/kit/report.h"
#include "tests/support/windows_handle.h"

namespace vorthmere::kit {

/// A text for the console and the report. A character outside ASCII becomes a question mark.
[[nodiscard]] std::string plainText(const std::wstring& text);

/// The folder of the kit.
[[nodiscard]] std::filesystem::path kitFolder();

/// A program that the kit started. The destructor ends it.
class Program {
public:
    /// @param output   the file for what the program prints; empty for none
    /// @param folder   the program's current folder; empty for the kit's own
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

/// Reports the version of Windows, the file system and the settings that matter to the updater.
void describeMachine(Report& report, const std::filesystem::path& workFolder);

}  // namespace vorthmere::kit
