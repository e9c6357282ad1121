#include "transfer/file_digest.h"

#include "tests/simulation/core/bench.h"
#include "tests/simulation/digests.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;

class FileDigestTest : public CoreTest {
protected:
    void put(std::string content) {
        machine.files.putFile("C:/Test/a", contentOf(std::move(content)));
    }

    std::string digest = "earlier";
};

TEST_F(FileDigestTest, GivesTheDigestOfAnyContentInBlocks) {
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 140000U}) {
        const std::string content(size, 'x');
        put(content);
        EXPECT_TRUE(sha256File("C:/Test/a", digest, error));
        EXPECT_EQ(digest, sha256TextOf(content));
    }
    EXPECT_EQ(error, L"earlier");
    plan({});
    EXPECT_TRUE(sha256File("C:/Test/a", digest, error));
    EXPECT_THAT(callsOf(Operation::digestBytes), ElementsAre(", 65536 bytes", ", 65536 bytes", ", 8928 bytes"));
}

TEST_F(FileDigestTest, EachStepThatFailsHasItsSentenceAndEmptiesTheDigest) {
    put("content");
    const std::pair<Operation, std::wstring> steps[] = {
        {Operation::openSha256, L"Windows could not initialize SHA-256 verification."},
        {Operation::digestMemorySize, L"Windows could not initialize SHA-256 verification."},
        {Operation::beginDigest, L"Windows could not create the SHA-256 verifier."},
        {Operation::openToRead, L"Unable to read the downloaded update archive."},
        {Operation::digestBytes, L"Windows could not hash the update archive."},
        {Operation::readBytes, L"Windows could not finish SHA-256 verification."},
        {Operation::finishDigest, L"Windows could not finish SHA-256 verification."},
    };
    for (const auto& [operation, sentence] : steps) {
        harm(operation, {.error = 5});
        digest = "earlier";
        EXPECT_FALSE(sha256File("C:/Test/a", digest, error));
        EXPECT_EQ(error, sentence);
        EXPECT_EQ(digest, "");
    }
}

TEST_F(FileDigestTest, WithoutAProviderNothingElseIsTried) {
    put("content");
    harm(Operation::openSha256, {.error = 5});
    EXPECT_FALSE(sha256File("C:/Test/a", digest, error));
    EXPECT_THAT(callsOf(Operation::digestMemorySize), ElementsAre());
}

TEST_F(FileDigestTest, AFileMatchesOnItsSizeAndItsDigestTogether) {
    put("content");
    const InventoryEntry entry{"a", sha256TextOf("content"), 7};
    EXPECT_TRUE(installedFileMatches("C:/Test/a", entry));
    EXPECT_FALSE(installedFileMatches("C:/Test/a", {"a", sha256TextOf("another"), 7}));
    EXPECT_FALSE(installedFileMatches("C:/Test/b", entry));
    EXPECT_FALSE(installedFileMatches("C:/Test", entry));
    plan({});
    for (const std::uint64_t size : {6U, 8U})
        EXPECT_FALSE(installedFileMatches("C:/Test/a", {"a", entry.sha256, size}));
    EXPECT_THAT(callsOf(Operation::openToRead), ElementsAre()) << "a file of another size is not read";
}

TEST_F(FileDigestTest, AFileWhoseSizeIsUnknownDoesNotMatchEvenAnEmptyOne) {
    put("");
    harm(Operation::entryFacts, {.error = 5}, 1);
    EXPECT_FALSE(installedFileMatches("C:/Test/a", {"a", sha256TextOf(""), 0}));
}

}  // namespace
}  // namespace vorthmere::update::simulation
