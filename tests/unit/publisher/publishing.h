#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "publisher/build_release.h"
#include "tests/support/temporary_folder.h"
#include "update/file_inventory.h"
#include "update/manifest.h"

namespace vorthmere::publish::testing {

/// The entries of a folder by path: a file's content, "folder", or "link to ...".
using Tree = std::map<std::string, std::string>;
[[nodiscard]] Tree readTree(const std::filesystem::path& folder);

/// Content that deflate cannot shrink; the same for the same seed.
[[nodiscard]] std::string packedContent(std::size_t size, unsigned seed = 1);

/// A file with the header of a 64-bit Windows program and a text in it.
[[nodiscard]] std::string windowsProgram(std::string_view text);

/// Digests files without output.
[[nodiscard]] bool hashFiles(std::vector<ReleaseFile>& files, std::string& error);

/// A game folder with a small game in it, and a channel folder that does not exist yet.
class PublishingTest : public ::testing::Test {
protected:
    PublishingTest();

    void putFile(const std::string& path, std::string_view content) const;
    void removeFile(const std::string& path) const;

    [[nodiscard]] ReleaseRequest request(std::uint32_t release) const;

    /// Publishes the game folder and expects that to succeed.
    ReleaseSummary publish(std::uint32_t release);

    /// Tries to publish and returns the sentence; "" when the release was published.
    [[nodiscard]] std::string refusalOf(const ReleaseRequest& wanted);
    [[nodiscard]] std::string refusalOf(std::uint32_t release) {
        return refusalOf(request(release));
    }

    /// The channel's manifest and inventory, as the updater reads them.
    [[nodiscard]] update::Manifest manifest() const;
    [[nodiscard]] std::vector<update::InventoryEntry> inventory() const;

    [[nodiscard]] std::filesystem::path objectOf(const std::string& path) const;

    update::testing::TemporaryFolder folder;
    const std::filesystem::path game = folder / "game";
    const std::filesystem::path channel = folder / "channel";
};

}  // namespace vorthmere::publish::testing
