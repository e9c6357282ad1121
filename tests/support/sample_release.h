#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/file_tree.h"
#include "update/arguments.h"
#include "update/file_inventory.h"
#include "update/manifest.h"

namespace vorthmere::update::testing {

/// SHA-256 of a text, as 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256Of(std::string_view bytes);

/// Adds the managed-file list that names every file of a release, itself included.
[[nodiscard]] FileTree withManagedFileList(FileTree files);

/// The smallest release with a file in a folder, a blank in a name and contents that tell one release from another.
[[nodiscard]] FileTree sampleReleaseFiles(unsigned release);

/// Inventory entries of a release's files, in byte order of the paths.
[[nodiscard]] std::vector<InventoryEntry> entriesOf(const FileTree& files);

/// Packs files into a zip with the system's archive tool.
///
/// @param options more arguments of the tool, in front of the names
/// @throws std::runtime_error when it fails
void makeZip(const std::filesystem::path& zip, const FileTree& files, const std::vector<std::wstring>& options = {});

/// The local test inputs of one release, in one folder: each can be replaced by a test before the run.
struct LocalRelease {
    enum class Package { packed, none };

    /// Writes manifest, inventory and one object for each file, and packs them unless that is not wanted: then the
    /// manifest describes some package that is large and not there.
    LocalRelease(const std::filesystem::path& folder, const FileTree& releaseFiles, unsigned release,
                 Package package = Package::packed);

    /// Writes the manifest file, with the package's present size and digest.
    void describePackage();
    void writeManifest() const;
    void writeInventory() const;

    /// Where the object of a content lies.
    [[nodiscard]] std::filesystem::path objectOf(std::string_view content) const;

    /// Names the manifest and the package, so that the complete package is used.
    void offerPackage(Arguments& arguments) const;
    /// Names the inventory and the objects, too.
    void offerObjects(Arguments& arguments) const;

    std::filesystem::path manifestFile;
    std::filesystem::path packageFile;
    std::filesystem::path inventoryFile;
    std::filesystem::path objectDirectory;
    Manifest manifest;
    std::vector<InventoryEntry> entries;
};

}  // namespace vorthmere::update::testing
