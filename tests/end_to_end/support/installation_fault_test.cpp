#include "tests/end_to_end/support/installation_fault_test.h"

#include "tests/end_to_end/support/programs.h"

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;
namespace {

ReleaseFiles filesOfBoth(const std::string& release) {
    return {{"KVNUpdater.exe", {"the updater of release " + release}},
            {"data/kept.pak", {"the same in both"}},
            {"docs/manual.txt", {"How to play release " + release + ".\n"}}};
}

ReleaseFiles oldFiles() {
    ReleaseFiles files = filesOfBoth("41");
    files["Vorthmere.exe"] = {"the old game"};
    files["data/old/dropped.pak"] = {"only in the old release"};
    return withReleaseMetadata(std::move(files), 41);
}

/// With a game that cannot be started.
ReleaseFiles newFiles() {
    ReleaseFiles files = filesOfBoth("42");
    files["Vorthmere.exe"] = {"no program"};
    files["data/new/added.pak"] = {"only in the new release"};
    return withReleaseMetadata(std::move(files), 42);
}

}  // namespace

MovedAside::MovedAside(fs::path path, fs::path place) : path_(std::move(path)), place_(std::move(place)) {
    fs::rename(path_, place_);
}

MovedAside::~MovedAside() {
    fs::remove_all(path_);
    fs::rename(place_, path_);
}

InstallationFaultTest::InstallationFaultTest() : EndToEndTest({.installed = oldFiles(), .offered = newFiles()}) {
    // Not the installation's own, which is no program here.
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
