#include "transfer/transfer_report.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::readFile;
using testing::TemporaryFolder;
using testing::writeFile;

TEST(TransferReport, TheFullFormNamesThePackagesBytes) {
    const TemporaryFolder folder;
    writeFullTransferReport(folder.path(), 123456789);
    EXPECT_EQ(readFile(folder / L"transfer.txt"), "mode=full\r\nbytes=123456789\r\n");
    writeFullTransferReport(folder.path(), 18446744073709551615u);
    EXPECT_EQ(readFile(folder / L"transfer.txt"), "mode=full\r\nbytes=18446744073709551615\r\n");
}

TEST(TransferReport, TheIncrementalFormNamesFilesAndBytes) {
    const TemporaryFolder folder;
    writeTransferReport(folder.path(), {12, 3, 4567});
    EXPECT_EQ(readFile(folder / L"transfer.txt"), "mode=incremental\r\nreused=12\r\ndownloaded=3\r\nbytes=4567\r\n");
    writeTransferReport(folder.path(), {});
    EXPECT_EQ(readFile(folder / L"transfer.txt"), "mode=incremental\r\nreused=0\r\ndownloaded=0\r\nbytes=0\r\n");
}

TEST(TransferReport, AnEarlierReportIsReplacedWhole) {
    const TemporaryFolder folder;
    writeFile(folder / L"transfer.txt", std::string(1000, 'x'));
    writeFullTransferReport(folder.path(), 1);
    EXPECT_EQ(readFile(folder / L"transfer.txt"), "mode=full\r\nbytes=1\r\n");
}

TEST(TransferReport, AReportThatCannotBeWrittenIsIgnored) {
    const TemporaryFolder folder;
    EXPECT_NO_THROW(writeFullTransferReport(folder / L"missing", 1));
    EXPECT_NO_THROW(writeTransferReport(folder / L"missing", {}));
    EXPECT_FALSE(std::filesystem::exists(folder / L"missing"));
}

}  // namespace
}  // namespace vorthmere::update
