#pragma once

#include <array>
#include <string>
#include <string_view>

#include "update/sha256_text.h"

namespace vorthmere::update {

/// The address of the release channel, the base of the addresses of its files. The build sets it
/// (KVN_DOWNLOAD_BASE_URL) and the program contains it, so that nothing outside the program can lead an installation
/// elsewhere.
extern const std::string_view kDownloadBaseUrl;

/// The manifest's name below the base.
inline constexpr std::string_view kManifestName = "KVN-alpha.manifest";

/// Every package's name begins with this. The manifest's `url` must begin with the base and this.
inline constexpr std::string_view kPackageNamePrefix = "KVN-";

/// Every package's name ends with this.
inline constexpr std::string_view kPackageNameSuffix = ".zip";

/// A package's address followed by this is the address of the release's inventory.
inline constexpr std::string_view kInventorySuffix = ".files";

/// The name of an object is the SHA-256 of its content between these two.
inline constexpr std::string_view kObjectNamePrefix = "KVN-file-";
inline constexpr std::string_view kObjectNameSuffix = ".bin";

/// Files at the top level of every release.
inline constexpr std::string_view kManagedFileListName = "KVN_MANAGED_FILES.txt";
inline constexpr std::string_view kGameExecutableName = "Vorthmere.exe";
inline constexpr std::string_view kUpdaterExecutableName = "KVNUpdater.exe";
inline constexpr std::string_view kReleaseMarkerName = "kvn_release.txt";

/// Without these a folder is no installation, and a managed-file list is refused.
inline constexpr std::array<std::string_view, 3> kRequiredFiles = {kGameExecutableName, kUpdaterExecutableName,
                                                                   kManagedFileListName};

/// The updater's own folder inside the installation; no managed path may name it.
inline constexpr std::string_view kWorkFolderName = ".kvn-update";

/// The name of the object for a file's content.
///
/// @param sha256 digest of the content, 64 lower-case hexadecimal digits
[[nodiscard]] std::string objectName(std::string_view sha256);

/// True for the name of an update object, whatever its content.
[[nodiscard]] constexpr bool isObjectName(std::string_view name) {
    if (!name.starts_with(kObjectNamePrefix) || !name.ends_with(kObjectNameSuffix)) return false;
    name.remove_prefix(kObjectNamePrefix.size());
    return isSha256Text(name.substr(0, name.size() - kObjectNameSuffix.size()));
}

/// The address of a file of the channel.
///
/// @param name the file's name below the base
[[nodiscard]] std::string channelAddress(std::string_view name);

/// The address of a package's file inventory; of a package's name, the inventory's name.
[[nodiscard]] std::string inventoryAddress(std::string_view packageAddress);

}  // namespace vorthmere::update
