#include "update/metadata_file.h"

#include <array>
#include <system_error>

#include "files/file_status.h"
#include "platform/streams.h"
#include "update/failing.h"
#include "update/text.h"

namespace vorthmere::update {

bool readMetadataFile(const std::filesystem::path& path, std::string& contents, std::wstring& error,
                      std::uint64_t maxBytes) {
    std::error_code failure;
    const std::uint64_t size = fileSize(path, failure);
    if (failure || size == 0 || size > maxBytes) return fail(error, L"An update metadata file has an invalid size.");
    const FileHandle file = openToRead(path, failure);
    if (failure) return fail(error, L"Unable to read update metadata.");
    contents.clear();
    std::array<char, 16384> block{};
    while (const std::size_t count = readBytes(file, block.data(), block.size(), failure))
        contents.append(block.data(), count);
    return !failure;
}

bool loadMetadataFile(const std::filesystem::path& path, std::uint64_t maxBytes, const MetadataParser& parse,
                      std::wstring& error) {
    std::string text;
    std::string fault;
    if (readMetadataFile(path, text, error, maxBytes) && parse(text, fault)) return true;
    if (error.empty()) error = widen(fault);
    return false;
}

}  // namespace vorthmere::update
