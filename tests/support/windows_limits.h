#pragma once

namespace vorthmere::update::testing {

/// While an object lives, this program's calls meet the limits of Windows on plain paths, which Wine does not have: 259
/// characters (error 3), 247 for a new folder (206), and 258 for the folder that a process starts in (267). One limit
/// that only Wine has is lifted: that on the final path of an open file. Calls from Wine's own libraries and from other
/// programs are not limited.
class WindowsPathLimits {
public:
    /// @throws std::runtime_error when a call cannot be limited
    WindowsPathLimits();
    ~WindowsPathLimits();
    WindowsPathLimits(const WindowsPathLimits&) = delete;
    WindowsPathLimits& operator=(const WindowsPathLimits&) = delete;
};

}  // namespace vorthmere::update::testing
