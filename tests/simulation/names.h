#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "tests/simulation/windows_numbers.h"

namespace vorthmere::update::simulation {

/// A name as it is looked up: letters in upper case.
[[nodiscard]] std::string keyOf(std::string_view name);

/// The same without an allocation for usual names, because nothing is done more often than looking up names.
class FoldedName {
public:
    explicit FoldedName(std::string_view name);
    FoldedName(const FoldedName&) = delete;
    FoldedName& operator=(const FoldedName&) = delete;

    [[nodiscard]] std::string_view key() const {
        return key_;
    }

private:
    static constexpr std::size_t kUsualBytes = 64;

    std::array<char, kUsualBytes> usual_;  // deliberately not cleared
    std::string unusual_;
    std::string_view key_;
};

[[nodiscard]] bool isSameName(std::string_view left, std::string_view right);

[[nodiscard]] std::size_t utf16Length(std::string_view text);

/// A path with "/" for each "\".
[[nodiscard]] std::string withSlashes(std::string_view path);

/// 0, or 123 for a name that no file can have.
[[nodiscard]] Error nameError(std::string_view name);

/// True for NUL, CON and their like.
///
/// @param withExtension also for "nul.txt" and "NUL .txt"
[[nodiscard]] bool isDeviceName(std::string_view name, bool withExtension);

/// An absolute path, folded, with "/" alone: "C:/Games/a.pak", "C:/", "//server/share/a.pak".
struct FullPath {
    std::string text;
    std::size_t volumeLength = 0;  ///< of "C:" or "//server/share"
    bool endsInSeparator = false;  ///< as it was asked for; only a root's text keeps it
    bool isExtended = false;       ///< was asked for with "\\?\", so it is taken literally
};

/// What GetFullPathNameW makes of a path.
///
/// @param currentFolder absolute, "/" separated
[[nodiscard]] FullPath fullPathOf(std::string_view path, std::string_view currentFolder);

/// Removes the first component of a path and returns it.
[[nodiscard]] std::string_view takeComponent(std::string_view& rest);

}  // namespace vorthmere::update::simulation
