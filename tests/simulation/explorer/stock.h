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

    /// How a scenario of a setting from here goes.
    [[nodiscard]] const Outcome& outcomeOf(const Scenario& scenario);

private:
    std::map<std::pair<Way, Profile>, SettingPointer> settings_;
    std::map<std::pair<const Setting*, std::string>, Outcome> outcomes_;
};

}  // namespace vorthmere::update::simulation
