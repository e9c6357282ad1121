#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/simulation/gate.h"
#include "tests/simulation/machine.h"

namespace vorthmere::update::simulation {

/// A machine for one operation of the core, with an empty folder C:/Test.
class CoreTest : public ::testing::Test {
protected:
    CoreTest() {
        machine.files.putFolder("C:/Test");
        machine.beginCaller("C:/Windows/System32/svchost.exe", "C:/Test");
        plan({});
    }

    /// From now on this happens.
    void plan(Plan planned) {
        running_.reset();
        gate_.emplace(machine, std::move(planned));
        running_.emplace(*gate_);
    }
    /// The first call of an operation fails with this.
    void harm(Operation operation, const Fault& fault, std::size_t number = 0) {
        plan({{{operation, "", number}, fault}});
    }

    void answer(const std::string& address, std::string body, bool tellsLength = true) {
        Answer given;
        given.body = contentOf(std::move(body));
        given.tellsLength = tellsLength;
        machine.internet.answers[address] = std::move(given);
    }

    [[nodiscard]] std::string contentOfFile(std::string_view path) const {
        const std::optional<EntryView> view = machine.files.find(path);
        return view && view->content ? *view->content : "(none)";
    }

    /// What the calls of one operation were about, each "subject" or "subject, second".
    [[nodiscard]] std::vector<std::string> callsOf(Operation operation) const {
        std::vector<std::string> calls;
        for (const Call& call : gate_->calls())
            if (call.operation == operation)
                calls.push_back(call.second.empty() ? call.subject : call.subject + ", " + call.second);
        return calls;
    }

    Machine machine;
    std::wstring error = L"earlier";

private:
    std::optional<Gate> gate_;
    std::optional<Running> running_;
};

}  // namespace vorthmere::update::simulation
