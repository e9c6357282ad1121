#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "publisher/release_content.h"

namespace vorthmere::publish {

/// One of a channel's files as it was found.
struct ChannelFile {
    enum class State { right, missing, wrongSize, corrupt, unreadable, notForEverybody, link, notAFile };
    State state = State::missing;
    std::uint64_t size = 0;   ///< in bytes, of a file
    std::string reason = {};  ///< one sentence, of an unreadable file

    [[nodiscard]] bool isRight() const {
        return state == State::right;
    }

    /// True for a link or anything else that is not a file: a release replaces files only.
    [[nodiscard]] bool isInTheWay() const {
        return state == State::link || state == State::notAFile;
    }
};

/// Compares a file with what it should be. A file of another size is not read.
[[nodiscard]] ChannelFile compareFile(const std::filesystem::path& path, std::uint64_t size, std::string_view sha256,
                                      const BytesDone& done);

/// Looks at a file of the channel without reading it.
[[nodiscard]] ChannelFile lookAtFile(const std::filesystem::path& path);

/// One sentence on what is wrong with a file; empty when nothing is.
///
/// @param size bytes that the file should have
[[nodiscard]] std::string faultOf(const ChannelFile& found, const std::filesystem::path& path, std::uint64_t size);

}  // namespace vorthmere::publish
