#pragma once

#include <set>

#include "tests/end_to_end/support/base_fixture.h"

namespace vorthmere::end_to_end {

/// Moves a file or folder aside for as long as the object lives. The destructor removes whatever took its place.
class MovedAside {
public:
    MovedAside(std::filesystem::path path, std::filesystem::path place);
    MovedAside(const MovedAside&) = delete;
    MovedAside& operator=(const MovedAside&) = delete;
    ~MovedAside();

private:
    std::filesystem::path path_;
    std::filesystem::path place_;
};

/// Makes steps of the installation of a small update fail.
class InstallationFaultTest : public EndToEndTest {
protected:
    InstallationFaultTest();

    /// The files below a folder of the work folder.
    [[nodiscard]] std::set<std::string> filesIn(const char* folder) const;

    const std::vector<std::string> oldPaths = managedFileOrder(scenario.installed);
    const std::vector<std::string> newPaths = managedFileOrder(scenario.offered);
};

}  // namespace vorthmere::end_to_end
