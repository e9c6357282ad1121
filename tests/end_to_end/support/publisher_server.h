#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "tests/end_to_end/support/child_process.h"

namespace vorthmere::end_to_end {

/// nginx with the configuration in docs/publishing.md, adapted to this machine.
class DocumentedServer {
public:
    /// @param root the folder that holds the channel folder "downloads"
    /// @param run  a folder for the server's own files
    DocumentedServer(const std::filesystem::path& root, const std::filesystem::path& run);
    DocumentedServer(const DocumentedServer&) = delete;
    DocumentedServer& operator=(const DocumentedServer&) = delete;
    ~DocumentedServer();

private:
    std::unique_ptr<ChildProcess> nginx_;
};

/// The test channel's answers for some files, a line each, as tests/end_to_end/support/get_headers.py prints them.
/// Waits for a server that has just been started.
[[nodiscard]] std::vector<std::string> answersFor(const std::vector<std::string>& names);

}  // namespace vorthmere::end_to_end
