#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// The address of the release channel, the base of the addresses of its files. The build sets it
/// (KVN_DOWNLOAD_BASE_URL) and the program contains it, so that nothing outside the program can lead an installation
/// elsewhere.
inline constexpr std::string_view kDownloadBaseUrl = KVN_DOWNLOAD_BASE_URL;

static_assert(kDownloadBaseUrl.starts_with("https://"), "The release channel is served over HTTPS only.");
static_assert(kDownloadBaseUrl.ends_with("/downloads/"), "The release channel's address ends in /downloads/.");

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

/// The work folder's name in the installation. No managed path may contain it.
inline constexpr std::string_view kWorkFolderName = ".kvn-update";

/// The name of the object for a file's content.
///
/// @param sha256 digest of the content, 64 lower-case hexadecimal digits
[[nodiscard]] std::string objectName(std::string_view sha256);

/// The address of a file of the channel.
///
/// @param name the file's name below the base
[[nodiscard]] std::string channelAddress(std::string_view name);

/// The address of the inventory that belongs to a package.
[[nodiscard]] std::string inventoryAddress(std::string_view packageAddress);

}  // namespace vorthmere::update
