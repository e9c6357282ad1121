#include "platform/canonical_path.h"

#include <algorithm>
#include <string>
#include <string_view>

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

FileHandle openForItsName(const std::filesystem::path& path, std::error_code& failure) {
    FileHandle file(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!file) failure = lastWindowsError();
    return file;
}

std::filesystem::path finalPath(const FileHandle& file, std::error_code& failure) {
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

/// An absolute path with "." and ".." folded, by the platform's rule: path::lexically_normal() takes one of the two
/// backslashes with which the path of a network folder begins, where the library does not know such paths.
std::filesystem::path fullPath(const std::filesystem::path& path, std::error_code& failure) {
    if (path.empty()) return {};
    std::wstring name(MAX_PATH, L'\0');
    while (true) {
        const DWORD length = GetFullPathNameW(path.c_str(), static_cast<DWORD>(name.size()), name.data(), nullptr);
        if (length == 0) {
            failure = lastWindowsError();
            return {};
        }
        const bool complete = length < name.size();
        name.resize(length);
        if (complete) return name;
    }
}

/// True for a drive and for a network share: what would be their parent is no folder.
bool isRoot(const std::filesystem::path& path) {
    const std::wstring_view name = path.native();
    if (name.starts_with(L"\\\\")) return std::count(name.begin() + 2, name.end(), L'\\') < 2;
    return !path.has_relative_path();
}

}  // namespace

std::filesystem::path absolutePath(const std::filesystem::path& path) {
    std::error_code failure;
    std::filesystem::path absolute = fullPath(path, failure);
    if (failure) throw std::filesystem::filesystem_error("absolute", path, failure);
    return absolute;
}

std::filesystem::path weaklyCanonicalPath(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    std::filesystem::path whole = fullPath(path, failure);
    if (failure) return {};
    std::filesystem::path existing = whole;
    std::filesystem::path rest;
    while (!existing.empty()) {
        failure.clear();
        const FileHandle file = openForItsName(existing, failure);
        if (file) {
            // Whatever this fails with, the folder is there: for a volume without a letter it is "path not found".
            const std::filesystem::path resolved = finalPath(file, failure);
            return rest.empty() || failure ? resolved : resolved / rest;
        }
        if (!isNotFound(failure)) return {};
        if (isRoot(existing)) break;
        rest = rest.empty() ? existing.filename() : existing.filename() / rest;
        existing = existing.parent_path();
    }
    failure.clear();
    return whole;
}

}  // namespace vorthmere::update
