#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/simulation/explorer/scenario.h"

namespace vorthmere::update::simulation {

/// Settings and runs that many scenarios begin with, each made once.
class Stock {
public:
    /// The sample releases' setting.
    [[nodiscard]] const SettingPointer& setting(Way way, Profile profile = Profile::posixDelete);

    /// The outcome of a scenario whose setting comes from here.
    [[nodiscard]] const Outcome& outcomeOf(const Scenario& scenario);

private:
    std::map<std::pair<Way, Profile>, SettingPointer> settings_;
    std::map<std::pair<const Setting*, std::string>, Outcome> outcomes_;
};

}  // namespace vorthmere::update::simulation
