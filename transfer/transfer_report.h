#pragma once

#include <cstdint>
#include <filesystem>

namespace vorthmere::update {

/// What an incremental update reused and fetched.
struct IncrementalTransfer {
    std::uint64_t reused = 0;      ///< files copied from the installation
    std::uint64_t downloaded = 0;  ///< files fetched, from the channel or a local object folder
    std::uint64_t bytes = 0;       ///< sum of the sizes of the fetched files
};

/// Write `transfer.txt` into the work folder, one "key=value" a line, lines ending in CR LF. For the player's
/// information only: nothing reads it, and a failure to write it is ignored.
void writeTransferReport(const std::filesystem::path& workFolder, const IncrementalTransfer& transfer);
void writeFullTransferReport(const std::filesystem::path& workFolder, std::uint64_t packageBytes);

}  // namespace vorthmere::update
