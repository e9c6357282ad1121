#include "tests/end_to_end/support/publisher_fixture.h"

#include <algorithm>

#include "tests/end_to_end/support/files.h"

namespace vorthmere::end_to_end {

PublisherTest::PublisherTest() {
    writeFile(game_ / "Vorthmere.exe", "the game");
    writeFile(game_ / "KVNUpdater.exe", "the updater");
}

ToolEnd PublisherTest::build(std::uint32_t release, const std::vector<std::string>& options) const {
    std::vector<std::string> arguments = buildArguments(release, game_, channel_);
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runPublisher(arguments);
}

ToolEnd PublisherTest::check(const std::vector<std::string>& options) const {
    std::vector<std::string> arguments{"check", "--channel", channel_.string()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return runPublisher(arguments);
}

void PublisherTest::publish(std::uint32_t release) const {
    const ToolEnd end = build(release);
    ASSERT_EQ(end.exitCode, 0) << end.output;
}

std::vector<std::string> PublisherTest::namesInChannel() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(channel_))
        if (const std::string name = entry.path().filename().string(); !name.starts_with("KVN-file-"))
            names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace vorthmere::end_to_end
