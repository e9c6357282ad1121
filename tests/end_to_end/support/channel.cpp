#include "tests/end_to_end/support/channel.h"

#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/programs.h"
#include "update/release_channel.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

constexpr Milliseconds kToolLimit{60'000};
constexpr Milliseconds kCommandLimit{40'000};
constexpr std::string_view kScheme = "https://";

const std::string kSources = KVN_SOURCE_FOLDER;

void runTool(const std::vector<std::string>& command, const ProcessOptions& options = {}) {
    const ProcessEnd end = ChildProcess(command, options).wait(kToolLimit);
    if (end.exitCode != 0) throw std::runtime_error(command.front() + " failed");
}

/// Makes the Wine prefix trust the authority. When Wine's session is killed, the prefix may lose that again.
void trustAuthority(const fs::path& certificate) {
    const fs::path session = winePrefix() / "kelvane-session";
    const fs::path mark = winePrefix() / "kelvane-authority";
    const auto trusted = [&] { return readFile(session) + readFile(certificate); };
    if (exists(mark) && exists(session) && readFile(mark) == trusted()) return;
    runTool(wineCommand(probeProgram(), {"trust", windowsPath(certificate)}));
    writeFile(mark, trusted());
}

/// Takes the first two and the last two fields of a line; nginx writes more fields between them.
ChannelRequest parseRequest(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream text(line);
    for (std::string field; std::getline(text, field, '\t');)
        fields.push_back(field);
    if (fields.size() < 4) throw std::runtime_error("not a request: " + line);
    return {fields[0], fields[1], fields[fields.size() - 2], fields.back()};
}

}  // namespace

std::string channelAuthority() {
    const std::string_view rest = update::kDownloadBaseUrl.substr(kScheme.size());
    return std::string(rest.substr(0, rest.find('/')));
}

unsigned channelPort() {
    const std::string authority = channelAuthority();
    const std::size_t colon = authority.find(':');
    return colon == std::string::npos ? 443U : static_cast<unsigned>(std::stoul(authority.substr(colon + 1)));
}

std::string channelPath(const std::string& name) {
    return std::string(update::kDownloadBaseUrl.substr(kScheme.size() + channelAuthority().size())) + name;
}

std::string channelUrl(const std::string& name) {
    return std::string(update::kDownloadBaseUrl) + name;
}

ChannelRequest requestFor(const std::string& name) {
    return {"GET", channelPath(name), "KelvaneAlphaUpdater/1.0", "no-cache"};
}

fs::path channelCertificates() {
    const std::string host = channelAuthority().substr(0, channelAuthority().find(':'));
    const fs::path folder = fs::path(KVN_CHANNEL_CERTIFICATES) / host;
    const auto age = [&folder] { return fs::file_time_type::clock::now() - fs::last_write_time(folder); };
    if (!exists(folder) || age() > std::chrono::hours(24)) {
        fs::remove_all(folder);
        runTool({kSources + "/scripts/channel-certificates", folder.string(), host});
    }
    trustAuthority(folder / "authority.der");
    return folder;
}

PlainChannel::PlainChannel(const fs::path& channelFolder) {
    fs::copy(channelCertificates(), run_ / "certificates");
    ProcessOptions options;
    options.environment = {"KVN_DOWNLOAD_BASE_URL=" + std::string(update::kDownloadBaseUrl)};
    options.outputFile = run_ / "start.log";
    runTool({kSources + "/scripts/channel-server", "start", channelFolder.string(), run_.path().string()}, options);
}

PlainChannel::~PlainChannel() {
    ProcessOptions options;
    options.outputFile = run_ / "stop.log";
    ChildProcess stop({kSources + "/scripts/channel-server", "stop", run_.path().string()}, options);
    EXPECT_EQ(stop.wait(kToolLimit).exitCode, 0) << "the channel's server did not stop";
}

std::vector<ChannelRequest> PlainChannel::requests() const {
    std::vector<ChannelRequest> requests;
    std::ifstream log(run_ / "access.log");
    for (std::string line; std::getline(log, line);)
        requests.push_back(parseRequest(line));
    return requests;
}

FaultServer::FaultServer()
    : server_({"/usr/bin/python3", kSources + "/tests/end_to_end/support/fault_server.py",
               channelCertificates().string(), std::to_string(channelPort())}) {
    if (server_.readLine(kCommandLimit) != ".")
        throw std::runtime_error("the fault server does not start; is port " + std::to_string(channelPort()) +
                                 " in use?");
}

FaultServer::~FaultServer() {
    for (const std::string& problem : command("problems"))
        ADD_FAILURE() << problem;
    server_.closeInput();
    server_.wait(kToolLimit);
}

std::vector<std::string> FaultServer::command(const std::string& line) {
    server_.writeLine(line);
    std::vector<std::string> replies;
    while (true) {
        std::string reply = server_.readLine(kCommandLimit);
        if (reply == ".") return replies;
        if (reply.empty()) {
            ADD_FAILURE() << "the fault server does not answer: " << line;
            return replies;
        }
        replies.push_back(std::move(reply));
    }
}

void FaultServer::answer(const std::string& path, const std::string& how) {
    EXPECT_EQ(command("answer " + path + " " + how), std::vector<std::string>{});
}

void FaultServer::useCertificate(const std::string& name) {
    EXPECT_EQ(command("certificate " + name), std::vector<std::string>{});
}

void FaultServer::setHandshake(const std::string& mode) {
    EXPECT_EQ(command("handshake " + mode), std::vector<std::string>{});
}

void FaultServer::waitForRequests(const std::string& path, std::size_t count) {
    EXPECT_EQ(command("wait " + path + " " + std::to_string(count)), std::vector<std::string>{});
}

void FaultServer::release() {
    command("release");
}

std::vector<ChannelRequest> FaultServer::requests() {
    std::vector<ChannelRequest> requests;
    for (const std::string& line : command("requests"))
        requests.push_back(parseRequest(line));
    return requests;
}

}  // namespace vorthmere::end_to_end
