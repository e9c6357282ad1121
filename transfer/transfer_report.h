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

/// Write the transfer report, `transfer.txt` in the work folder, after an incremental update or an update from the
/// package: one "key=value" a line, lines ending in CR LF. The updater never reads it; a failure to write is ignored.
void writeTransferReport(const std::filesystem::path& workFolder, const IncrementalTransfer& transfer);
void writeFullTransferReport(const std::filesystem::path& workFolder, std::uint64_t packageBytes);

}  // namespace vorthmere::update
