#include "tests/simulation/explorer/stock.h"

namespace vorthmere::update::simulation {

const SettingPointer& Stock::setting(Way way, Profile profile) {
    SettingPointer& setting = settings_[{way, profile}];
    if (!setting) setting = settingOf(way == Way::relaunchFails ? swappableReleases() : sampleReleases(), way, profile);
    return setting;
}

const Outcome& Stock::outcomeOf(const Scenario& scenario) {
    std::string plan;
    for (const PlannedAction& planned : scenario.plan)
        plan += describe(planned) + "\n";
    const auto key = std::pair(scenario.setting.get(), std::move(plan));
    const auto known = outcomes_.find(key);
    if (known != outcomes_.end()) return known->second;
    return outcomes_.emplace(key, play(scenario)).first->second;
}

}  // namespace vorthmere::update::simulation
