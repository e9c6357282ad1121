#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/end_to_end/support/publisher.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::end_to_end {

/// A game folder with two files that stand for programs, and a channel folder that does not exist yet.
class PublisherTest : public testing::Test {
protected:
    PublisherTest();

    [[nodiscard]] ToolEnd build(std::uint32_t release, const std::vector<std::string>& options = {}) const;
    [[nodiscard]] ToolEnd check(const std::vector<std::string>& options = {}) const;

    /// Builds, and expects that to succeed.
    void publish(std::uint32_t release) const;

    /// The names in the channel, in order, without those of objects.
    [[nodiscard]] std::vector<std::string> namesInChannel() const;

    const update::testing::TemporaryFolder folder_;
    const std::filesystem::path game_ = folder_ / "game";
    const std::filesystem::path channel_ = folder_ / "channel";
};

}  // namespace vorthmere::end_to_end
