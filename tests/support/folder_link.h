#pragma once

#include <filesystem>

namespace vorthmere::update::testing {

/// False where links to files need a privilege that this user lacks, as on Windows without developer mode.
[[nodiscard]] bool canLinkFiles();

/// A link to a folder or a file, for as long as the object lives. On Windows it is a junction, which needs no
/// privilege, unless the target is a file. Wine cannot make links itself, so there the Unix command makes it.
class Link {
public:
    /// @param link   where the link is to be; the folder above it exists
    /// @param target what it leads to; need not exist
    /// @throws std::runtime_error when no link appears
    Link(const std::filesystem::path& link, const std::filesystem::path& target);
    ~Link();
    Link(const Link&) = delete;
    Link& operator=(const Link&) = delete;

private:
    std::filesystem::path link_;
};

/// A folder with one file in it, as the target of a link that must not be followed.
class LinkedFolder {
public:
    /// @throws std::runtime_error when no link appears
    LinkedFolder(const std::filesystem::path& link, const std::filesystem::path& target);

    /// True while the target's file is unchanged.
    [[nodiscard]] bool targetIsWhole() const;

private:
    std::filesystem::path target_;
    Link link_;
};

}  // namespace vorthmere::update::testing
