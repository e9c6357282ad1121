#include "tests/end_to_end/support/publisher_server.h"

#include <unistd.h>

#include <stdexcept>

#include "tests/end_to_end/support/channel.h"
#include "tests/end_to_end/support/files.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

constexpr Milliseconds kAnswerLimit{30'000};

std::string documentedConfiguration() {
    const std::string document = readFile(fs::path(KVN_SOURCE_FOLDER) / "docs/publishing.md");
    const std::string opening = "```nginx\n";
    const std::size_t begin = document.find(opening);
    const std::size_t end = document.find("```", begin + opening.size());
    if (begin == std::string::npos || end == std::string::npos)
        throw std::runtime_error("docs/publishing.md has no nginx configuration");
    return document.substr(begin + opening.size(), end - begin - opening.size());
}

void replace(std::string& text, const std::string& what, const std::string& with) {
    const std::size_t position = text.find(what);
    if (position == std::string::npos) throw std::runtime_error("the documented configuration lacks " + what);
    text.replace(position, what.size(), with);
}

}  // namespace

DocumentedServer::DocumentedServer(const fs::path& root, const fs::path& run) {
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
                  "/pid\";\ndaemon off;\nmaster_process off;\nevents {}\nhttp {\naccess_log off;\n" + paths + server +
                  "}\n");
    const std::string log = (run / "error.log").string();
    nginx_ = std::make_unique<ChildProcess>(std::vector<std::string>{
        "/usr/bin/env", "nginx", "-e", log, "-p", run.string(), "-c", (run / "nginx.conf").string()});
}

DocumentedServer::~DocumentedServer() {
    nginx_->killGroup();
    nginx_->wait(kAnswerLimit);
}

std::vector<std::string> answersFor(const std::vector<std::string>& names) {
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

}  // namespace vorthmere::end_to_end
