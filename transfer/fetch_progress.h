#pragma once

#include <cstdint>

#include "update/progress.h"

namespace vorthmere::update {

/// Reports how far the changed files of an incremental update are fetched, as 12 % to 77 % of the run.
class FetchProgress {
public:
    /// @param files    changed files
    /// @param bytes    sum of their sizes; may be 0
    /// @param progress receives the texts and percentages; may be empty; must outlive this object
    FetchProgress(std::uint64_t files, std::uint64_t bytes, const ProgressCallback& progress)
        : files_(files), bytes_(bytes), progress_(progress) {}

    /// Reports that a file is about to be fetched.
    ///
    /// @param number    the file's, from 1
    /// @param bytesDone sum of the sizes of the files before it
    void reportFile(std::uint64_t number, std::uint64_t bytesDone) const;

    /// Reports bytes as they arrive.
    ///
    /// @param bytesDone bytes of all changed files that have arrived
    void reportBytes(std::uint64_t bytesDone) const;

private:
    std::uint64_t files_;
    std::uint64_t bytes_;
    const ProgressCallback& progress_;
};

}  // namespace vorthmere::update
