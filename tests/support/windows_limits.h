#pragma once

namespace vorthmere::update::testing {

/// While an object lives, this program's calls meet the limits that Windows sets to paths in their plain form, and that
/// Wine does not: 259 characters (error 3), 247 for a new folder (206), and 258 for the folder that a process starts in
/// (267). One limit that only Wine has, to names that it finds by an open file, is lifted. What Wine's own libraries
/// call, and what other programs do, is not limited.
class WindowsPathLimits {
public:
    /// @throws std::runtime_error when a call cannot be limited
    WindowsPathLimits();
    ~WindowsPathLimits();
    WindowsPathLimits(const WindowsPathLimits&) = delete;
    WindowsPathLimits& operator=(const WindowsPathLimits&) = delete;
};

}  // namespace vorthmere::update::testing
