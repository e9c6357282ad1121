#include "publisher/resolved_path.h"

namespace vorthmere::publish {

std::filesystem::path resolvedPath(const std::filesystem::path& path, std::error_code& failure) {
    const std::filesystem::path place = std::filesystem::absolute(path, failure);
    return failure ? place : std::filesystem::weakly_canonical(place, failure);
}

}  // namespace vorthmere::publish
