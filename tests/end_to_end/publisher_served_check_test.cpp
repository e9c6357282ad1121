// kvn-release checks a served channel.

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher_fixture.h"
#include "tests/end_to_end/support/publisher_server.h"
#include "tests/end_to_end/support/release_texts.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

// Threads change Wine's table of TLS handles without a lock. When two connections begin or end at the same moment, some
// fail with one of these errors.
constexpr std::array kMixedUpHandles{"(Windows error 2148074244)", "(Windows error 12157)"};
constexpr int kMostStarts = 5;

class ServedChannelCheckTest : public PublisherTest {
protected:
    ServedChannelCheckTest() {
        publish(42);
        fs::rename(channel_, served_);
        const std::string der = (channelCertificates() / "authority.der").string();
        ChildProcess({"/usr/bin/openssl", "x509", "-inform", "der", "-in", der, "-out", authority_.string()})
            .wait(Milliseconds(30'000));
    }

    /// Publishes one more file.
    void publishAgain(std::uint32_t release, const std::string& path, const std::vector<std::string>& options = {}) {
        fs::remove_all(game_ / "data");
        writeFile(game_ / path, "x");
        std::vector<std::string> arguments = buildArguments(release, game_, served_);
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ToolEnd end = runPublisher(arguments);
        ASSERT_EQ(end.exitCode, 0) << end.output;
    }

    [[nodiscard]] ToolEnd checkServed(const std::vector<std::string>& options = {}) const {
        std::vector<std::string> arguments{"check", "--channel", channelUrl("")};
        if (!publisherIsForWindows()) arguments.insert(arguments.end(), {"--ca-file", authority_.string()});
        arguments.insert(arguments.end(), options.begin(), options.end());
        ToolEnd end = runPublisher(arguments);
        for (int starts = 1; starts < kMostStarts && isMixedUpByWine(end); ++starts)
            end = runPublisher(arguments);
        return end;
    }

    static bool isMixedUpByWine(const ToolEnd& end) {
        const auto isIn = [&end](const char* fault) { return end.output.find(fault) != std::string::npos; };
        return publisherIsForWindows() && std::any_of(kMixedUpHandles.begin(), kMixedUpHandles.end(), isIn);
    }

    const fs::path served_ = folder_ / "downloads";
    const fs::path authority_ = folder_ / "authority.pem";
};

TEST_F(ServedChannelCheckTest, DocumentedServerIsSoundUntilAFileIsMissing) {
    {
        const DocumentedServer server(served_.parent_path(), folder_ / "server");
        static_cast<void>(answersFor({"KVN-alpha.manifest"}));
        ToolEnd end = checkServed();
        EXPECT_EQ(end.exitCode, 0) << end.output;
        EXPECT_THAT(end.output, testing::HasSubstr("The channel is sound"));

        const std::string object = objectName(readFile(game_ / "KVNUpdater.exe"));
        fs::remove(served_ / object);
        writeFile(served_ / "KVN-release-42.zip", readFile(served_ / "KVN-release-42.zip") + "more");
        end = checkServed();
        EXPECT_EQ(end.exitCode, 1);
        const std::string tooLarge =
            publisherIsForWindows() ? "The update download is larger than the safety limit." : "it is larger than ";
        EXPECT_THAT(end.output,
                    testing::AllOf(testing::HasSubstr("\"" + object + "\" is answered with HTTP 404."),
                                   testing::HasSubstr("\"KVN-release-42.zip\" cannot be fetched: " + tooLarge),
                                   testing::HasSubstr("The channel has 2 faults.")));
    }
}

TEST_F(ServedChannelCheckTest, FileThatIsAFolderInAnOlderReleaseIsAFaultUnlessItIsAllowed) {
    publishAgain(44, "data");
    publishAgain(45, "data/x", {"--allow-folder-changes"});
    const PlainChannel server(served_);
    const std::string clash = "\"data\" is a file in release 44 and the folder of \"data/x\" in release 45";
    const std::string note =
        "Of the releases 29 to 44, the server has these inventories to compare files and folders "
        "with: 42, 44.";
    ToolEnd end = checkServed();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::AllOf(testing::HasSubstr("\n" + clash), testing::HasSubstr("Note: " + note)));
    end = checkServed({"--allow-folder-changes"});
    EXPECT_THAT(end.output, testing::AllOf(testing::HasSubstr("Note: " + clash), testing::HasSubstr("Note: " + note)));
    fs::remove(served_ / "KVN-release-44.zip.files");
    EXPECT_THAT(checkServed().output, testing::Not(testing::HasSubstr(clash)));
}

TEST_F(ServedChannelCheckTest, ManifestThatMayBeCachedIsAFault) {
    const PlainChannel server(served_);
    const ToolEnd end = checkServed();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::HasSubstr("\"KVN-alpha.manifest\" may be cached on its way"));
}

TEST_F(ServedChannelCheckTest, UnknownAuthorityIsAFault) {
    const PlainChannel server(served_);
    const ToolEnd end = runPublisher({"check", "--channel", channelUrl("")});
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::HasSubstr("\"KVN-alpha.manifest\" cannot be fetched: "));
}

TEST_F(ServedChannelCheckTest, RedirectIsAFault) {
    FaultServer server;
    const std::string nothing = "KVN-file-" + std::string(64, '0') + ".bin";
    server.answer(channelPath("KVN-alpha.manifest"), "status=302 location=" + channelUrl("other"));
    server.answer(channelPath(nothing), "status=404");
    const ToolEnd end = checkServed();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::HasSubstr("\"KVN-alpha.manifest\" is answered with HTTP 30"));
}

}  // namespace
}  // namespace vorthmere::end_to_end
