#include "transfer/transfer_report.h"

#include <fstream>
#include <string>

namespace vorthmere::update {
namespace {

constexpr const wchar_t* kReportName = L"transfer.txt";

// Binary, with the line ends written out: text mode would leave them to the C library at hand.
void write(const std::filesystem::path& workFolder, const std::string& text) {
    std::ofstream(workFolder / kReportName, std::ios::binary | std::ios::trunc) << text;
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
