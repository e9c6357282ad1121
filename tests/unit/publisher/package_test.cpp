#include <gmock/gmock.h>

#include <optional>
#include <sstream>

#include "publisher/package_reader.h"
#include "publisher/package_writer.h"
#include "publisher/release_content.h"
#include "publisher/release_hashing.h"
#include "publisher/sha256.h"
#include "tests/unit/publisher/publishing.h"
#include "update/limits.h"
#include "update/manifest.h"

namespace vorthmere::publish::testing {
namespace {

using ::testing::HasSubstr;
using update::testing::readFile;
using update::testing::writeFile;

void ignoreBytes(std::uint64_t) {}

class PackageTest : public ::testing::Test {
protected:
    ReleaseFile& add(const std::string& path, const std::string& content) {
        files.push_back({{path, sha256Of(content), content.size()}, {}, content});
        return files.back();
    }

    void write() {
        std::string error;
        ASSERT_TRUE(hashFiles(files, error)) << error;
        ASSERT_TRUE(writePackage(files, {package, update::kMaxPackageBytes}, false, taken, ignoreBytes, error))
            << error;
        facts = {readFile(package).size(), sha256Of(readFile(package))};
    }

    std::string verify() {
        std::string error;
        const bool verified = verifyPackage(package, inventoryOf(files), {}, facts, ignoreBytes, error);
        EXPECT_EQ(verified, error.empty());
        return error;
    }

    update::testing::TemporaryFolder folder;
    const std::filesystem::path package = folder / "package.zip";
    std::vector<ReleaseFile> files;
    PackageFacts facts;
    PathSet taken;
};

TEST_F(PackageTest, FactsTellWhatWasWritten) {
    add("a", "content");
    write();
    EXPECT_EQ(verify(), "");
    EXPECT_EQ(facts.size, readFile(package).size());
    EXPECT_EQ(facts.sha256, sha256Of(readFile(package)));
}

TEST_F(PackageTest, PackedContentIsStoredAndOtherContentDeflated) {
    add("packed", packedContent(200000));
    write();
    EXPECT_FALSE(files[0].worthDeflating);
    EXPECT_GE(facts.size, 200000u);
    EXPECT_LE(facts.size, 200400u);
    files.clear();

    std::string repeated;
    for (int i = 0; i < 50; ++i)
        repeated += packedContent(4000);
    add("repeated", repeated);
    write();
    EXPECT_TRUE(files[0].worthDeflating);
    EXPECT_LT(facts.size, 20000u);
    EXPECT_EQ(verify(), "");
}

TEST_F(PackageTest, LargerThanAllowedIsRefused) {
    add("a", packedContent(5000));
    std::string error;
    ASSERT_TRUE(hashFiles(files, error)) << error;
    EXPECT_FALSE(writePackage(files, {package, 5000}, false, taken, ignoreBytes, error));
    EXPECT_THAT(error, HasSubstr("The package would be larger than 5000 bytes"));
    write();
    const std::uint64_t exact = facts.size;
    EXPECT_TRUE(writePackage(files, {package, exact}, false, taken, ignoreBytes, error)) << error;
    EXPECT_FALSE(writePackage(files, {package, exact - 1}, false, taken, ignoreBytes, error));
}

TEST_F(PackageTest, FileThatChangedSinceItWasListedIsRefused) {
    for (const std::string now : {"shorter", "longer than it was", ""}) {
        writeFile(folder / "source", "what it was");
        files = {{{"a", {}, 11}, folder / "source", {}}};
        std::string error;
        ASSERT_TRUE(hashFiles(files, error)) << error;
        writeFile(folder / "source", now);
        EXPECT_FALSE(writePackage(files, {package, update::kMaxPackageBytes}, false, taken, ignoreBytes, error));
        EXPECT_THAT(error, HasSubstr("\"a\" changed while the release was being built"));
    }
}

TEST_F(PackageTest, ReadingFindsOtherContent) {
    add("a", "content");
    add("b", "more content");
    write();
    files[1].entry.sha256 = sha256Of("other");
    EXPECT_THAT(verify(), HasSubstr("\"b\" in the package has other content"));
}

TEST_F(PackageTest, ReadingFindsAMissingAndAForeignFile) {
    add("a", "content");
    add("b", "more content");
    write();
    add("c", "");
    EXPECT_THAT(verify(), HasSubstr("\"c\" is missing in the package"));
    files.erase(files.begin(), files.begin() + 1);
    EXPECT_THAT(verify(), HasSubstr("\"a\" in the package is not in the file inventory"));
}

TEST_F(PackageTest, ReadingFindsAnUnsafePath) {
    add("../a", "content");
    write();
    EXPECT_THAT(verify(), HasSubstr("The update archive contains an unsafe path."));
}

TEST_F(PackageTest, ReadingRefusesWhatIsNoArchive) {
    add("a", "content");
    writeFile(package, "no archive");
    EXPECT_THAT(verify(), HasSubstr("The package cannot be unpacked"));
}

TEST_F(PackageTest, EntryThatUnpacksToMoreThanItShouldIsNotUnpackedToItsEnd) {
    constexpr std::uint64_t kBomb = 200'000'000;
    add("bomb", std::string(kBomb, '0'));
    write();
    files[0].entry.size = 10;
    std::uint64_t unpacked = 0;
    std::string error;
    EXPECT_FALSE(verifyPackage(
        package, inventoryOf(files), {}, facts, [&unpacked](std::uint64_t count) { unpacked += count; }, error));
    EXPECT_THAT(error, HasSubstr("has other content than the file inventory says"));
    EXPECT_LE(unpacked, 2 * kBlockBytes);
}

TEST_F(PackageTest, StoppedPackageHasNoSentence) {
    add("a", "content");
    std::string error;
    EXPECT_FALSE(writePackage(files, {package, update::kMaxPackageBytes}, true, taken, ignoreBytes, error));
    EXPECT_EQ(error, "");
}

/// Content that cannot be deflated wherever it is tried, but is mostly zeros.
std::string contentThatMisleads() {
    constexpr std::size_t kTriedPlaces = 8;
    constexpr std::size_t kTriedBytes = 8192;
    std::string content(kBlockBytes, '\0');
    for (std::size_t place = 0; place < kTriedPlaces; ++place)
        content.replace(kBlockBytes / kTriedPlaces * place, kTriedBytes,
                        packedContent(kTriedBytes, static_cast<unsigned>(place)));
    return content;
}

TEST_F(PackageTest, PackageThatIsTooLargeAsItWasJudgedIsDeflatedThroughout) {
    constexpr std::uint64_t kLimit = 3 * kBlockBytes / 2;
    add("one", contentThatMisleads());
    add("two", contentThatMisleads());
    std::string error;
    ASSERT_TRUE(hashFiles(files, error)) << error;
    ASSERT_FALSE(files[0].worthDeflating);
    std::uint64_t packed = 0;
    const BytesDone count = [&packed](std::uint64_t bytes) { packed += bytes; };
    EXPECT_TRUE(writePackage(files, {package, kLimit}, false, taken, count, error)) << error;
    EXPECT_EQ(verify(), "");
    EXPECT_LT(facts.size, kLimit / 4);
    EXPECT_LE(packed, 2 * kBlockBytes) << "packed twice";
    files.pop_back();
    EXPECT_TRUE(writePackage(files, {package, kLimit}, false, taken, ignoreBytes, error)) << error;
    EXPECT_EQ(verify(), "");
    EXPECT_GT(facts.size, kBlockBytes) << "stored as it was judged when it fits";
    // The stored content would fit, but not together with the headers.
    EXPECT_TRUE(writePackage(files, {package, kBlockBytes + 10}, false, taken, ignoreBytes, error)) << error;
    EXPECT_EQ(verify(), "");
    EXPECT_LT(facts.size, kLimit / 4);
}

TEST_F(PackageTest, LargeFilesAreOneStreamOfManyParts) {
    std::string text;
    for (int number = 0; text.size() < 5 * kBlockBytes / 2; ++number)
        text += std::to_string(number);
    add("text", text);
    add("packed", packedContent(5 * kBlockBytes / 2));
    add("whole blocks", std::string(2 * kBlockBytes, 'x'));
    write();
    EXPECT_EQ(verify(), "");
}

class PreviousPackageTest : public PackageTest {
protected:
    PreviousPackageTest() {
        add("deflated", std::string(100'000, 'x'));
        add("empty", "");
        add("stored", packedContent(100'000));
    }

    void openPrevious() {
        write();
        std::filesystem::rename(package, folder / "previous.zip");
        previous.emplace();
        ASSERT_TRUE(previous->open(folder / "previous.zip", facts.sha256, inventoryOf(files)));
    }

    std::optional<PreviousPackage> previous;
};

TEST_F(PreviousPackageTest, UnchangedFilesAreTakenAndGiveTheSameBytes) {
    openPrevious();
    const std::string before = readFile(folder / "previous.zip");
    std::string error;
    ASSERT_TRUE(writePackage(files, {package, update::kMaxPackageBytes, &*previous}, false, taken, ignoreBytes, error))
        << error;
    EXPECT_THAT(taken, ::testing::ElementsAre("deflated", "empty", "stored"));
    EXPECT_EQ(readFile(package), before);
    EXPECT_EQ(verify(), "");
}

TEST_F(PreviousPackageTest, ChangedFilesAreNotTaken) {
    openPrevious();
    files[0].entry.sha256 = sha256Of("other");
    files[2].crc ^= 1;
    std::string error;
    ASSERT_TRUE(writePackage(files, {package, update::kMaxPackageBytes, &*previous}, false, taken, ignoreBytes, error))
        << error;
    EXPECT_THAT(taken, ::testing::ElementsAre("empty"));
}

TEST_F(PreviousPackageTest, PackageWithoutItsDigestIsOfNoUse) {
    openPrevious();
    EXPECT_TRUE(previous->hasItsDigest(ignoreBytes));
    std::string bytes = readFile(folder / "previous.zip");
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    writeFile(folder / "previous.zip", bytes);
    std::ostringstream output;
    Console console(output, false);
    std::string error;
    ASSERT_TRUE(hashReleaseFiles(files, previous, console, error)) << error;
    EXPECT_FALSE(previous.has_value());
    EXPECT_FALSE(files[2].worthDeflating);
    EXPECT_TRUE(files[0].worthDeflating);
}

}  // namespace
}  // namespace vorthmere::publish::testing
