#include <gmock/gmock.h>

#include "tests/end_to_end/support/window_fixture.h"

namespace vorthmere::end_to_end {
namespace {

using testing::ElementsAre;

using Words = std::vector<std::string>;

constexpr char kCommandLineRejected[] = "exit=0x00000002";
constexpr unsigned long kNoOwner = 0;
constexpr unsigned long kErrorIcon = 0x10;
constexpr Milliseconds kLineLimit{60'000};

struct Rejection {
    const char* name;
    Words words;
    std::string sentence;
};

void PrintTo(const Rejection& rejection, std::ostream* out) {
    *out << testing::PrintToString(rejection.words);
}

class MessageBoxTest : public WindowTest, public testing::WithParamInterface<Rejection> {
protected:
    /// Everything that the probe prints about a run with this command line.
    Words runToItsEnd(const Words& words) {
        ChildProcess probe = startThroughProbe("message-box", words, traced());
        Words lines;
        do {
            lines.push_back(probe.readLine(kLineLimit));
        } while (!lines.back().empty() && !lines.back().starts_with("exit="));
        return lines;
    }
};

TEST_P(MessageBoxTest, RejectedCommandLineIsShownAsAnErrorWithoutOwner) {
    EXPECT_THAT(runToItsEnd(GetParam().words), ElementsAre("caption=Kelvane Updater", "Static=", "Button=OK",
                                                           "Static=" + GetParam().sentence, kCommandLineRejected));
    const std::vector<TracedCall> boxes = trace().callsOf("user32.MessageBoxW");
    ASSERT_EQ(boxes.size(), 1u);
    EXPECT_THAT(boxes[0].texts(), ElementsAre(GetParam().sentence, "Kelvane Updater"));
    EXPECT_THAT(boxes[0].numbers(), ElementsAre(kNoOwner, kErrorIcon));
}

const Words kValid = {"--apply", "--install", "C:\\Game", "--current", "41"};

Words validAnd(const Words& more) {
    Words words = kValid;
    words.insert(words.end(), more.begin(), more.end());
    return words;
}

const std::string kUsage = "Usage: KVNUpdater --apply --install <folder> --parent <pid> --current <release>";
const std::string kMissing = "The updater command line is missing the installation or release.";

std::vector<Rejection> faultsBehindApply() {
    return {
        {"OptionWithoutValue", {"--apply", "--install"}, "The updater command line is invalid."},
        {"NoRelease", {"--apply", "--install", "C:\\Game"}, kMissing},
        {"ParentIsNoNumber", validAnd({"--parent", "x"}), "The updater parent process is invalid."},
        {"UnknownOption", validAnd({"--foo", "bar"}), "The updater command line contains an unknown option."},
        {"ManifestAlone", validAnd({"--manifest-file", "m"}),
         "Local update testing requires both a manifest file and a package file."},
        {"InventoryWithoutManifest", validAnd({"--inventory-file", "i", "--object-directory", "o"}),
         "Local incremental testing requires a manifest, package, inventory, and object directory."},
        // The flag counts only for faults after it.
        {"FlagBehindTheFault", {"--apply", "stray", "value", "--test-no-ui"}, "The updater command line is invalid."},
    };
}

std::string nameOf(const testing::TestParamInfo<Rejection>& rejection) {
    return rejection.param.name;
}

INSTANTIATE_TEST_SUITE_P(AtTheStart, MessageBoxTest,
                         testing::Values(Rejection{"Nothing", {}, kUsage},
                                         Rejection{"FlagFirst", {"--test-no-ui", "--apply"}, kUsage}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(BehindApply, MessageBoxTest, testing::ValuesIn(faultsBehindApply()), nameOf);

class SilentRejectionTest : public MessageBoxTest {};

TEST_P(SilentRejectionTest, NothingIsShownWhenTheFlagComesBeforeTheFault) {
    Words words = GetParam().words;
    words.insert(words.begin() + 1, "--test-no-ui");
    EXPECT_THAT(runToItsEnd(words), ElementsAre(kCommandLineRejected));
}

INSTANTIATE_TEST_SUITE_P(BehindApply, SilentRejectionTest, testing::ValuesIn(faultsBehindApply()), nameOf);

}  // namespace
}  // namespace vorthmere::end_to_end
