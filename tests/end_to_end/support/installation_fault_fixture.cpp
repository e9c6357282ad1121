#include "tests/end_to_end/support/installation_fault_fixture.h"

#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
MovedAside::MovedAside(fs::path path, fs::path place) : path_(std::move(path)), place_(std::move(place)) {
    fs::rename(path_, place_);
}

MovedAside::~MovedAside() {
    fs::remove_all(path_);
    fs::rename(place_, path_);
}

InstallationFaultTest::InstallationFaultTest() : EndToEndTest(smallUpdate()) {
    // The installation's own updater is no program here.
    useUpdater(updaterProgram());
}

std::set<std::string> InstallationFaultTest::filesIn(const char* folder) const {
    std::set<std::string> paths;
    if (fs::exists(scenario.workFolder / folder))
        for (const auto& [path, entry] : filesOnly(takeSnapshot(scenario.workFolder / folder)))
            paths.insert(path);
    return paths;
}

}  // namespace vorthmere::end_to_end
