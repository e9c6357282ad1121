#include "update/metadata_file.h"

#include <array>
#include <fstream>
#include <system_error>

#include "platform/file_status.h"

namespace vorthmere::update {

bool readMetadataFile(const std::filesystem::path& path, std::string& contents, std::wstring& error,
                      std::uint64_t maxBytes) {
    std::error_code failure;
    const std::uint64_t size = fileSize(path, failure);
    if (failure || size == 0 || size > maxBytes) {
        error = L"An update metadata file has an invalid size.";
        return false;
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = L"Unable to read update metadata.";
        return false;
    }
    contents.clear();
    std::array<char, 16384> block{};
    while (file) {
        file.read(block.data(), block.size());
        contents.append(block.data(), static_cast<std::size_t>(file.gcount()));
    }
    return file.eof();
}

}  // namespace vorthmere::update
