#include "tests/simulation/gate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/failure.h"
#include "platform/programs.h"
#include "platform/streams.h"
#include "tests/simulation/rules/desk.h"

namespace vorthmere::update::simulation {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> logOf(const Gate& gate) {
    std::vector<std::string> log;
    for (const Call& call : gate.calls())
        log.push_back(describe(call));
    return log;
}

TEST(Gate, WritesDownEachCallWithItsPathsAndResult) {
    Machine machine = desk();
    Gate gate(machine, {});
    {
        const Running running(gate);
        EXPECT_FALSE(createFolder("C:/Desk/new"));
        EXPECT_EQ(moveFile("C:/Desk/none", "C:/Desk/new/b").value(), 2);
        std::error_code failure;
        const FileHandle file = openToRead("C:/Desk/plain", failure);
    }
    EXPECT_THAT(logOf(gate),
                ElementsAre("0 createFolder C:/Desk/new = 0", "1 moveFile C:/Desk/none -> C:/Desk/new/b = 2",
                            "2 openToRead C:/Desk/plain = 0", "3 closeFileHandle C:/Desk/plain = 0"));
    EXPECT_THAT(machine.openHandles(), IsEmpty());
    EXPECT_EQ(machine.wrongHandles, 0U);
}

TEST(Gate, FailsACallOnceWithoutItsEffect) {
    Machine machine = desk();
    Gate gate(machine, {{{Operation::deleteFile}, Fault{.error = 32}}});
    const Running running(gate);
    EXPECT_EQ(deleteFile("C:/Desk/plain").value(), 32);
    EXPECT_EQ(lastErrorNumber(), 32);
    EXPECT_EQ(contentAt(machine.files, "plain"), "plain");
    EXPECT_FALSE(deleteFile("C:/Desk/plain"));
    EXPECT_TRUE(gate.calls()[0].isHarmed);
    EXPECT_FALSE(gate.calls()[2].isHarmed);
    EXPECT_EQ(gate.timesMet(0), 1U);
}

TEST(Gate, FailsACallForGoodOnItsOwnPath) {
    Machine machine = desk();
    Gate gate(machine, {{{Operation::deleteFile, "", 1}, Fault{.error = 32, .always = true}}});
    const Running running(gate);
    EXPECT_FALSE(deleteFile("C:/Desk/hidden"));
    EXPECT_EQ(deleteFile("C:/Desk/plain").value(), 32);
    EXPECT_FALSE(deleteFile("C:/Desk/other"));
    EXPECT_EQ(deleteFile("c:/desk/PLAIN").value(), 32);
    EXPECT_FALSE(moveFile("C:/Desk/plain", "C:/Desk/other"));
    EXPECT_EQ(gate.timesMet(0), 2U);
}

TEST(Gate, FailsACallThatDoesItsWorkAllTheSame) {
    Machine machine = desk();
    Gate gate(machine, {{{Operation::moveFile}, Fault{.error = 64, .effect = Extent::whole}},
                        {{Operation::createToWrite}, Fault{.error = 64, .effect = Extent::whole}}});
    const Running running(gate);
    EXPECT_EQ(moveFile("C:/Desk/plain", "C:/Desk/moved").value(), 64);
    EXPECT_EQ(contentAt(machine.files, "moved"), "plain");
    std::error_code failure;
    EXPECT_FALSE(createToWrite("C:/Desk/new", failure));
    EXPECT_EQ(failure.value(), 64);
    EXPECT_EQ(contentAt(machine.files, "new"), "");
    EXPECT_THAT(machine.openHandles(), IsEmpty());
    EXPECT_TRUE(gate.metAll());
}

TEST(Gate, CountsTheCallsThatATriggerMeans) {
    const auto firstHarmed = [](const Trigger& trigger) {
        Machine machine = desk();
        Gate gate(machine, {{trigger, Fault{.error = 5}}});
        const Running running(gate);
        for (const char* path : {"C:/Desk/plain", "C:/Desk/other", "C:/Desk/plain", "C:/Desk/other"}) {
            std::error_code failure;
            (void)entryAttributes(path, failure);
            (void)entryFacts(path, failure);
        }
        for (const Call& call : gate.calls())
            if (call.isHarmed) return static_cast<int>(call.number);
        EXPECT_FALSE(gate.metAll());
        return -1;
    };
    EXPECT_EQ(firstHarmed({}), 0);
    EXPECT_EQ(firstHarmed({{}, "", 3}), 3);
    EXPECT_EQ(firstHarmed({Operation::entryFacts, "", 2}), 5);
    EXPECT_EQ(firstHarmed({Operation::entryFacts, "C:/Desk/other", 1}), 7);
    EXPECT_EQ(firstHarmed({{}, "c:/desk/OTHER", 1}), 3);
    EXPECT_EQ(firstHarmed({{}, "", 8}), -1);
    EXPECT_EQ(firstHarmed({Operation::moveFile, "", 0}), -1);
}

TEST(Gate, CutsAnswersShort) {
    Machine machine = desk();
    Gate gate(machine, {{{Operation::readBytes}, Fault{.error = 0, .effect = Extent::part}},
                        {{Operation::readBytes, "", 1}, Fault{.error = 0}},
                        {{Operation::listFolder}, Fault{.error = 64, .effect = Extent::part}},
                        {{Operation::writeBytes}, Fault{.error = 112, .effect = Extent::part}},
                        {{Operation::closeFile}, Fault{.error = 59, .effect = Extent::part}},
                        {{Operation::copyFile}, Fault{.error = 112, .effect = Extent::part}}});
    const Running running(gate);
    std::error_code failure;
    {
        const FileHandle file = openToRead("C:/Desk/plain", failure);
        char buffer[8] = {};
        EXPECT_EQ(readBytes(file, buffer, 8, failure), 4U);
        EXPECT_EQ(readBytes(file, buffer, 8, failure), 0U);
        EXPECT_FALSE(failure);
        EXPECT_EQ(readBytes(file, buffer, 8, failure), 1U);
    }
    const std::size_t all = machine.files.disk.at(machine.files.entryOf("C:/Desk")).children.size();
    EXPECT_EQ(listFolder("C:/Desk", failure).size(), all / 2);
    EXPECT_EQ(failure.value(), 64);
    FileHandle file = createToWrite("C:/Desk/new", failure);
    EXPECT_EQ(writeBytes(file, "12345678", 8).value(), 112);
    EXPECT_EQ(contentAt(machine.files, "new"), "1234");
    EXPECT_EQ(closeFile(std::move(file)).value(), 59);
    EXPECT_EQ(contentAt(machine.files, "new"), "12");
    EXPECT_EQ(copyFile("C:/Desk/plain", "C:/Desk/other", Overwrite::yes).value(), 112);
    EXPECT_EQ(spellingOf(machine.files, "other"), "(none)");
    EXPECT_TRUE(gate.metAll());
    EXPECT_THAT(machine.openHandles(), IsEmpty());
}

TEST(Gate, KillsTheProgramBeforeInOrAfterACall) {
    const auto killedAt = [](Extent effect) {
        Machine machine = desk();
        Gate gate(machine, {{{Operation::copyFile}, Kill{effect}}});
        std::error_code failure;
        try {
            const Running running(gate);
            const FileHandle file = openToRead("C:/Desk/other", failure);
            (void)copyFile("C:/Desk/plain", "C:/Desk/new", Overwrite::yes);
            ADD_FAILURE() << "the program goes on";
        } catch (const Crashed&) {
        }
        EXPECT_TRUE(machine.isFrozen());
        EXPECT_EQ(gate.calls().size(), 2U);
        EXPECT_THAT(machine.openHandles(), IsEmpty());
        EXPECT_EQ(machine.files.deleteFile("C:/Desk/other"), 0U);
        return contentAt(machine.files, "C:/Desk/new");
    };
    EXPECT_EQ(killedAt(Extent::none), "(none)");
    EXPECT_EQ(killedAt(Extent::part), std::string("pl\0\0\0", 5));
    EXPECT_EQ(killedAt(Extent::whole), "plain");
}

TEST(Gate, LetsAKilledProgramChangeNothingMore) {
    Machine machine = desk();
    Gate gate(machine, {{{Operation::closeFileHandle}, Kill{}}});
    const Running running(gate);
    std::error_code failure;
    FileHandle kept = openToRead("C:/Desk/other", failure);
    openToRead("C:/Desk/plain", failure).reset();
    EXPECT_TRUE(machine.isFrozen());
    EXPECT_THROW((void)deleteFile("C:/Desk/plain"), Crashed);
    kept.reset();
    EXPECT_EQ(gate.calls().size(), 3U);
    EXPECT_EQ(machine.wrongHandles, 0U);
    EXPECT_EQ(contentAt(machine.files, "C:/Desk/plain"), "plain");
}

TEST(Gate, LetsThePowerGo) {
    Machine machine = desk();
    Gate gate(machine, {{{Operation::closeFile}, PowerLoss{Extent::whole, {Fate::zero}}}});
    const Running running(gate);
    std::error_code failure;
    FileHandle file = createToWrite("C:/Desk/new", failure);
    EXPECT_FALSE(writeBytes(file, "12", 2));
    EXPECT_THROW((void)closeFile(std::move(file)), Crashed);
    EXPECT_EQ(contentAt(machine.files, "C:/Desk/new"), std::string(2, '\0'));
}

TEST(Gate, LetsOtherProgramsActBeforeACall) {
    Machine machine = desk();
    const Intrusion opens = {.kind = Intrusion::Kind::open, .path = "C:/Desk/plain"};
    const Intrusion fails = {.kind = Intrusion::Kind::remove, .path = "C:/Desk/none"};
    const Intrusion late = {.kind = Intrusion::Kind::remove, .path = "C:/Desk/other"};
    Gate gate(machine, {{{Operation::deleteFile}, opens}, {{Operation::deleteFile}, fails}, {{{}, "", 5}, late}});
    const Running running(gate);
    EXPECT_EQ(deleteFile("C:/Desk/plain").value(), 32);
    EXPECT_EQ(gate.answerTo(0), 0U);
    EXPECT_EQ(gate.answerTo(1), 2U);
    EXPECT_EQ(gate.timesMet(2), 0U);
    EXPECT_FALSE(gate.metAll());
    EXPECT_EQ(describe(gate.plan()[0]), "deleteFile 0: another program opens C:/Desk/plain for read, sharing nothing");
}

TEST(Gate, EndsAProgramThatWouldWaitForEver) {
    Machine machine = desk();
    machine.processes.programs["program.exe"] = {};
    ProcessId game = 0;
    ASSERT_EQ(machine.processes.start(machine.files, "C:/Desk/program.exe", "", "C:/Desk", 0, game), 0U);
    Gate gate(machine, {});
    const Running running(gate);
    std::error_code failure;
    const ProcessHandle process = openProcess(game, failure);
    EXPECT_FALSE(waitForEnd(process, 120000));
    EXPECT_THROW((void)waitForEnd(process, kWaitForever), Hung);
    EXPECT_TRUE(machine.isFrozen());
}

TEST(Gate, LetsArchiveToolsWorkAlongside) {
    Machine machine = desk();
    machine.files.putFile("C:/Desk/package.zip", contentOf(packageOf({{"a", "a"}, {"b", "b"}})));
    ProcessId tool = 0;
    ASSERT_EQ(machine.processes.start(machine.files, "C:/Windows/System32/tar.exe",
                                      "tar -xf C:/Desk/package.zip -C C:/Desk/empty", "C:/", 0, tool),
              0U);
    machine.processes.stepsAlongside = 2;
    Gate gate(machine, {});
    const Running running(gate);
    std::error_code failure;
    EXPECT_EQ(targetFacts("C:/Desk/empty/a", failure).size, 0U);
    EXPECT_FALSE(failure);
    (void)targetFacts("C:/Desk/empty/b", failure);
    EXPECT_FALSE(failure);
    (void)targetFacts("C:/Desk/empty/b", failure);
    EXPECT_FALSE(machine.processes.find(tool)->isRunning);
    EXPECT_EQ(contentAt(machine.files, "empty/b"), "b");
}

TEST(Gate, CountsWhatIsClosedTwice) {
    Machine machine = desk();
    Gate gate(machine, {});
    const Running running(gate);
    std::error_code failure;
    FileHandle file = openToRead("C:/Desk/plain", failure);
    closeFileHandle(file.get());
    EXPECT_EQ(machine.wrongHandles, 0U);
    file.reset();
    EXPECT_EQ(machine.wrongHandles, 1U);
}

TEST(Gate, RepeatsARunToTheLastCall) {
    const auto run = [] {
        Machine machine = desk();
        Gate gate(machine, {{{Operation::copyFile, "", 1}, Fault{.error = 112, .effect = Extent::part}}});
        const Running running(gate);
        std::error_code failure;
        for (int n = 0; n < 3; ++n) {
            (void)copyFile("C:/Desk/plain", "C:/Desk/new", Overwrite::yes);
            (void)listFolder("C:/Desk", failure);
        }
        return gate.calls();
    };
    EXPECT_EQ(run(), run());
}

TEST(Faults, AreKnownForEveryCallThatCanFailAndAreDifferent) {
    const std::set<Operation> cannotFail = {
        Operation::lastErrorNumber, Operation::closeFileHandle,     Operation::closeProcessHandle,
        Operation::closeDigest,     Operation::closeDigestProvider, Operation::closeInternetHandle,
        Operation::setTimeouts,     Operation::disableRedirects,    Operation::setHeader,
    };
    for (std::size_t n = 0; n < kOperations; ++n) {
        const auto operation = static_cast<Operation>(n);
        EXPECT_FALSE(nameOf(operation).empty());
        EXPECT_EQ(faultsOf(operation).empty(), cannotFail.contains(operation)) << nameOf(operation);
        std::set<std::string> texts;
        for (const Fault& fault : faultsOf(operation)) {
            EXPECT_FALSE(fault.always);
            EXPECT_TRUE(texts.insert(describe(fault)).second) << nameOf(operation) << " " << describe(fault);
        }
    }
}

TEST(Faults, AreDescribedInWords) {
    EXPECT_EQ(describe(Fault{.error = 32, .always = true}), "fails with 32 without effect, for good");
    EXPECT_EQ(describe(Action(Fault{.error = 64, .effect = Extent::whole})), "fails with 64 with its effect, once");
    EXPECT_EQ(describe(Action(Kill{Extent::part})), "the program is killed, the call with part of its effect");
    EXPECT_EQ(describe(Action(PowerLoss{Extent::none, {Fate::zero, Fate::drop}})),
              "the power goes, the call without effect, unflushed bytes: zero drop");
    EXPECT_EQ(describe(PlannedAction{{{}, "C:/a", 3}, Kill{}}),
              "call 3 on C:/a: the program is killed, the call without effect");
}

}  // namespace
}  // namespace vorthmere::update::simulation
