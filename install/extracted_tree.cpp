#include "install/extracted_tree.h"

#include <system_error>

#include "files/canonical_path.h"
#include "files/file_status.h"
#include "files/folder_walk.h"
#include "files/reparse_point.h"
#include "update/failing.h"
#include "update/managed_path.h"
#include "update/text.h"

namespace vorthmere::update {
namespace {

/// Tells a file's path below a folder, with all links in both resolved. Resolves the folder only once.
class NamesBelow {
public:
    explicit NamesBelow(const std::filesystem::path& folder) : folder_(folder) {}

    bool resolve(const std::filesystem::path& file, std::string& name) {
        std::error_code failure;
        const std::filesystem::path canonicalFile = weaklyCanonicalPath(file, failure);
        if (failure) return false;
        if (canonicalFolder_.empty()) canonicalFolder_ = weaklyCanonicalPath(folder_, failure);
        if (failure) return false;
        name = narrow(canonicalFile.lexically_relative(canonicalFolder_).generic_wstring());
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
    return fault.empty() || fail(error, fault);
}

}  // namespace vorthmere::update
