#include "transfer/transfer_report.h"

#include <string>

#include "platform/streams.h"
#include "update/work_folder.h"

namespace vorthmere::update {
namespace {

void write(const std::filesystem::path& workFolder, const std::string& text) {
    std::error_code ignored;
    const FileHandle file = createToWrite(workFolder / kTransferReportName, ignored);
    if (file) ignored = writeBytes(file, text.data(), text.size());
}

std::string line(const char* key, const std::string& value) {
    return std::string(key) + "=" + value + "\r\n";
}

}  // namespace

void writeTransferReport(const std::filesystem::path& workFolder, const IncrementalTransfer& transfer) {
    write(workFolder, line("mode", "incremental") + line("reused", std::to_string(transfer.reused)) +
                          line("downloaded", std::to_string(transfer.downloaded)) +
                          line("bytes", std::to_string(transfer.bytes)));
}

void writeFullTransferReport(const std::filesystem::path& workFolder, std::uint64_t packageBytes) {
    write(workFolder, line("mode", "full") + line("bytes", std::to_string(packageBytes)));
}

}  // namespace vorthmere::update
