#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "publisher/release_content.h"

namespace vorthmere::publish {

/// What stands in place of one of a channel's files.
struct ChannelFile {
    enum class State { right, missing, wrongSize, corrupt, unreadable, notForEverybody, link, notAFile };
    State state = State::missing;
    std::uint64_t size = 0;   ///< bytes that are there, of a file
    std::string reason = {};  ///< the system's sentence, of a file that is unreadable

    [[nodiscard]] bool isRight() const {
        return state == State::right;
    }

    /// True for something that stands in the way: a release may replace files, and nothing else.
    [[nodiscard]] bool isInTheWay() const {
        return state == State::link || state == State::notAFile;
    }
};

/// Compares a file with what it should be. A file of another size is not read.
[[nodiscard]] ChannelFile compareFile(const std::filesystem::path& path, std::uint64_t size, std::string_view sha256,
                                      const BytesDone& done);

/// Looks at a text file of the channel, whose content is judged elsewhere.
[[nodiscard]] ChannelFile lookAtFile(const std::filesystem::path& path);

/// One sentence on what is wrong with a file; empty when nothing is.
///
/// @param size what the file should have
[[nodiscard]] std::string faultOf(const ChannelFile& found, const std::filesystem::path& path, std::uint64_t size);

}  // namespace vorthmere::publish
