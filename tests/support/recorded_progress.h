#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "update/progress.h"

namespace vorthmere::update::testing {

/// Keeps what a run reports, and does something at a step when a test asks for it.
class RecordedProgress {
public:
    using Step = std::pair<std::wstring, std::uint32_t>;

    /// Has `action` called when `text` is reported, before the run goes on.
    void at(const std::wstring& text, std::function<void()> action) {
        actions_[text] = std::move(action);
    }

    /// For the run; this object must outlive it.
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
