#include "publisher/durable_files.h"

#include <system_error>

namespace vorthmere::publish {

bool writeFile(const std::filesystem::path& path, std::string_view text, std::string& error) {
    OutputFile file;
    return file.create(path, error) && file.write({text.data(), text.size()}, error) && file.finish(error);
}

void removeIfEmpty(const std::filesystem::path& folder) {
    std::error_code stays;
    std::filesystem::remove(folder, stays);
}

}  // namespace vorthmere::publish
