#include <gmock/gmock.h>

#include "publisher/package_reader.h"
#include "publisher/package_writer.h"
#include "publisher/release_content.h"
#include "publisher/sha256.h"
#include "tests/unit/publisher/publishing.h"
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
        ASSERT_TRUE(hashReleaseFiles(files, ignoreBytes, error)) << error;
        ASSERT_TRUE(writePackage(files, package, update::kMaxPackageBytes, false, facts, ignoreBytes, error)) << error;
    }

    std::string verify() const {
        std::string error;
        const bool verified = verifyPackage(package, inventoryOf(files), ignoreBytes, error);
        EXPECT_EQ(verified, error.empty());
        return error;
    }

    update::testing::TemporaryFolder folder;
    const std::filesystem::path package = folder / "package.zip";
    std::vector<ReleaseFile> files;
    PackageFacts facts;
};

TEST_F(PackageTest, FactsTellWhatWasWritten) {
    add("a", "content");
    write();
    EXPECT_EQ(facts.size, readFile(package).size());
    EXPECT_EQ(facts.sha256, sha256Of(readFile(package)));
    EXPECT_EQ(verify(), "");
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
    ASSERT_TRUE(hashReleaseFiles(files, ignoreBytes, error)) << error;
    EXPECT_FALSE(writePackage(files, package, 5000, false, facts, ignoreBytes, error));
    EXPECT_THAT(error, HasSubstr("The package would be larger than 5000 bytes"));
    write();
    const std::uint64_t exact = facts.size;
    EXPECT_TRUE(writePackage(files, package, exact, false, facts, ignoreBytes, error)) << error;
    EXPECT_FALSE(writePackage(files, package, exact - 1, false, facts, ignoreBytes, error));
}

TEST_F(PackageTest, FileThatChangedSinceItWasListedIsRefused) {
    for (const std::string now : {"shorter", "longer than it was", ""}) {
        writeFile(folder / "source", "what it was");
        files = {{{"a", {}, 11}, folder / "source", {}}};
        std::string error;
        ASSERT_TRUE(hashReleaseFiles(files, ignoreBytes, error)) << error;
        writeFile(folder / "source", now);
        EXPECT_FALSE(writePackage(files, package, update::kMaxPackageBytes, false, facts, ignoreBytes, error));
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
        package, inventoryOf(files), [&unpacked](std::uint64_t count) { unpacked += count; }, error));
    EXPECT_THAT(error, HasSubstr("has other content than the file inventory says"));
    EXPECT_LE(unpacked, 2 * kBlockBytes);
}

TEST_F(PackageTest, StoppedPackageHasNoSentence) {
    add("a", "content");
    std::string error;
    EXPECT_FALSE(writePackage(files, package, update::kMaxPackageBytes, true, facts, ignoreBytes, error));
    EXPECT_EQ(error, "");
}

}  // namespace
}  // namespace vorthmere::publish::testing
