#pragma once

#include <filesystem>
#include <string>

namespace vorthmere::update {

/// A path in a form that the system takes literally.
///
/// A plain path may have at most 259 characters, for a new folder 247, unless the machine allows more. In a plain path
/// some names also mean something else: "a." and "a " are "a", and "NUL .txt" is a device. The archive tool can write
/// such paths all the same. So a path that is too long or has such a name gets the extended form, with "\\?\" or
/// "\\?\UNC\" in front. Any other path stays as it is.
class SystemPath {
public:
    explicit SystemPath(const std::filesystem::path& path);

    [[nodiscard]] const wchar_t* text() const {
        return text_.c_str();
    }

private:
    std::wstring text_;
};

/// A path that the system returned, without "\\?\" in front; "\\?\UNC\" becomes "\\".
[[nodiscard]] std::wstring withoutExtendedPrefix(std::wstring text);

}  // namespace vorthmere::update
