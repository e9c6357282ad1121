#include "files/file_status.h"

#include "platform/entries.h"
#include "platform/failure.h"

namespace vorthmere::update {
namespace {

// Following a link takes opening the path. Most paths are no links, and reading the entry is cheaper.
EntryFacts factsFollowingLinks(const std::filesystem::path& path, std::error_code& failure) {
    const EntryFacts entry = entryFacts(path, failure);
    return !failure && entry.attributes.isReparsePoint() ? targetFacts(path, failure) : entry;
}

FileType classify(EntryAttributes attributes) {
    if (attributes.isDevice()) return FileType::other;
    return attributes.isFolder() ? FileType::directory : FileType::regular;
}

FileType classifyFailure(std::error_code& failure) {
    if (!isNotFound(failure)) return FileType::other;
    failure.clear();
    return FileType::notFound;
}

}  // namespace

FileType fileType(const std::filesystem::path& path, std::error_code& failure) {
    const EntryFacts facts = factsFollowingLinks(path, failure);
    return failure ? classifyFailure(failure) : classify(facts.attributes);
}

FileType fileTypeOrThrow(const std::filesystem::path& path, const char* operation) {
    std::error_code failure;
    const FileType type = fileType(path, failure);
    if (failure) throw std::filesystem::filesystem_error(operation, path, failure);
    return type;
}

FileType fileTypeBelowOrThrow(const std::filesystem::path& folder, const std::filesystem::path& relativePath,
                              const char* operation) {
    const FileType type = fileTypeOrThrow(folder / relativePath, operation);
    if (type != FileType::notFound) return type;
    std::error_code failure;
    static_cast<void>(entryFacts(folder, failure));
    if (failure) throw std::filesystem::filesystem_error(operation, folder, failure);
    return type;
}

FileType entryType(const std::filesystem::path& path, std::error_code& failure) {
    const EntryFacts facts = entryFacts(path, failure);
    if (failure) return classifyFailure(failure);
    return facts.attributes.isReparsePoint() ? FileType::other : classify(facts.attributes);
}

std::uint64_t fileSize(const std::filesystem::path& path, std::error_code& failure) {
    const EntryFacts facts = factsFollowingLinks(path, failure);
    if (!failure && classify(facts.attributes) != FileType::regular)
        failure = std::make_error_code(std::errc::not_supported);
    return failure ? 0 : facts.size;
}

}  // namespace vorthmere::update
