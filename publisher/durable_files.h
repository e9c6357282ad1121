#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vorthmere::publish {

/// Owns a file descriptor, on Windows a handle.
class Descriptor {
public:
    static constexpr std::intptr_t kNone = -1;

    Descriptor() = default;
    explicit Descriptor(std::intptr_t descriptor) : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, kNone)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor();

    [[nodiscard]] std::intptr_t get() const {
        return descriptor_;
    }
    explicit operator bool() const {
        return descriptor_ != kNone;
    }

private:
    std::intptr_t descriptor_ = kNone;
};

/// A file that is open for reading. Every failure leaves one sentence with the system's reason.
class InputFile {
public:
    [[nodiscard]] bool open(const std::filesystem::path& path, std::string& error);

    /// Reads from a position on until the buffer is full or the file ends.
    ///
    /// @param count receives how many bytes were read
    [[nodiscard]] bool readAt(std::uint64_t position, std::span<char> buffer, std::size_t& count, std::string& error);

private:
    std::filesystem::path path_;
    Descriptor file_;
};

/// A file that is open for writing. Everybody may read it, whatever the process's umask. Every failure leaves one
/// sentence with the system's reason.
class OutputFile {
public:
    /// Creates the file, or empties it.
    [[nodiscard]] bool create(const std::filesystem::path& path, std::string& error);

    /// Appends bytes.
    [[nodiscard]] bool write(std::span<const char> bytes, std::string& error);

    /// Replaces bytes that were written before.
    [[nodiscard]] bool writeAt(std::uint64_t position, std::span<const char> bytes, std::string& error);

    /// Returns once the content is on the disk.
    [[nodiscard]] bool finish(std::string& error);

private:
    std::filesystem::path path_;
    Descriptor file_;
    std::uint64_t size_ = 0;
};

/// create(), write() and finish() in one.
[[nodiscard]] bool writeFile(const std::filesystem::path& path, std::string_view text, std::string& error);

/// Creates a folder, and those above it that are missing. Everybody may list and enter the new ones, whatever the
/// process's umask; existing ones keep their permissions. Each new folder is on the disk when this returns.
///
/// @param made receives the new folders, the outermost first; also after a failure
[[nodiscard]] bool createFolders(const std::filesystem::path& folder, std::vector<std::filesystem::path>& made,
                                 std::string& error);

/// Renames a file and replaces the one at `to`. Whoever opens `to` gets the old file or the new one, whole.
[[nodiscard]] bool moveIntoPlace(const std::filesystem::path& from, const std::filesystem::path& to,
                                 std::string& error);

/// Removes one file.
[[nodiscard]] bool removeFile(const std::filesystem::path& file, std::string& error);

/// Removes a folder with its content, but nothing beyond a link. A missing folder is no error.
[[nodiscard]] bool removeTree(const std::filesystem::path& folder, std::string& error);

/// Returns once the renames in a folder are on the disk.
[[nodiscard]] bool syncFolder(const std::filesystem::path& folder, std::string& error);

/// Keeps every other process from locking the same folder, until the result is destroyed or the process ends.
///
/// @param lock  receives the lock on success, else left as it was
/// @return false with a sentence when another process holds the lock or the folder cannot be opened or locked
[[nodiscard]] bool lockFolder(const std::filesystem::path& folder, Descriptor& lock, std::string& error);

/// Removes those folders made by createFolders() that are empty, and gives up the lock on the innermost. Never removes a
/// folder that another process has locked.
void removeMadeFolders(const std::vector<std::filesystem::path>& made, Descriptor lock);

}  // namespace vorthmere::publish
