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

/// Adds the managed-file list that names every file of a release, itself included.
[[nodiscard]] FileTree withManagedFileList(FileTree files);

/// A small release with files in folders and blanks in names. Most files differ from release to release.
[[nodiscard]] FileTree sampleReleaseFiles(unsigned release);

/// Inventory entries of a release's files, in byte order of the paths.
[[nodiscard]] std::vector<InventoryEntry> entriesOf(const FileTree& files);

/// Packs files into a zip with the system's archive tool.
///
/// @param options more arguments of the tool, before the names
/// @throws std::runtime_error when it fails
void makeZip(const std::filesystem::path& zip, const FileTree& files, const std::vector<std::wstring>& options = {});

/// The local input files of one release, in one folder. A test can replace each before the run.
struct LocalRelease {
    enum class Package { packed, none };

    /// Writes the manifest, the inventory and one object for each file, and the package unless it is Package::none.
    /// Then the manifest describes a large package that does not exist.
    LocalRelease(const std::filesystem::path& folder, const FileTree& releaseFiles, unsigned release,
                 Package package = Package::packed);

    /// Writes the manifest file, with the package's present size and digest.
    void describePackage();
    void writeManifest() const;
    void writeInventory() const;

    /// The path of the object with this content.
    [[nodiscard]] std::filesystem::path objectOf(std::string_view content) const;

    /// Sets the manifest and the package, so that the complete package is used.
    void offerPackage(Arguments& arguments) const;
    /// Sets the inventory and the objects, too.
    void offerObjects(Arguments& arguments) const;

    std::filesystem::path manifestFile;
    std::filesystem::path packageFile;
    std::filesystem::path inventoryFile;
    std::filesystem::path objectDirectory;
    Manifest manifest;
    std::vector<InventoryEntry> entries;
};

}  // namespace vorthmere::update::testing
