#include "platform/canonical_path.h"

#include <string>

#include "platform/unique_handle.h"
#include "platform/windows_error.h"

namespace vorthmere::update {
namespace {

/// The platform reports final paths in the "\\?\" form, which not every other call takes.
std::wstring withoutLongPathPrefix(std::wstring path) {
    constexpr std::wstring_view localPrefix = L"\\\\?\\";
    constexpr std::wstring_view networkPrefix = L"\\\\?\\UNC\\";
    if (path.starts_with(networkPrefix)) return L"\\\\" + path.substr(networkPrefix.size());
    if (path.starts_with(localPrefix)) return path.substr(localPrefix.size());
    return path;
}

std::filesystem::path finalPath(const std::filesystem::path& path, std::error_code& failure) {
    const FileHandle file(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file) {
        failure = lastWindowsError();
        return {};
    }
    std::wstring name(MAX_PATH, L'\0');
    while (true) {
        const DWORD length = GetFinalPathNameByHandleW(file.get(), name.data(), static_cast<DWORD>(name.size()),
                                                       FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
        if (length == 0) {
            failure = lastWindowsError();
            return {};
        }
        const bool complete = length < name.size();
        name.resize(length);
        if (complete) return withoutLongPathPrefix(std::move(name));
    }
}

}  // namespace

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    if (path.empty()) return {};
    std::wstring name(MAX_PATH, L'\0');
    while (true) {
        const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(name.size()), name.data(), nullptr);
        if (length == 0) throw std::filesystem::filesystem_error("absolute", path, lastWindowsError());
        const bool complete = length < name.size();
        name.resize(length);
        if (complete) return name;
    }
}

std::filesystem::path weaklyCanonicalPath(const std::filesystem::path& path, std::error_code& failure) {
    std::filesystem::path existing = path.lexically_normal();
    std::filesystem::path rest;
    while (!existing.empty()) {
        failure.clear();
        const std::filesystem::path resolved = finalPath(existing, failure);
        if (!failure) return rest.empty() ? resolved : (resolved / rest).lexically_normal();
        if (!isNotFound(failure)) return {};
        if (!existing.has_relative_path()) break;
        rest = rest.empty() ? existing.filename() : existing.filename() / rest;
        existing = existing.parent_path();
    }
    failure.clear();
    return path.lexically_normal();
}

}  // namespace vorthmere::update
