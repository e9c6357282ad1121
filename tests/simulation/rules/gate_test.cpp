#include "tests/simulation/gate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <system_error>
#include <vector>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/streams.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

Machine machineWithGame() {
    Machine machine;
    machine.files.putFile("C:/Games/KVNUpdater.exe", contentOf("MZ updater"));
    machine.files.putFile("C:/Games/a.pak", contentOf("old"));
    machine.beginCaller("C:/Games/KVNUpdater.exe", "C:/");
    return machine;
}

Plan planOf(Trigger trigger, Action action) {
    return {{std::move(trigger), std::move(action)}};
}

TEST(Gate, WritesDownEachCallWithItsPathsAndResult) {
    Machine machine = machineWithGame();
    Gate gate(machine, {});
    {
        const Running running(gate);
        EXPECT_FALSE(createFolder("C:/Games/new"));
        EXPECT_EQ(moveFile("C:/Games/b.pak", "C:/Games/c.pak").value(), 2);
        std::error_code failure;
        const FileHandle file = openToRead("C:/Games/a.pak", failure);
    }
    std::vector<std::string> log;
    for (const Call& call : gate.calls())
        log.push_back(describe(call));
    EXPECT_THAT(log, ElementsAre("0 createFolder C:/Games/new = 0", "1 moveFile C:/Games/b.pak -> C:/Games/c.pak = 2",
                                 "2 openToRead C:/Games/a.pak = 0", "3 closeFileHandle C:/Games/a.pak = 0"));
    EXPECT_THAT(machine.openHandles(), IsEmpty());
}

TEST(Gate, FailsACallOnceWithoutItsEffect) {
    Machine machine = machineWithGame();
    Gate gate(machine, planOf({Operation::deleteFile, "", 0}, Fault{.error = 32}));
    const Running running(gate);
    EXPECT_EQ(deleteFile("C:/Games/a.pak").value(), 32);
    EXPECT_TRUE(machine.files.find("C:/Games/a.pak"));
    EXPECT_FALSE(deleteFile("C:/Games/a.pak"));
    EXPECT_TRUE(gate.metAll());
}

}  // namespace
}  // namespace vorthmere::update::simulation
