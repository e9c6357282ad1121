#include "platform/streams.h"

#include <cstdio>

#include <cerrno>

namespace vorthmere::update {

void closeFileHandle(void* handle) noexcept {
    static_cast<void>(std::fclose(static_cast<std::FILE*>(handle)));
}

FileHandle openToRead(const std::filesystem::path& file, std::error_code& failure) {
    FileHandle handle(std::fopen(file.c_str(), "rb"));
    failure = handle ? std::error_code() : std::error_code(errno, std::generic_category());
    return handle;
}

std::size_t readBytes(const FileHandle& file, void* buffer, std::size_t size, std::error_code& failure) {
    auto* const stream = static_cast<std::FILE*>(file.get());
    const std::size_t count = std::fread(buffer, 1, size, stream);
    failure = std::ferror(stream) != 0 ? std::error_code(errno, std::generic_category()) : std::error_code();
    return failure ? 0 : count;
}

}  // namespace vorthmere::update
