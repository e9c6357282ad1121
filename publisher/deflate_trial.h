#pragma once

#include <cstdint>
#include <span>

namespace vorthmere::publish {

/// Finds out whether a file is worth deflating, while somebody reads it. Most of a game's bytes are packed already
/// (sound, textures). Deflating them again would take most of the time of a build and gain nothing.
class DeflateTrial {
public:
    /// Takes the file's next bytes and tries a part of them.
    ///
    /// @throws std::runtime_error when there is no memory left
    void add(std::span<const char> block);

    /// True unless the tried parts hardly shrank. Depends on the content only, if it was added in blocks of kBlockBytes.
    [[nodiscard]] bool isWorthIt() const;

private:
    std::uint64_t tried_ = 0;
    std::uint64_t deflated_ = 0;
};

}  // namespace vorthmere::publish
