#include "files/file_status.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::TemporaryFolder;
using testing::writeFile;

// tests/contract cannot show these: it has neither paths of devices nor files of that size.

TEST(FileStatus, ADeviceIsNeitherFileNorFolder) {
    std::error_code failure;
    EXPECT_EQ(fileType(L"\\\\.\\NUL", failure), FileType::other);
}

TEST(FileStatus, TellsTheSizeOfAFileAboveFourGigabytes) {
    const TemporaryFolder folder;
    std::error_code failure;
    writeFile(folder / L"large", "x");
    constexpr std::uint64_t size = (std::uint64_t{1} << 32) + 5;
    std::filesystem::resize_file(folder / L"large", size);
    EXPECT_EQ(fileSize(folder / L"large", failure), size);
    EXPECT_FALSE(failure);
}

}  // namespace
}  // namespace vorthmere::update
