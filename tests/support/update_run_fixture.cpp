#include "tests/support/update_run_fixture.h"

#include "updater/update_run.h"

namespace vorthmere::update::testing {

UpdateRunTest::UpdateRunTest(const std::wstring& installationName) : install(folder / installationName) {
    writeTree(install, oldFiles);
    writeTree(install, unmanaged_);
    writeTree(folder.path(), outside_);
    arguments.install = install;
    arguments.currentRelease = 41;
    arguments.noRelaunch = true;
    arguments.testNoUi = true;
}

void UpdateRunTest::TearDown() {
    const FileTree present = readTree(folder.path());
    for (const auto& [path, content] : unmanaged_)
        EXPECT_EQ(readTree(install, ".kvn-update")[path], content) << path;
    for (const auto& [path, content] : outside_)
        EXPECT_EQ(present.contains(path) ? present.at(path) : "(gone)", content) << path;
}

void UpdateRunTest::publish(const FileTree& files) {
    newFiles = files;
    release = std::make_unique<LocalRelease>(folder / L"local inputs", files, 42);
    release->offerPackage(arguments);
}

int UpdateRunTest::run() {
    error.clear();
    return runUpdate(arguments, error, progress.callback());
}

void UpdateRunTest::expectFailure(int code, const std::wstring& sentence) {
    EXPECT_EQ(run(), code);
    EXPECT_EQ(error, sentence);
    EXPECT_EQ(installedFiles(), oldFiles);
}

FileTree UpdateRunTest::installedFiles() const {
    FileTree files = readTree(install, ".kvn-update");
    for (const auto& [path, content] : unmanaged_)
        files.erase(path);
    return files;
}

}  // namespace vorthmere::update::testing
