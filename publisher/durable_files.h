#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace vorthmere::publish {

/// Owns a file descriptor.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    [[nodiscard]] int get() const {
        return descriptor_;
    }
    explicit operator bool() const {
        return descriptor_ >= 0;
    }

private:
    int descriptor_ = -1;
};

/// A file that is written once, and that everybody may read, whatever the process's umask. Every failure leaves one
/// sentence with the system's reason.
class OutputFile {
public:
    /// Creates the file, or empties it.
    [[nodiscard]] bool create(const std::filesystem::path& path, std::string& error);
    [[nodiscard]] bool write(std::span<const char> bytes, std::string& error);

    /// Returns once the content is on the disk.
    [[nodiscard]] bool finish(std::string& error);

private:
    std::filesystem::path path_;
    Descriptor file_;
};

/// create(), write() and finish() in one.
[[nodiscard]] bool writeFile(const std::filesystem::path& path, std::string_view text, std::string& error);

/// Creates a folder and those above it, as far as they are missing, so that everybody may list and enter them, whatever
/// the process's umask. Folders that are there already keep their permissions.
[[nodiscard]] bool createFolders(const std::filesystem::path& folder, std::string& error);

/// Renames a file, replacing the one that stands at `to`: whoever opens `to` gets the one file or the other, whole.
[[nodiscard]] bool moveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to,
                                 std::string& error);

/// Returns once the renames in a folder are on the disk.
[[nodiscard]] bool syncFolder(const std::filesystem::path& folder, std::string& error);

/// Keeps every other process from locking the same folder, until the result is destroyed or the process ends.
///
/// @param lock  receives the lock on success, else left as it was
/// @return false with a sentence when another process holds the lock or the folder cannot be opened or locked
[[nodiscard]] bool lockFolder(const std::filesystem::path& folder, Descriptor& lock, std::string& error);

/// True when standard output is a terminal.
[[nodiscard]] bool outputIsTerminal();

}  // namespace vorthmere::publish
