// kvn-release checks a channel as it is served.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher_fixture.h"
#include "tests/end_to_end/support/publisher_server.h"
#include "tests/end_to_end/support/release_texts.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

class ServedChannelCheckTest : public PublisherTest {
protected:
    ServedChannelCheckTest() {
        publish(42);
        fs::rename(channel_, served_);
        const std::string der = (channelCertificates() / "authority.der").string();
        ChildProcess({"/usr/bin/openssl", "x509", "-inform", "der", "-in", der, "-out", authority_.string()})
            .wait(Milliseconds(30'000));
    }

    [[nodiscard]] ToolEnd checkServed() const {
        return runPublisher({"check", "--channel", channelUrl(""), "--ca-file", authority_.string()});
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
        EXPECT_THAT(end.output, testing::AllOf(testing::HasSubstr("\"" + object + "\" is answered with HTTP 404."),
                                               testing::HasSubstr("\"KVN-release-42.zip\" cannot be fetched: it is "
                                                                  "larger than"),
                                               testing::HasSubstr("The channel has 2 faults.")));
    }
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
