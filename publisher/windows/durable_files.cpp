#include "publisher/durable_files.h"

#include <windows.h>

#include <algorithm>
#include <array>
#include <system_error>

#include "platform/windows/system_path.h"
#include "publisher/entry_facts.h"
#include "publisher/folder_names.h"
#include "publisher/in_quotes.h"
#include "publisher/windows/system_error.h"

namespace vorthmere::publish {
namespace {

namespace fs = std::filesystem;
using update::SystemPath;

/// Whoever writes to a channel holds this file open. It vanishes with the handle, also when the process is killed.
constexpr const wchar_t* kLockFileName = L".kvn-release-lock";

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/// Virus scanners and indexers hold a new file open for a moment.
constexpr int kTries = 50;
constexpr DWORD kPauseMilliseconds = 40;

HANDLE handleOf(const Descriptor& descriptor) {
    return reinterpret_cast<HANDLE>(descriptor.get());
}

Descriptor owned(HANDLE handle) {
    return Descriptor(reinterpret_cast<std::intptr_t>(handle));
}

OVERLAPPED at(std::uint64_t position) {
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(position);
    place.OffsetHigh = static_cast<DWORD>(position >> 32);
    return place;
}

/// Repeats a call while another program uses the file, up to a limit.
template <typename Call>
bool untilFree(Call call) {
    for (int tried = 1;; ++tried) {
        if (call()) return true;
        const DWORD failure = GetLastError();
        const bool isHeld = failure == ERROR_SHARING_VIOLATION || failure == ERROR_ACCESS_DENIED;
        if (!isHeld || tried == kTries) return false;
        Sleep(kPauseMilliseconds);
    }
}

bool removeEntry(const fs::path& path, const EntryFacts& facts, std::string& error) {
    const SystemPath place(path);
    SetFileAttributesW(place.text(), FILE_ATTRIBUTE_NORMAL);
    const DWORD attributes = GetFileAttributesW(place.text());
    const bool isFolder = facts.kind == EntryKind::folder ||
                          (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0);
    return untilFree([&] { return (isFolder ? RemoveDirectoryW(place.text()) : DeleteFileW(place.text())) != 0; }) ||
           failWithReason(path, "removed", error);
}

}  // namespace

Descriptor::~Descriptor() {
    if (descriptor_ != kNone) CloseHandle(reinterpret_cast<HANDLE>(descriptor_));
}

bool InputFile::open(const fs::path& path, std::string& error) {
    const SystemPath place(path);
    path_ = path;
    file_ = owned(
        CreateFileW(place.text(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file_ || failWithReason(path_, "read", error);
}

bool InputFile::readAt(std::uint64_t position, std::span<char> buffer, std::size_t& count, std::string& error) {
    count = 0;
    while (count < buffer.size()) {
        OVERLAPPED place = at(position + count);
        DWORD read = 0;
        if (!ReadFile(handleOf(file_), buffer.data() + count, static_cast<DWORD>(buffer.size() - count), &read, &place))
            return GetLastError() == ERROR_HANDLE_EOF || failWithReason(path_, "read", error);
        if (read == 0) return true;
        count += read;
    }
    return true;
}

bool OutputFile::create(const fs::path& path, std::string& error) {
    const SystemPath place(path);
    path_ = path;
    size_ = 0;
    file_ = owned(CreateFileW(place.text(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
    return file_ || failWithReason(path_, "created", error);
}

bool OutputFile::write(std::span<const char> bytes, std::string& error) {
    if (!writeAt(size_, bytes, error)) return false;
    size_ += bytes.size();
    return true;
}

bool OutputFile::writeAt(std::uint64_t position, std::span<const char> bytes, std::string& error) {
    while (!bytes.empty()) {
        OVERLAPPED place = at(position);
        DWORD written = 0;
        if (!WriteFile(handleOf(file_), bytes.data(), static_cast<DWORD>(bytes.size()), &written, &place))
            return failWithReason(path_, "written", error);
        position += written;
        bytes = bytes.subspan(written);
    }
    return true;
}

bool OutputFile::finish(std::string& error) {
    if (!FlushFileBuffers(handleOf(file_))) return failWithReason(path_, "written", error);
    file_ = Descriptor();
    return true;
}

bool createFolders(const fs::path& folder, std::vector<fs::path>& made, std::string& error) {
    fs::path path;
    for (const fs::path& component : folder) {
        path /= component;
        std::error_code failure;
        if (component.empty() || factsOfTarget(path, failure).kind == EntryKind::folder) continue;
        const SystemPath place(path);
        if (CreateDirectoryW(place.text(), nullptr)) {
            made.push_back(path);
            continue;
        }
        const DWORD number = GetLastError();
        if (number == ERROR_ALREADY_EXISTS && factsOfTarget(path, failure).kind == EntryKind::folder) continue;
        SetLastError(number);
        return failWithReason(path, "created", error);
    }
    return true;
}

bool moveIntoPlace(const fs::path& from, const fs::path& to, std::string& error) {
    // A file that another program reads cannot be replaced. The rename is on the disk when the call returns.
    const SystemPath source(from);
    const SystemPath target(to);
    return untilFree([&] {
               return MoveFileExW(source.text(), target.text(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) !=
                      0;
           }) ||
           failWithReason(to, "replaced", error);
}

bool removeFile(const fs::path& file, std::string& error) {
    std::error_code failure;
    const EntryFacts facts = factsOf(file, failure);
    return facts.kind == EntryKind::missing || removeEntry(file, facts, error);
}

// The standard library would follow links.
bool removeTree(const fs::path& folder, std::string& error) {
    std::error_code failure;
    const EntryFacts facts = factsOf(folder, failure);
    if (facts.kind == EntryKind::missing) return true;
    if (facts.kind == EntryKind::folder) {
        for (const fs::path& name : namesIn(folder, failure))
            if (!removeTree(folder / name, error)) return false;
    }
    return removeEntry(folder, facts, error);
}

// Each rename is on the disk already.
bool syncFolder(const fs::path&, std::string&) {
    return true;
}

bool lockFolder(const fs::path& folder, Descriptor& lock, std::string& error) {
    const SystemPath file(folder / kLockFileName);
    Descriptor descriptor = owned(CreateFileW(file.text(), GENERIC_WRITE, 0, nullptr, OPEN_ALWAYS,
                                              FILE_ATTRIBUTE_HIDDEN | FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    if (descriptor) {
        lock = std::move(descriptor);
        return true;
    }
    const DWORD failure = GetLastError();
    if (failure != ERROR_SHARING_VIOLATION && failure != ERROR_ACCESS_DENIED)
        return failWithReason(folder, "locked", error);
    error = "Another kvn-release is writing to " + inQuotes(folder) + "; let it finish first.";
    return false;
}

// The lock is a file in the folder, so a folder that another process has locked is not empty.
void removeMadeFolders(const std::vector<fs::path>& made, Descriptor lock) {
    lock = Descriptor();
    for (auto folder = made.rbegin(); folder != made.rend(); ++folder)
        if (!RemoveDirectoryW(SystemPath(*folder).text())) return;
}

}  // namespace vorthmere::publish
