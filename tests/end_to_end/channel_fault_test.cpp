// Whole runs of the real program against a server that plays faults: the exit code, the sentence in the window, and the
// installation after each run.
//
// The runs of a test overlap, each on its own installation, and so do their time-outs. The next run starts when the
// server has received the request that it answers with a fault, so that every run gets its own answer.
//
// The HTTP clients of Windows and Wine treat some faults differently. These tests expect what both have in common;
// channel_request_test.cpp names the differences.

#include <gmock/gmock.h>

#include <memory>
#include <vector>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/channel_run.h"
#include "tests/end_to_end/support/channel_sentences.h"
#include "tests/end_to_end/support/digest.h"
#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/sample_release.h"
#include "update/file_inventory.h"
#include "update/limits.h"
#include "update/manifest.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace {

using testing::AnyOf;
using testing::MatchesRegex;

using Sentence = testing::Matcher<const std::string&>;

// After 5 s of silence every step of a run ends; the rest is for a busy machine.
constexpr Milliseconds kRunLimit{40'000};

constexpr int kManifestUnavailable = 11;
constexpr int kDownloadFailed = 15;
constexpr int kWrongSize = 17;
constexpr int kWrongDigest = 18;

/// An answer that fails every download, whatever was asked for.
struct Fault {
    std::string name;
    std::string how;  ///< for the server, without the body
    Sentence sentence;
};

std::vector<Fault> faultsOfAnyDownload() {
    std::vector<Fault> faults;
    for (const char* status : {"301", "302"})
        faults.push_back({status, "status=" + std::string(status) + " location=" + channelUrl("elsewhere"),
                          "The update host returned HTTP " + std::string(status) + "."});
    for (const char* status : {"204", "304"})
        faults.push_back({status, "status=" + std::string(status) + " length=none send=0",
                          "The update host returned HTTP " + std::string(status) + "."});
    for (const char* status : {"206", "404", "500"})
        faults.push_back(
            {status, "status=" + std::string(status), "The update host returned HTTP " + std::string(status) + "."});
    const Sentence noMore = AnyOf(MatchesRegex(kReadFailed), MatchesRegex(kEndedUnexpectedly));
    faults.push_back({"head-stalled", "head=stall", MatchesRegex(kRequestFailed)});
    faults.push_back({"body-stalled-at-once", "send=0 end=stall", noMore});
    faults.push_back({"body-stalled", "send=20 end=stall", noMore});
    faults.push_back({"chunks-stalled", "chunked=yes send=20 end=stall", noMore});
    faults.push_back({"cut-short", "send=20", kWrongLength});
    faults.push_back({"connection-lost", "send=20 end=drop", AnyOf(kWrongLength, noMore)});
    // A reset discards what has arrived but is not read yet, even the head of the answer.
    faults.push_back(
        {"connection-reset", "send=20 end=reset", AnyOf(kWrongLength, noMore, MatchesRegex(kRequestFailed))});
    faults.push_back({"advertised-above-any-limit", "length=536870913 send=20 end=stall", kTooLarge});
    return faults;
}

/// Some of them, one for each way in which a request or an answer ends. All four kinds of files are fetched by the same
/// client, so all the faults are played for one file that is read and one that is stored.
std::vector<Fault> someFaultsOfAnyDownload() {
    std::vector<Fault> faults = faultsOfAnyDownload();
    std::erase_if(faults, [](const Fault& fault) {
        return fault.name != "302" && fault.name != "404" && fault.name != "body-stalled" && fault.name != "cut-short";
    });
    return faults;
}

/// Name and content of the objects that an installation of release 41 has to fetch, in the order of the inventory.
std::vector<std::pair<std::string, std::string>> changedObjects() {
    std::vector<std::pair<std::string, std::string>> objects;
    for (const auto& [path, file] : sampleRelease42()) {
        const auto installed = sampleRelease41().find(path);
        if (installed == sampleRelease41().end() || installed->second.content != file.content)
            objects.emplace_back(objectName(file.content), file.content);
    }
    return objects;
}

class ChannelFaultTest : public testing::Test {
protected:
    /// Writes a body for the server and returns the words that name it.
    std::string body(const std::string& content) {
        const auto file = bodies_ / std::to_string(++bodyCount_);
        writeFile(file, content);
        return " body='" + file.string() + "'";
    }

    ChannelRun& newRun(const std::string& name) {
        runs_.push_back(std::make_unique<ChannelRun>(name));
        return *runs_.back();
    }

    void serve(const std::string& fileName, const std::string& how) {
        server.answer(channelPath(fileName), how);
    }

    void serveManifest(const ChannelRun& run) {
        serve(kManifest, body(renderManifest(run.manifest)));
    }

    std::string inventoryBody(const ChannelRun& run) {
        return body(renderInventory(run.manifest, sampleRelease42()));
    }

    void serveInventory(const ChannelRun& run) {
        serve(run.inventoryName(), inventoryBody(run));
    }

    static std::string packageBody(const ChannelRun& run) {
        return " body='" + run.scenario.release.package.string() + "'";
    }

    void servePackage(const ChannelRun& run) {
        serve(run.packageName(), packageBody(run));
    }

    /// Starts a run and waits until all runs together have asked for the file `count` times.
    void start(ChannelRun& run, ChannelRun::Expectation expectation, const std::string& fileName, std::size_t count) {
        run.start(std::move(expectation));
        server.waitForRequests(channelPath(fileName), count);
    }

    void finishAll() {
        // Wine waits for the head of an answer without a limit. The server releases these runs after the others have
        // ended by themselves.
        for (const auto& run : runs_)
            if (!run->name.ends_with("head-stalled")) run->finish(kRunLimit);
        server.release();
        for (const auto& run : runs_)
            if (run->name.ends_with("head-stalled")) run->finish(kRunLimit);
        runs_.clear();
    }

    const std::string kManifest{update::kManifestName};
    FaultServer server;

private:
    update::testing::TemporaryFolder bodies_;
    int bodyCount_ = 0;
    std::vector<std::unique_ptr<ChannelRun>> runs_;
};

TEST_F(ChannelFaultTest, AManifestThatCannotBeFetchedEndsTheRun) {
    std::size_t count = 0;
    for (const Fault& fault : faultsOfAnyDownload()) {
        ChannelRun& run = newRun(fault.name);
        serve(kManifest, fault.how + body(renderManifest(run.manifest)));
        start(run, {kManifestUnavailable, fault.sentence, {}}, kManifest, ++count);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, AManifestThatIsNotWholeOrTooLargeEndsTheRun) {
    const std::string beyond(update::kMaxManifestBytes + 1, 'm');
    const Sentence truncated = testing::StartsWith("Manifest ");
    const std::string manifest = renderManifest(ChannelRun("example").manifest);
    const std::vector<std::pair<Fault, std::string>> faults{
        {{"one-too-many", "", kTooLarge}, beyond},
        {{"one-too-many-unadvertised", "length=none", kNotStored}, beyond},
        {{"one-too-many-in-chunks", "chunked=yes", kNotStored}, beyond},
        {{"at-the-limit-but-no-manifest", "", "Manifest header is invalid."}, beyond.substr(1)},
        {{"empty", "", "Manifest size is invalid."}, ""},
        {{"empty-unadvertised", "length=none", "Manifest size is invalid."}, ""},
        {{"wrong-content", "", "Manifest header is invalid."}, "<html>Maintenance</html>"},
        {{"longer-than-advertised", "length=100", AnyOf(truncated, MatchesRegex(kEndedUnexpectedly))}, manifest},
        {{"chunks-cut", "chunked=yes send=100", AnyOf(truncated, MatchesRegex(kReadFailed))}, manifest},
        {{"unadvertised-cut", "length=none send=100", truncated}, manifest},
    };
    std::size_t count = 0;
    for (const auto& [fault, content] : faults) {
        serve(kManifest, fault.how + body(content));
        start(newRun(fault.name), {kManifestUnavailable, fault.sentence, {}}, kManifest, ++count);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, AManifestOfTheLimitIsRead) {
    ChannelRun& run = newRun("at-the-limit");
    const std::size_t missing = update::kMaxManifestBytes - renderManifest(run.manifest).size();
    run.manifest.size.insert(0, missing, '0');
    serveManifest(run);
    serve(run.inventoryName(), "status=404");
    servePackage(run);
    start(run, {0, "", "full"}, kManifest, 1);
    finishAll();
}

TEST_F(ChannelFaultTest, APackageThatCannotBeFetchedEndsTheRun) {
    for (const Fault& fault : faultsOfAnyDownload()) {
        ChannelRun& run = newRun(fault.name);
        serveManifest(run);
        serve(run.inventoryName(), "status=404");
        serve(run.packageName(), fault.how + packageBody(run));
        start(run, {kDownloadFailed, fault.sentence, {}}, run.packageName(), 1);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, APackageThatDiffersFromItsManifestEndsTheRun) {
    const std::string package = readFile(Scenario().release.package);
    const std::string beyond = package + "x";
    std::string different = package;
    different[different.size() / 2] ^= 1;
    const std::string cut = " send=" + std::to_string(package.size() - 1) + " ";
    struct Case {
        Fault fault;
        std::string content;
        int exitCode = kDownloadFailed;
    };
    const Sentence anyReadFault = AnyOf(MatchesRegex(kReadFailed), MatchesRegex(kEndedUnexpectedly));
    const std::vector<Case> cases{
        {{"one-too-many", "", kTooLarge}, beyond},
        {{"one-too-many-unadvertised", "length=none", kNotStored}, beyond},
        {{"one-too-many-in-chunks", "chunked=yes", kNotStored}, beyond},
        {{"one-short", "", kPackageSizeWrong}, package.substr(1), kWrongSize},
        {{"one-short-unadvertised", "length=none" + cut, kPackageSizeWrong}, package, kWrongSize},
        {{"empty", "", kPackageSizeWrong}, "", kWrongSize},
        {{"wrong-content", "", kPackageDigestWrong}, different, kWrongDigest},
        {{"one-short-of-advertised", cut, kWrongLength}, package},
    };
    for (const Case& item : cases) {
        ChannelRun& run = newRun(item.fault.name);
        run.manifest.size = std::to_string(package.size());
        run.manifest.sha256 = sha256TextOf(package);
        serveManifest(run);
        serve(run.inventoryName(), "status=404");
        serve(run.packageName(), item.fault.how + body(item.content));
        start(run, {item.exitCode, item.fault.sentence, {}}, run.packageName(), 1);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, APackageIsInstalledHoweverItsBytesArrive) {
    for (const char* how : {"", "length=none", "chunked=yes piece=5000", "piece=200000 pause=0.2"}) {
        ChannelRun& run = newRun("way" + std::to_string(std::string(how).size()));
        serveManifest(run);
        serve(run.inventoryName(), "status=404");
        serve(run.packageName(), how + packageBody(run));
        start(run, {0, "", "full"}, run.packageName(), 1);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, AnInventoryFaultLeadsToTheCompletePackage) {
    std::vector<Fault> faults = someFaultsOfAnyDownload();
    const std::string beyond(update::kMaxInventoryBytes + 1, 'i');
    const std::string atLimit = body(beyond.substr(1));
    const std::string tooLarge = body(beyond);
    faults.push_back({"one-too-many", tooLarge, ""});
    faults.push_back({"one-too-many-unadvertised", "length=none" + tooLarge, ""});
    faults.push_back({"at-the-limit-but-no-inventory", atLimit, ""});
    faults.push_back({"empty", "send=0 length=0", ""});
    faults.push_back({"truncated", "length=none send=100", ""});
    faults.push_back({"wrong-content", body("KVN-FILES/1\narchive=another\n"), ""});
    faults.push_back({"chunks-cut", "chunked=yes send=100", ""});
    for (const Fault& fault : faults) {
        ChannelRun& run = newRun(fault.name);
        serveManifest(run);
        const bool hasBody = fault.how.find("body=") != std::string::npos;
        serve(run.inventoryName(), fault.how + (hasBody ? "" : inventoryBody(run)));
        servePackage(run);
        start(run, {0, "", "full"}, run.inventoryName(), 1);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, AnInventoryOfTheLimitIsRead) {
    ChannelRun& run = newRun("at-the-limit");
    std::string inventory = renderInventory(run.manifest, sampleRelease42());
    // Zeros before the last record's size.
    inventory.insert(inventory.rfind('\t', inventory.rfind('\t') - 1) + 1,
                     update::kMaxInventoryBytes - inventory.size(), '0');
    serveManifest(run);
    serve(run.inventoryName(), body(inventory));
    for (const auto& [name, content] : changedObjects())
        serve(name, body(content));
    start(run, {0, "", "incremental"}, run.inventoryName(), 1);
    finishAll();
}

// The fault is in the second object, so that part of the release is staged already when it occurs.
TEST_F(ChannelFaultTest, AnObjectFaultLeadsToTheCompletePackage) {
    const auto objects = changedObjects();
    const auto& [firstName, firstContent] = objects.at(0);
    const auto& [name, content] = objects.at(1);
    std::string different = content;
    different.front() ^= 1;
    std::vector<Fault> faults = someFaultsOfAnyDownload();
    faults.push_back({"one-too-many", body(content + "x"), ""});
    faults.push_back({"one-too-many-unadvertised", "length=none" + body(content + "x"), ""});
    faults.push_back({"one-too-many-in-chunks", "chunked=yes" + body(content + "x"), ""});
    faults.push_back({"one-short", body(content.substr(1)), ""});
    faults.push_back({"one-short-unadvertised", "length=none" + body(content.substr(1)), ""});
    faults.push_back({"empty", "length=0 send=0", ""});
    faults.push_back({"wrong-content", body(different), ""});
    faults.push_back({"chunks-cut", "chunked=yes send=10", ""});
    std::size_t count = 0;
    for (const Fault& fault : faults) {
        ChannelRun& run = newRun(fault.name);
        serveManifest(run);
        serveInventory(run);
        serve(firstName, body(firstContent));
        const bool hasBody = fault.how.find("body=") != std::string::npos;
        serve(name, fault.how + (hasBody ? "" : body(content)));
        servePackage(run);
        start(run, {0, "", "full"}, name, ++count);
    }
    finishAll();
}

TEST_F(ChannelFaultTest, ACertificateThatIsNotInOrderEndsTheRun) {
    for (const char* bad : {"expired", "wrong-host", "self-signed", "unknown"}) {
        server.useCertificate(bad);
        ChannelRun& run = newRun(bad);
        run.start({kManifestUnavailable, MatchesRegex(kRequestFailed), {}});
        finishAll();
    }
}

TEST_F(ChannelFaultTest, AHandshakeThatIsCutEndsTheRun) {
    server.setHandshake("cut");
    newRun("cut").start({kManifestUnavailable, MatchesRegex(kRequestFailed), {}});
    finishAll();
}

// The server's certificate becomes bad between two downloads. The program must not trust a connection because of an
// earlier one.
TEST_F(ChannelFaultTest, EveryDownloadChecksTheCertificate) {
    ChannelRun& run = newRun("turned");
    serve(kManifest, "piece=100 pause=0.3" + body(renderManifest(run.manifest)));
    start(run, {kDownloadFailed, MatchesRegex(kRequestFailed), {}}, kManifest, 1);
    server.useCertificate("unknown");
    finishAll();
}

TEST(ChannelWithoutServer, ARefusedConnectionEndsTheRun) {
    ChannelRun run("refused");
    run.start({kManifestUnavailable, MatchesRegex(kRequestFailed), {}});
    run.finish(kRunLimit);
}

}  // namespace
}  // namespace vorthmere::end_to_end
