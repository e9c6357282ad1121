#include "files/file_changes.h"

#include "files/file_status.h"
#include "platform/changes.h"
#include "platform/failure.h"

namespace vorthmere::update {
namespace {

using RemoveCall = std::error_code (*)(const std::filesystem::path&);

/// Calls `remove`. If the read-only attribute prevents the removal, takes it away and calls `remove` once more.
std::error_code removeEntry(const std::filesystem::path& path, RemoveCall remove) {
    const std::error_code refusal = remove(path);
    if (refusal != WindowsError::accessDenied) return refusal;
    std::error_code failure;
    EntryAttributes attributes = entryAttributes(path, failure);
    if (failure || !attributes.isReadOnly()) return refusal;
    attributes.bits &= ~EntryAttributes::kReadOnly;
    return setAttributes(path, attributes) ? refusal : remove(path);
}

std::error_code whyAbsent(const std::filesystem::path& path) {
    std::error_code failure;
    static_cast<void>(entryAttributes(path, failure));
    return failure;
}

/// Whether an entry that was there a moment ago is gone. The error "path not found" alone does not prove it: it can
/// mean that somebody removed the parent folder too, but also that the path is too long for the system.
bool hasVanished(const std::filesystem::path& entry, const std::error_code& reason) {
    if (reason != WindowsError::pathNotFound) return reason == WindowsError::fileNotFound;
    const std::error_code absence = whyAbsent(entry);
    if (absence != WindowsError::pathNotFound) return absence == WindowsError::fileNotFound;
    return isNotFound(whyAbsent(entry.parent_path()));
}

std::error_code removeListed(const std::filesystem::path& path, EntryAttributes attributes);

std::error_code removeContent(const std::filesystem::path& folder) {
    std::error_code failure;
    for (const FolderEntry& entry : listFolder(folder, failure)) {
        if (failure) break;
        failure = removeListed(folder / entry.name, entry.attributes);
    }
    return failure;
}

std::error_code removeListed(const std::filesystem::path& path, EntryAttributes attributes) {
    std::error_code failure;
    if (attributes.isFolder() && !attributes.isReparsePoint()) failure = removeContent(path);
    // A folder that seems to be gone is removed all the same: if it is still there and not empty, that fails.
    if (!failure || hasVanished(path, failure))
        failure = removeEntry(path, attributes.isFolder() ? removeEmptyFolder : deleteFile);
    return failure && hasVanished(path, failure) ? std::error_code() : failure;
}

}  // namespace

std::error_code createFolders(const std::filesystem::path& folder, std::vector<std::filesystem::path>& created) {
    std::error_code failure = createFolder(folder);
    if (failure == WindowsError::pathNotFound && folder.has_relative_path()) {
        failure = createFolders(folder.parent_path(), created);
        if (failure) return failure;
        failure = createFolder(folder);
    }
    if (!failure) {
        created.push_back(folder);
        return {};
    }
    // Whatever the failure was, an existing folder is a success, also as a link to a folder. A link to a file is none.
    std::error_code unknown;
    return fileType(folder, unknown) == FileType::directory ? std::error_code() : failure;
}

std::error_code createFolders(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> created;
    return createFolders(folder, created);
}

std::error_code removeFile(const std::filesystem::path& file) {
    const std::error_code failure = removeEntry(file, deleteFile);
    return isNotFound(failure) ? std::error_code() : failure;
}

std::error_code removeTree(const std::filesystem::path& path) {
    std::error_code failure;
    const EntryAttributes attributes = entryAttributes(path, failure);
    if (failure) return isNotFound(failure) ? std::error_code() : failure;
    return removeListed(path, attributes);
}

}  // namespace vorthmere::update
