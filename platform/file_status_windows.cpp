#include "platform/file_status.h"
#include "platform/unique_handle.h"
#include "platform/windows_error.h"

namespace vorthmere::update {
namespace {

struct FileFacts {
    DWORD attributes = 0;
    std::uint64_t size = 0;
};

std::uint64_t joinHalves(DWORD high, DWORD low) {
    return (std::uint64_t{high} << 32) | low;
}

bool queryEntry(const std::filesystem::path& path, FileFacts& facts, std::error_code& failure) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) {
        failure = lastWindowsError();
        return false;
    }
    facts = {data.dwFileAttributes, joinHalves(data.nFileSizeHigh, data.nFileSizeLow)};
    return true;
}

// Only opening the path follows a link; the attribute query describes the link itself.
bool queryTarget(const std::filesystem::path& path, FileFacts& facts, std::error_code& failure) {
    const FileHandle file(CreateFileW(path.c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr, OPEN_EXISTING,
                                      FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information{};
    if (!file || !GetFileInformationByHandle(file.get(), &information)) {
        failure = lastWindowsError();
        return false;
    }
    facts = {information.dwFileAttributes, joinHalves(information.nFileSizeHigh, information.nFileSizeLow)};
    return true;
}

bool queryFollowing(const std::filesystem::path& path, FileFacts& facts, std::error_code& failure) {
    if (!queryEntry(path, facts, failure)) return false;
    return (facts.attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 || queryTarget(path, facts, failure);
}

FileType classify(DWORD attributes) {
    if (attributes & FILE_ATTRIBUTE_DEVICE) return FileType::other;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? FileType::directory : FileType::regular;
}

FileType classifyFailure(std::error_code& failure) {
    if (!isNotFound(failure)) return FileType::other;
    failure.clear();
    return FileType::notFound;
}

}  // namespace

FileType fileType(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    FileFacts facts;
    return queryFollowing(path, facts, failure) ? classify(facts.attributes) : classifyFailure(failure);
}

FileType fileTypeOrThrow(const std::filesystem::path& path, const char* operation) {
    std::error_code failure;
    const FileType type = fileType(path, failure);
    if (failure) throw std::filesystem::filesystem_error(operation, path, failure);
    return type;
}

FileType entryType(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    FileFacts facts;
    if (!queryEntry(path, facts, failure)) return classifyFailure(failure);
    return facts.attributes & FILE_ATTRIBUTE_REPARSE_POINT ? FileType::other : classify(facts.attributes);
}

std::uint64_t fileSize(const std::filesystem::path& path, std::error_code& failure) {
    failure.clear();
    FileFacts facts;
    if (!queryFollowing(path, facts, failure)) return 0;
    if (facts.attributes & FILE_ATTRIBUTE_DIRECTORY) failure = std::make_error_code(std::errc::is_a_directory);
    return failure ? 0 : facts.size;
}

}  // namespace vorthmere::update
