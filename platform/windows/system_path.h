#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::update {

/// A path in the form in which the system takes it for what it says.
///
/// In its plain form a path may have 259 characters at most, for a new folder 247, unless the machine was set
/// otherwise; and some names mean something else there: "a." and "a " are "a", "NUL .txt" is a device. The archive tool
/// writes such paths all the same. So a path that is too long or has such a name gets the extended form, "\\?\" or
/// "\\?\UNC\" in front; any other one stays as it is.
class SystemPath {
public:
    explicit SystemPath(const std::filesystem::path& path);

    [[nodiscard]] const wchar_t* text() const {
        return text_.c_str();
    }

private:
    std::wstring text_;
};

/// A path as the system tells it, without the "\\?\" or "\\?\UNC\" in front.
[[nodiscard]] std::wstring withoutExtendedPrefix(std::wstring text);

}  // namespace vorthmere::update
