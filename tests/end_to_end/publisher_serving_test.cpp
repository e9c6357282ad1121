// The server configuration in docs/publishing.md, with a real nginx and the real updater.

#include <gmock/gmock.h>

#include "tests/end_to_end/support/base_fixture.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher.h"
#include "tests/end_to_end/support/publisher_server.h"
#include "tests/end_to_end/support/sample_release.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::StartsWith;

class PublisherServingTest : public EndToEndTest {
protected:
    PublisherServingTest() {
        layOut(sampleRelease42(), game_);
        const ToolEnd end = runPublisher(buildArguments(42, game_, channel_));
        EXPECT_EQ(end.exitCode, 0) << end.output;
    }

    const fs::path game_ = scenario.root / "game to publish";
    const fs::path channel_ = scenario.root / "served/downloads";
    const fs::path run_ = scenario.root.string() + " server";
};

TEST_F(PublisherServingTest, DocumentedServerServesAChannelToTheUpdaterAndNothingElse) {
    writeFile(channel_ / ".kvn-release-work/KVN-release-43.zip", "not yet published");
    writeFile(channel_ / "notes.txt", "left here by somebody");
    const std::string updaterObject = objectName(readFile(game_ / "KVNUpdater.exe"));
    const auto line = [this](const std::string& name, const std::string& cache, const std::string& type) {
        return "200\t" + cache + "\t" + type + "\t-\t" + std::to_string(fs::file_size(channel_ / name));
    };
    const std::string forEver = "public, max-age=31536000, immutable";
    {
        const DocumentedServer server(channel_.parent_path(), run_);
        EXPECT_THAT(answersFor({"KVN-alpha.manifest", "KVN-release-42.zip", "KVN-release-42.zip.files", updaterObject,
                                ".kvn-release-work/KVN-release-43.zip", "notes.txt", "KVN-release-41.zip", ""}),
                    ElementsAre(line("KVN-alpha.manifest", "no-store", "text/plain"),
                                line("KVN-release-42.zip", forEver, "application/zip"),
                                line("KVN-release-42.zip.files", forEver, "text/plain"),
                                line(updaterObject, forEver, "application/octet-stream"), StartsWith("404\t-\t"),
                                StartsWith("404\t-\t"), StartsWith("404\t-\t"), StartsWith("404\t-\t")));
        EXPECT_EQ(runUpdater(Source::channel), 0);
    }
    expectInstalled(publishedFiles(42, game_));
    fs::remove_all(run_);
}

}  // namespace
}  // namespace vorthmere::end_to_end
