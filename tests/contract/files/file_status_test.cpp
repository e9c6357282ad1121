// fileType, fileTypeOrThrow, fileTypeBelowOrThrow, entryType and fileSize.
#include "files/file_status.h"

#include <functional>

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

const std::error_code kEarlierFailure(23, std::system_category());

TEST_F(ContractTest, FilesFoldersAndMissingEntriesAreToldApartAndAnEarlierFailureIsCleared) {
    scene.make("a d/");
    const auto expectType = [this](std::string_view path, FileType expected) {
        failure = kEarlierFailure;
        EXPECT_EQ(fileType(scene.at(path), failure), expected) << path;
        EXPECT_FALSE(failure) << path << failure.value();
        failure = kEarlierFailure;
        EXPECT_EQ(entryType(scene.at(path), failure), expected) << path;
        EXPECT_FALSE(failure) << path << failure.value();
        EXPECT_EQ(fileTypeOrThrow(scene.at(path), "status"), expected);
    };
    expectType("a", FileType::regular);
    expectType("d", FileType::directory);
    expectType("missing", FileType::notFound);
    expectType("missing/file", FileType::notFound);
    expectType("a/below", FileType::notFound);
    expectType("no*name", FileType::notFound);
    expectType("Q:/a", FileType::notFound);
    EXPECT_EQ(fileType({}, failure), FileType::notFound);
}

TEST_F(ContractTest, AHeldFileIsAFileWithASize) {
    scene.write("a", "12345");
    ASSERT_EQ(world.hold(scene.at("a"), access::all, access::none), 0u);
    EXPECT_EQ(fileType(scene.at("a"), failure), FileType::regular);
    EXPECT_EQ(fileSize(scene.at("a"), failure), 5u);
    EXPECT_FALSE(failure);
}

TEST_F(ContractTest, ALinkIsFollowedButItsEntryIsKnownForALink) {
    scene.make("d/ d/a l->d");
    EXPECT_EQ(fileType(scene.at("l"), failure), FileType::directory);
    EXPECT_EQ(entryType(scene.at("l"), failure), FileType::other);
    EXPECT_EQ(fileType(scene.at("l/a"), failure), FileType::regular);
    EXPECT_EQ(fileSize(scene.at("l/a"), failure), 3u);
    EXPECT_FALSE(failure);
}

TEST_F(ContractTest, ALinkToNothingLeadsToNothing) {
    scene.make("d/ l->d/e");
    EXPECT_EQ(fileType(scene.at("l"), failure), FileType::notFound);
    EXPECT_FALSE(failure);
}

/// Expects the call to throw a file system error of a path, with the operation "status" in its text.
void expectThrown(const std::function<FileType()>& call, const std::filesystem::path& path, int error) {
    try {
        static_cast<void>(call());
        ADD_FAILURE() << "nothing thrown";
    } catch (const std::filesystem::filesystem_error& thrown) {
        EXPECT_NE(std::string(thrown.what()).find("status"), std::string::npos) << thrown.what();
        EXPECT_EQ(thrown.path1(), path);
        EXPECT_EQ(thrown.code().value(), error);
    }
}

TEST_F(ContractTest, AHardErrorIsToldAndThrownWithTheOperationsName) {
    scene.make("l->l");
    EXPECT_EQ(fileType(scene.at("l"), failure), FileType::other);
    EXPECT_EQ(failure.value(), 1921);
    expectThrown([this] { return fileTypeOrThrow(scene.at("l"), "status"); }, scene.at("l"), 1921);
}

TEST_F(ContractTest, BelowAFolderThatIsThereAMissingFileIsNoError) {
    scene.make("d/ d/a d/e/");
    const auto typeBelow = [this](std::string_view path) {
        return fileTypeBelowOrThrow(scene.at("d"), path, "status");
    };
    EXPECT_EQ(typeBelow("a"), FileType::regular);
    EXPECT_EQ(typeBelow("e"), FileType::directory);
    EXPECT_EQ(typeBelow("missing"), FileType::notFound);
    EXPECT_EQ(typeBelow("missing/file"), FileType::notFound);
    EXPECT_EQ(typeBelow("a/below"), FileType::notFound);
}

TEST_F(ContractTest, BelowAMissingFolderTheErrorIsTheFolders) {
    const auto typeBelow = [this](std::string_view folder) {
        return [this, folder] { return fileTypeBelowOrThrow(scene.at(folder), "a", "status"); };
    };
    expectThrown(typeBelow("missing"), scene.at("missing"), 2);
    expectThrown(typeBelow("missing/folder"), scene.at("missing/folder"), 3);
}

TEST_F(ContractTest, BelowAFolderAHardErrorIsTheFiles) {
    scene.make("d/ d/l->d/l");
    expectThrown([this] { return fileTypeBelowOrThrow(scene.at("d"), "l", "status"); }, scene.at("d/l"), 1921);
}

TEST_F(ContractTest, OnlyFilesHaveASize) {
    scene.make("d/");
    scene.write("empty", "");
    EXPECT_EQ(fileSize(scene.at("empty"), failure), 0u);
    EXPECT_FALSE(failure);
    EXPECT_EQ(fileSize(scene.at("d"), failure), 0u);
    EXPECT_TRUE(failure);
    EXPECT_EQ(fileSize(scene.at("missing"), failure), 0u);
    EXPECT_TRUE(failure);
}

}  // namespace
}  // namespace vorthmere::update::contract
