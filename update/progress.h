#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "update/timetable.h"

namespace vorthmere::update {

/// Receives a status text and a percentage of the run, 0 to 100; may be empty.
using ProgressCallback = std::function<void(std::wstring text, std::uint32_t percent)>;

/// Receives the bytes of one download so far and the bytes expected, 0 when unknown; may be empty.
using ByteProgressCallback = std::function<void(std::uint64_t received, std::uint64_t expected)>;

/// Passes `text` and `percent`, at most 100, to `progress`. Does nothing when `progress` is empty.
void reportProgress(const ProgressCallback& progress, std::wstring text, std::uint32_t percent);

/// The same with a step of the timetable.
void reportStep(const ProgressCallback& progress, const Step& step);

}  // namespace vorthmere::update
