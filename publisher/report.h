#pragma once

#include <ostream>
#include <string>

#include "publisher/build_release.h"
#include "publisher/check_channel.h"
#include "publisher/collect_garbage.h"
#include "publisher/command_line.h"
#include "publisher/update_plan.h"

namespace vorthmere::publish {

/// The result of a command.
struct Outcome {
    bool hasSucceeded = false;
    std::string error;  ///< sentences, one a line
    ReleaseSummary release;
    ChannelReport channel;
    UpdatePlan plan;
    GarbageSummary garbage;
};

/// Prints an outcome in sentences for a person.
void printReport(const Command& command, const Outcome& outcome, std::ostream& output);

/// Prints an outcome as one JSON object.
void printJson(const Command& command, const Outcome& outcome, std::ostream& output);

}  // namespace vorthmere::publish
