#include "publisher/durable_files.h"

namespace vorthmere::publish {

bool writeFile(const std::filesystem::path& path, std::string_view text, std::string& error) {
    OutputFile file;
    return file.create(path, error) && file.write({text.data(), text.size()}, error) && file.finish(error);
}

}  // namespace vorthmere::publish
