#pragma once

#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "tests/support/windows_handle.h"

namespace vorthmere::update::testing {

/// Holds a file or folder open so that nobody else can open, rename or remove it, for as long as the object lives.
class HeldFile {
public:
    /// @param shareMode what others may do all the same
    /// @throws std::runtime_error when it cannot be opened
    explicit HeldFile(const std::filesystem::path& file, DWORD shareMode = 0)
        : handle_(CreateFileW(file.c_str(), GENERIC_READ, shareMode, nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS,
                              nullptr)) {
        if (!handle_) throw std::runtime_error("cannot hold " + file.string());
    }

private:
    OpenFile handle_;
};

inline void makeReadOnly(const std::filesystem::path& file) {
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_READONLY);
}

}  // namespace vorthmere::update::testing
