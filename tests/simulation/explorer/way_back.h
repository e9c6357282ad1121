#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// What went wrong while files changed places, read from the calls. The way back is the rollback of an installation.
class WayBack {
public:
    explicit WayBack(const Outcome& outcome);

    /// Number of the call that began the way back, by its failure or by its result; the number of all calls when there
    /// was no way back.
    [[nodiscard]] std::size_t begin() const {
        return begin_;
    }

    /// True when a failed call of the way back explains why a path is not as it was: the plan made the call fail, or
    /// another program hindered it, and it named that path, one below it or a folder that leads there.
    ///
    /// @param key of a path in the installation
    [[nodiscard]] bool explains(std::string_view key) const;

private:
    std::size_t begin_ = 0;
    std::vector<std::string> hits_;  ///< relative keys
};

/// The path of a managed file as all folders of an update have it: without the installation, the backup or the staging
/// folder. Nothing for a path outside of them.
[[nodiscard]] bool relativeKeyOf(std::string_view path, std::string& relative);

}  // namespace vorthmere::update::simulation
