#pragma once

#include <cstdint>
#include <span>

namespace vorthmere::publish {

/// Finds out while a file is being read whether it is worth deflating. Most of a game's bytes are packed already
/// (sound, textures); deflating them again costs most of the time that a package takes and gains nothing.
class DeflateTrial {
public:
    /// Takes the file's next bytes and tries a part of them.
    ///
    /// @throws std::runtime_error when there is no memory left
    void add(std::span<const char> block);

    /// True unless the parts that were tried hardly shrank. Depends on the content only, provided that it was added in
    /// blocks of kBlockBytes.
    [[nodiscard]] bool isWorthIt() const;

private:
    std::uint64_t tried_ = 0;
    std::uint64_t deflated_ = 0;
};

}  // namespace vorthmere::publish
