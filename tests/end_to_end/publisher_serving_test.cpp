// The server configuration of docs/publishing.md, taken from there, with a real nginx and the real updater.

#include <gmock/gmock.h>
#include <unistd.h>

#include <stdexcept>

#include "tests/end_to_end/support/base_test.h"
#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher.h"
#include "tests/end_to_end/support/sample_release.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::StartsWith;

constexpr Milliseconds kAnswerLimit{30'000};

/// The document's configuration with the names of this machine in it.
class DocumentedServer {
public:
    /// @param root the folder that holds the channel folder "downloads"
    DocumentedServer(const fs::path& root, const fs::path& run) {
        std::string server = documentedConfiguration();
        const fs::path certificates = channelCertificates();
        replace(server, "listen 443 ssl", "listen 127.0.0.1:" + std::to_string(channelPort()) + " ssl");
        replace(server, "updates.kelvane.example", "127.0.0.1");
        replace(server, "/etc/ssl/kelvane/fullchain.pem", "\"" + (certificates / "good.pem").string() + "\"");
        replace(server, "/etc/ssl/kelvane/private.key", "\"" + (certificates / "good.key").string() + "\"");
        replace(server, "root /srv/kelvane", "root \"" + root.string() + "\"");
        std::string paths;
        for (const char* kind : {"client_body", "proxy", "fastcgi", "uwsgi", "scgi"})
            paths += std::string(kind) + "_temp_path \"" + run.string() + "/temporary\";\n";
        writeFile(run / "nginx.conf",
                  std::string(geteuid() == 0 ? "user root root;\n" : "") + "pid \"" + run.string() +
                      "/pid\";\ndaemon off;\nmaster_process off;\nevents {}\nhttp {\naccess_log off;\n" + paths +
                      server + "}\n");
        const std::string log = (run / "error.log").string();
        nginx_ = std::make_unique<ChildProcess>(std::vector<std::string>{
            "/usr/bin/env", "nginx", "-e", log, "-p", run.string(), "-c", (run / "nginx.conf").string()});
    }

    ~DocumentedServer() {
        nginx_->killGroup();
        nginx_->wait(kAnswerLimit);
    }

private:
    static std::string documentedConfiguration() {
        const std::string document = readFile(fs::path(KVN_SOURCE_FOLDER) / "docs/publishing.md");
        const std::string opening = "```nginx\n";
        const std::size_t begin = document.find(opening);
        const std::size_t end = document.find("```", begin + opening.size());
        if (begin == std::string::npos || end == std::string::npos)
            throw std::runtime_error("docs/publishing.md has no nginx configuration");
        return document.substr(begin + opening.size(), end - begin - opening.size());
    }

    static void replace(std::string& text, const std::string& what, const std::string& with) {
        const std::size_t position = text.find(what);
        if (position == std::string::npos) throw std::runtime_error("the documented configuration lacks " + what);
        text.replace(position, what.size(), with);
    }

    std::unique_ptr<ChildProcess> nginx_;
};

class PublisherServingTest : public EndToEndTest {
protected:
    PublisherServingTest() {
        layOut(sampleRelease42(), game_);
        const ToolEnd end = runPublisher(buildArguments(42, game_, channel_));
        EXPECT_EQ(end.exitCode, 0) << end.output;
    }

    static std::vector<std::string> answers(const std::vector<std::string>& names) {
        std::vector<std::string> command{fs::path(KVN_SOURCE_FOLDER) / "tests/end_to_end/support/get_headers.py",
                                         "127.0.0.1", std::to_string(channelPort())};
        for (const std::string& name : names)
            command.push_back(channelPath(name));
        ChildProcess client(command);
        std::vector<std::string> lines;
        for (std::size_t i = 0; i < names.size(); ++i)
            lines.push_back(client.readLine(kAnswerLimit));
        return lines;
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
        EXPECT_THAT(answers({"KVN-alpha.manifest", "KVN-release-42.zip", "KVN-release-42.zip.files", updaterObject,
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

class ServedChannelCheckTest : public PublisherServingTest {
protected:
    ServedChannelCheckTest() {
        const std::string der = (channelCertificates() / "authority.der").string();
        ChildProcess({"/usr/bin/openssl", "x509", "-inform", "der", "-in", der, "-out", authority_.string()})
            .wait(kAnswerLimit);
    }

    [[nodiscard]] ToolEnd check() const {
        return runPublisher({"check", "--channel", channelUrl(""), "--ca-file", authority_.string()});
    }

    const fs::path authority_ = scenario.root / "authority.pem";
};

TEST_F(ServedChannelCheckTest, DocumentedServerIsSoundUntilAFileIsMissing) {
    {
        const DocumentedServer server(channel_.parent_path(), run_);
        static_cast<void>(answers({"KVN-alpha.manifest"}));
        ToolEnd end = check();
        EXPECT_EQ(end.exitCode, 0) << end.output;
        EXPECT_THAT(end.output, testing::HasSubstr("The channel is sound"));

        const std::string object = objectName(readFile(game_ / "KVNUpdater.exe"));
        fs::remove(channel_ / object);
        writeFile(channel_ / "KVN-release-42.zip", readFile(channel_ / "KVN-release-42.zip") + "more");
        end = check();
        EXPECT_EQ(end.exitCode, 1);
        EXPECT_THAT(end.output, testing::AllOf(testing::HasSubstr("\"" + object + "\" is answered with HTTP 404."),
                                               testing::HasSubstr("\"KVN-release-42.zip\" cannot be fetched: it is "
                                                                  "larger than"),
                                               testing::HasSubstr("The channel has 2 faults.")));
    }
    fs::remove_all(run_);
}

TEST_F(ServedChannelCheckTest, ManifestThatMayBeCachedIsAFault) {
    const PlainChannel server(channel_);
    const ToolEnd end = check();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::HasSubstr("\"KVN-alpha.manifest\" may be cached on its way"));
}

TEST_F(ServedChannelCheckTest, UnknownAuthorityIsAFault) {
    const PlainChannel server(channel_);
    const ToolEnd end = runPublisher({"check", "--channel", channelUrl("")});
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::HasSubstr("\"KVN-alpha.manifest\" cannot be fetched: "));
}

TEST_F(ServedChannelCheckTest, RedirectIsAFault) {
    FaultServer server;
    const std::string nothing = "KVN-file-" + std::string(64, '0') + ".bin";
    server.answer(channelPath("KVN-alpha.manifest"), "status=302 location=" + channelUrl("other"));
    server.answer(channelPath(nothing), "status=404");
    const ToolEnd end = check();
    EXPECT_EQ(end.exitCode, 1);
    EXPECT_THAT(end.output, testing::HasSubstr("\"KVN-alpha.manifest\" is answered with HTTP 30"));
}

}  // namespace
}  // namespace vorthmere::end_to_end
