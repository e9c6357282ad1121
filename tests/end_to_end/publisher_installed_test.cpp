// "cmake --install": the manual page and the completion match the tool.

#include <gmock/gmock.h>

#include <regex>
#include <set>

#include "tests/end_to_end/support/files.h"
#include "tests/end_to_end/support/publisher.h"

namespace vorthmere::end_to_end {
namespace {

namespace fs = std::filesystem;

std::set<std::string> optionsIn(const std::string& text) {
    const std::regex option("--[a-z][a-z-]+");
    std::set<std::string> options;
    for (auto found = std::sregex_iterator(text.begin(), text.end(), option); found != std::sregex_iterator(); ++found)
        options.insert(found->str());
    return options;
}

std::set<std::string> optionsOfTheTool() {
    std::set<std::string> options;
    for (const std::string command : {"build", "check", "plan", "gc"})
        options.merge(optionsIn(runPublisher({command, "--help"}).output));
    return options;
}

TEST(PublisherInstalled, ManualPageAndCompletionKnowEveryOption) {
    const fs::path folder = fs::path(KVN_SOURCE_FOLDER) / "publisher";
    std::set<std::string> wanted = optionsOfTheTool();
    EXPECT_EQ(optionsIn(readFile(folder / "kvn-release.bash-completion")), wanted);
    wanted.erase("--help");
    EXPECT_EQ(optionsIn(readFile(folder / "kvn-release.1")), wanted);
}

}  // namespace
}  // namespace vorthmere::end_to_end
