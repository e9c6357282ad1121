#include <system_error>

#include "install/package_inspection.h"
#include "platform/canonical_path.h"
#include "platform/file_status.h"
#include "platform/folder_listing.h"
#include "platform/reparse_point.h"
#include "platform/text.h"
#include "update/managed_path.h"

namespace vorthmere::update {
namespace {

/// Names files by their paths below a folder, both as the platform finally resolves them: the folder once, for the
/// first file.
class NamesBelow {
public:
    explicit NamesBelow(const std::filesystem::path& folder) : folder_(folder) {}

    bool resolve(const std::filesystem::path& file, std::string& name) {
        std::error_code failure;
        const std::filesystem::path canonicalFile = weaklyCanonicalPath(file, failure);
        if (failure) return false;
        if (canonicalFolder_.empty()) canonicalFolder_ = weaklyCanonicalPath(folder_, failure);
        if (failure) return false;
        name = toUtf8(canonicalFile.lexically_relative(canonicalFolder_).generic_wstring());
        return true;
    }

private:
    const std::filesystem::path& folder_;
    std::filesystem::path canonicalFolder_;
};

}  // namespace

bool inspectExtractedTree(const std::filesystem::path& stagingFolder, ExtractedFiles& extractedFiles,
                          std::wstring& error) {
    extractedFiles.clear();
    std::wstring fault;
    std::error_code queryFailure;
    NamesBelow names(stagingFolder);

    const auto inspect = [&](const std::filesystem::path& path) {
        const FileType type = entryType(path, queryFailure);
        if (type == FileType::notFound) queryFailure = std::make_error_code(std::errc::no_such_file_or_directory);
        if (queryFailure || isReparsePoint(path)) return false;
        if (type == FileType::directory) return true;
        if (type != FileType::regular) {
            fault = L"The update archive contains an unsupported file type.";
            return false;
        }
        std::string name;
        if (!names.resolve(path, name) || !isSafeRelativePath(name, false) ||
            !extractedFiles.insert(std::move(name)).second) {
            fault = L"The extracted update contains an unsafe path.";
            return false;
        }
        return true;
    };

    std::error_code walkFailure;
    walkTree(stagingFolder, inspect, walkFailure);
    if (queryFailure || walkFailure) fault = L"Unable to inspect the extracted update.";
    if (fault.empty()) return true;
    error = fault;
    return false;
}

}  // namespace vorthmere::update
