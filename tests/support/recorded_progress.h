#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "update/progress.h"

namespace vorthmere::update::testing {

/// Records the progress that a run reports, and runs a test's actions at its steps.
class RecordedProgress {
public:
    using Step = std::pair<std::wstring, std::uint32_t>;

    /// Calls `action` whenever `text` is reported, before the run goes on.
    void at(const std::wstring& text, std::function<void()> action) {
        actions_[text] = std::move(action);
    }

    /// The callback for the run. This object must outlive the run.
    [[nodiscard]] ProgressCallback callback() {
        return [this](std::wstring text, std::uint32_t percent) {
            steps_.emplace_back(text, percent);
            if (const auto action = actions_.find(text); action != actions_.end()) action->second();
        };
    }

    [[nodiscard]] const std::vector<Step>& steps() const {
        return steps_;
    }

    [[nodiscard]] std::wstring lastText() const {
        return steps_.empty() ? L"" : steps_.back().first;
    }

private:
    std::vector<Step> steps_;
    std::map<std::wstring, std::function<void()>> actions_;
};

}  // namespace vorthmere::update::testing
