#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/support/held_file.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/windows_handle.h"
#include "update/metadata_file.h"

namespace vorthmere::update {
namespace {

using testing::HeldFile;
using testing::TemporaryFolder;
using testing::writeFile;

class MetadataFileSharingTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::filesystem::path file = folder / L"list";
    std::string contents = "earlier";
    std::wstring error;
};

TEST_F(MetadataFileSharingTest, AFileLockedAgainstReadingCannotBeRead) {
    writeFile(file, "content");
    const HeldFile held(file);
    EXPECT_FALSE(readMetadataFile(file, contents, error, 100));
    EXPECT_EQ(error, L"Unable to read update metadata.");
}

TEST_F(MetadataFileSharingTest, TheSizeOfALockedFileIsJudgedBeforeItIsOpened) {
    writeFile(file, "content");
    const HeldFile held(file);
    EXPECT_FALSE(readMetadataFile(file, contents, error, 6));
    EXPECT_EQ(error, L"An update metadata file has an invalid size.");
}

TEST_F(MetadataFileSharingTest, AFileThatOthersReadAndWriteIsReadWhole) {
    writeFile(file, "a\r\nb\n\x1a z");
    const testing::OpenFile writer(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                                               FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(writer);
    EXPECT_TRUE(readMetadataFile(file, contents, error, 100));
    EXPECT_EQ(contents, "a\r\nb\n\x1a z");
    EXPECT_EQ(error, L"");
}

TEST_F(MetadataFileSharingTest, NothingStaysOpen) {
    writeFile(file, "content");
    EXPECT_TRUE(readMetadataFile(file, contents, error, 100));
    EXPECT_TRUE(DeleteFileW(file.c_str()));
}

TEST_F(MetadataFileSharingTest, AFolderHasNoValidSize) {
    EXPECT_FALSE(readMetadataFile(folder.path(), contents, error, 1000000));
    EXPECT_EQ(error, L"An update metadata file has an invalid size.");
}

}  // namespace
}  // namespace vorthmere::update
