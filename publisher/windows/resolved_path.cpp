#include "publisher/resolved_path.h"

#include <windows.h>

#include <string>

#include "publisher/durable_files.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;

// The standard library resolves no links here.
fs::path finalPath(const fs::path& path, std::error_code& failure) {
    constexpr DWORD kLongestPath = 32768;
    const Descriptor entry(reinterpret_cast<std::intptr_t>(
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS, nullptr)));
    std::wstring text(kLongestPath, L'\0');
    const DWORD length =
        entry ? GetFinalPathNameByHandleW(reinterpret_cast<HANDLE>(entry.get()), text.data(), kLongestPath, 0) : 0;
    if (length == 0 || length >= kLongestPath) failure.assign(static_cast<int>(GetLastError()), std::system_category());
    text.resize(length < kLongestPath ? length : 0);
    return text;
}

}  // namespace

fs::path resolvedPath(const fs::path& path, std::error_code& failure) {
    fs::path existing = fs::absolute(path, failure).lexically_normal();
    fs::path missing;
    if (existing.filename().empty()) existing = existing.parent_path();
    while (!failure && GetFileAttributesW(existing.c_str()) == INVALID_FILE_ATTRIBUTES &&
           existing.has_relative_path()) {
        missing = missing.empty() ? existing.filename() : existing.filename() / missing;
        existing = existing.parent_path();
    }
    if (failure) return existing;
    const fs::path resolved = finalPath(existing, failure);
    return missing.empty() ? resolved : resolved / missing;
}

}  // namespace vorthmere::publish
