#include "tests/support/sample_release.h"

#include <windows.h>

#include <stdexcept>

#include "tests/support/child_process.h"
#include "tests/support/sample_metadata.h"
#include "tests/support/sha256.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update::testing {
namespace {

namespace fs = std::filesystem;

fs::path archiveTool() {
    std::wstring folder(MAX_PATH, L'\0');
    folder.resize(GetSystemDirectoryW(folder.data(), static_cast<UINT>(folder.size())));
    return fs::path(folder) / L"tar.exe";
}

std::wstring inQuotes(const fs::path& path) {
    return L"\"" + path.native() + L"\"";
}

}  // namespace

FileTree withManagedFileList(FileTree files) {
    files["KVN_MANAGED_FILES.txt"] = "";
    Lines names;
    for (const auto& [path, content] : files)
        names.push_back(path);
    files["KVN_MANAGED_FILES.txt"] = joinLines(names);
    return files;
}

FileTree sampleReleaseFiles(unsigned release) {
    const std::string mark = " of release " + std::to_string(release);
    return withManagedFileList({{"Vorthmere.exe", "MZ game" + mark},
                                {"KVNUpdater.exe", "MZ updater" + mark},
                                {"kvn_release.txt", "release=" + std::to_string(release) + "\n"},
                                {"data/maps/first map.pak", "maps" + mark},
                                {"data/same in every release.pak", std::string(3000, 's')}});
}

std::vector<InventoryEntry> entriesOf(const FileTree& files) {
    std::vector<InventoryEntry> entries;
    for (const auto& [path, content] : files)
        entries.push_back({path, sha256TextOf(content), content.size()});
    return entries;
}

void makeZip(const fs::path& zip, const FileTree& files, const std::vector<std::wstring>& options) {
    const TemporaryFolder content;
    writeTree(content.path(), files);
    std::vector<std::wstring> arguments{L"--format", L"zip", L"-cf", inQuotes(zip), L"-C", inQuotes(content.path())};
    arguments.insert(arguments.end(), options.begin(), options.end());
    for (const std::string& name : namesIn(content.path()))
        arguments.push_back(inQuotes(name));
    // The tool insists on names, but accepts an empty list of names.
    const fs::path noNames = zip.parent_path() / L"no names";
    writeFile(noNames, "");
    if (files.empty()) arguments.insert(arguments.end(), {L"-T", inQuotes(noNames)});
    if (ChildProcess(archiveTool(), arguments).waitForEnd() != 0) throw std::runtime_error("cannot make a zip");
    fs::remove(noNames);
}

LocalRelease::LocalRelease(const fs::path& folder, const FileTree& releaseFiles, unsigned release, Package package)
    : manifestFile(folder / L"KVN alpha.manifest"),
      packageFile(folder / L"KVN release.zip"),
      inventoryFile(folder / L"KVN release.zip.files"),
      objectDirectory(folder / L"update objects"),
      manifest(sampleManifest()),
      entries(entriesOf(releaseFiles)) {
    fs::create_directories(objectDirectory);
    manifest.release = release;
    if (package == Package::packed) {
        makeZip(packageFile, releaseFiles);
        describePackage();
    }
    writeManifest();
    writeInventory();
    for (const auto& [path, content] : releaseFiles)
        writeFile(objectOf(content), content);
}

void LocalRelease::describePackage() {
    const std::string package = readFile(packageFile);
    manifest.size = package.size();
    manifest.sha256 = sha256TextOf(package);
    writeManifest();
}

void LocalRelease::writeManifest() const {
    writeFile(manifestFile, joinLines(manifestLines(manifest)));
}

void LocalRelease::writeInventory() const {
    writeFile(inventoryFile, joinLines(inventoryLines(manifest, entries)));
}

fs::path LocalRelease::objectOf(std::string_view content) const {
    return objectDirectory / ("KVN-file-" + sha256TextOf(content) + ".bin");
}

void LocalRelease::offerPackage(Arguments& arguments) const {
    arguments.manifestFile = manifestFile;
    arguments.packageFile = packageFile;
}

void LocalRelease::offerObjects(Arguments& arguments) const {
    offerPackage(arguments);
    arguments.inventoryFile = inventoryFile;
    arguments.objectDirectory = objectDirectory;
}

}  // namespace vorthmere::update::testing
