#include "platform/file_status.h"

namespace vorthmere::update {
namespace {

FileType classify(std::filesystem::file_status status, std::error_code& failure) {
    switch (status.type()) {
        case std::filesystem::file_type::not_found:
            failure.clear();
            return FileType::notFound;
        case std::filesystem::file_type::regular:
            return FileType::regular;
        case std::filesystem::file_type::directory:
            return FileType::directory;
        default:
            return FileType::other;
    }
}

}  // namespace

FileType fileType(const std::filesystem::path& path, std::error_code& failure) {
    return classify(std::filesystem::status(path, failure), failure);
}

FileType fileTypeOrThrow(const std::filesystem::path& path, const char* operation) {
    std::error_code failure;
    const FileType type = fileType(path, failure);
    if (failure) throw std::filesystem::filesystem_error(operation, path, failure);
    return type;
}

FileType entryType(const std::filesystem::path& path, std::error_code& failure) {
    return classify(std::filesystem::symlink_status(path, failure), failure);
}

std::uint64_t fileSize(const std::filesystem::path& path, std::error_code& failure) {
    return std::filesystem::file_size(path, failure);
}

}  // namespace vorthmere::update
