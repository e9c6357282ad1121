#include "files/file_status.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

#include "tests/support/folder_link.h"
#include "tests/support/held_file.h"
#include "tests/support/temporary_folder.h"

namespace vorthmere::update {
namespace {

using testing::Link;
using testing::LinkedFolder;
using testing::TemporaryFolder;
using testing::writeFile;

const std::error_code kEarlierFailure(ERROR_CRC, std::system_category());

class FileStatusTest : public ::testing::Test {
protected:
    TemporaryFolder folder;
    std::error_code failure = kEarlierFailure;
};

TEST_F(FileStatusTest, TellsFilesFoldersAndMissingEntriesApartAndClearsAnEarlierFailure) {
    writeFile(folder / L"a file", "content");
    const auto expectType = [this](const std::filesystem::path& path, FileType expected) {
        failure = kEarlierFailure;
        EXPECT_EQ(fileType(path, failure), expected) << path;
        EXPECT_FALSE(failure) << path << failure.message();
        failure = kEarlierFailure;
        EXPECT_EQ(entryType(path, failure), expected) << path;
        EXPECT_FALSE(failure) << path << failure.message();
        EXPECT_EQ(fileTypeOrThrow(path, "status"), expected);
    };
    expectType(folder / L"a file", FileType::regular);
    expectType(folder.path(), FileType::directory);
    expectType(folder / L"missing", FileType::notFound);
    expectType(folder / L"missing folder" / L"missing", FileType::notFound);
    expectType(folder / L"a file" / L"below a file", FileType::notFound);
    expectType(folder / L"no*name", FileType::notFound);
    expectType(L"", FileType::notFound);
}

TEST_F(FileStatusTest, AFileHeldByAnotherProgramIsStillAFileWithASize) {
    writeFile(folder / L"held", "12345");
    const testing::HeldFile held(folder / L"held");
    EXPECT_EQ(fileType(folder / L"held", failure), FileType::regular);
    EXPECT_EQ(fileSize(folder / L"held", failure), 5u);
    EXPECT_FALSE(failure);
}

TEST_F(FileStatusTest, FollowsALinkButKnowsTheEntryItselfForALink) {
    const LinkedFolder linked(folder / L"link", folder / L"target");
    EXPECT_EQ(fileType(folder / L"link", failure), FileType::directory);
    EXPECT_FALSE(failure);
    EXPECT_EQ(entryType(folder / L"link", failure), FileType::other);
    EXPECT_FALSE(failure);
    EXPECT_EQ(fileType(folder / L"link" / L"precious.txt", failure), FileType::regular);
}

TEST_F(FileStatusTest, ALinkToNothingLeadsToNothing) {
    const Link link(folder / L"link", folder / L"nothing");
    EXPECT_EQ(fileType(folder / L"link", failure), FileType::notFound);
    EXPECT_FALSE(failure);
}

TEST_F(FileStatusTest, ADeviceIsNeitherFileNorFolder) {
    EXPECT_EQ(fileType(L"\\\\.\\NUL", failure), FileType::other);
}

TEST_F(FileStatusTest, AHardErrorIsReportedAndThrownWithTheOperationsName) {
    const Link loop(folder / L"loop", folder / L"loop");
    EXPECT_EQ(fileType(folder / L"loop", failure), FileType::other);
    EXPECT_EQ(failure.value(), ERROR_CANT_RESOLVE_FILENAME);
    try {
        static_cast<void>(fileTypeOrThrow(folder / L"loop", "status"));
        FAIL() << "nothing thrown";
    } catch (const std::filesystem::filesystem_error& thrown) {
        EXPECT_NE(std::string(thrown.what()).find("status"), std::string::npos) << thrown.what();
        EXPECT_EQ(thrown.path1(), folder / L"loop");
        EXPECT_EQ(thrown.code().value(), ERROR_CANT_RESOLVE_FILENAME);
    }
}

TEST_F(FileStatusTest, TellsTheSizeOfFilesFromEmptyToAboveFourGigabytes) {
    writeFile(folder / L"empty", "");
    EXPECT_EQ(fileSize(folder / L"empty", failure), 0u);
    EXPECT_FALSE(failure);

    writeFile(folder / L"large", "x");
    constexpr std::uint64_t size = (std::uint64_t{1} << 32) + 5;
    std::filesystem::resize_file(folder / L"large", size);
    EXPECT_EQ(fileSize(folder / L"large", failure), size);
    EXPECT_FALSE(failure);
}

TEST_F(FileStatusTest, OnlyFilesHaveASize) {
    EXPECT_EQ(fileSize(folder.path(), failure), 0u);
    EXPECT_TRUE(failure);
    EXPECT_EQ(fileSize(folder / L"missing", failure), 0u);
    EXPECT_TRUE(failure);
}

}  // namespace
}  // namespace vorthmere::update
