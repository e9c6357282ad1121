#include "files/file_status.h"

#include "tests/simulation/core/bench.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::IsEmpty;

class FileStatusTest : public CoreTest {
protected:
    FileStatusTest() {
        machine.files.putFile("C:/Test/a", contentOf("a"));
    }

    std::error_code failure;
};

TEST_F(FileStatusTest, AnEntryThatIsNoLinkIsNotOpened) {
    EXPECT_EQ(fileType("C:/Test/a", failure), FileType::regular);
    EXPECT_EQ(fileSize("C:/Test/a", failure), 1U);
    EXPECT_THAT(callsOf(Operation::targetFacts), IsEmpty());
}

TEST_F(FileStatusTest, ADeviceIsNeitherFileNorFolder) {
    constexpr std::uint32_t device = 0x40;
    machine.files.disk.at(machine.files.entryOf("C:/Test/a")).attributes |= device;
    EXPECT_EQ(fileType("C:/Test/a", failure), FileType::other);
    EXPECT_EQ(entryType("C:/Test/a", failure), FileType::other);
    EXPECT_EQ(fileSize("C:/Test/a", failure), 0U);
    EXPECT_TRUE(failure);
}

}  // namespace
}  // namespace vorthmere::update::simulation
