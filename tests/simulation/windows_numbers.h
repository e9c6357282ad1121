#pragma once

#include <cstdint>

namespace vorthmere::update::simulation {

/// Windows' error number of a call; 0 when it succeeded.
using Error = std::uint32_t;

using ProcessId = std::uint32_t;

/// What a program holds of something that is open; 0 is none. No number is used twice.
using HandleId = std::uint32_t;

/// The error numbers that the model itself gives.
namespace error {
inline constexpr Error none = 0;
inline constexpr Error invalidFunction = 1;
inline constexpr Error fileNotFound = 2;
inline constexpr Error pathNotFound = 3;
inline constexpr Error accessDenied = 5;
inline constexpr Error invalidHandle = 6;
inline constexpr Error notSameDevice = 17;
inline constexpr Error writeProtected = 19;
inline constexpr Error notReady = 21;
inline constexpr Error generalFailure = 31;
inline constexpr Error sharingViolation = 32;
inline constexpr Error lockViolation = 33;
inline constexpr Error badNetworkPath = 53;
inline constexpr Error deviceGone = 55;
inline constexpr Error networkNameDeleted = 64;
inline constexpr Error fileExists = 80;
inline constexpr Error invalidParameter = 87;
inline constexpr Error brokenPipe = 109;
inline constexpr Error diskFull = 112;
inline constexpr Error invalidName = 123;
inline constexpr Error folderNotEmpty = 145;
inline constexpr Error alreadyExists = 183;
inline constexpr Error notAProgram = 193;
inline constexpr Error nameTooLong = 206;
inline constexpr Error notADirectory = 267;
inline constexpr Error waitTimedOut = 258;
inline constexpr Error deviceRemoved = 1167;
inline constexpr Error userMappedFile = 1224;
inline constexpr Error linkCannotBeAccessed = 1920;
inline constexpr Error linkCannotBeResolved = 1921;
inline constexpr Error timedOut = 12002;
inline constexpr Error unknownScheme = 12006;
inline constexpr Error nameNotResolved = 12007;
inline constexpr Error cannotConnect = 12029;
inline constexpr Error connectionBroken = 12030;
inline constexpr Error wrongHandleType = 12018;
inline constexpr Error wrongHandleState = 12019;
inline constexpr Error headerNotFound = 12150;
inline constexpr Error redirectFailed = 12156;
inline constexpr Error secureFailure = 12175;

/// True for those that say that there is nothing at a path. They stand here again, so that a mistake in the program's
/// own list is not one of its judges, too.
[[nodiscard]] constexpr bool saysNothingIsThere(Error error) {
    return error == fileNotFound || error == pathNotFound || error == invalidName || error == notADirectory;
}
}  // namespace error

/// File attributes.
namespace attribute {
inline constexpr std::uint32_t readOnly = 0x1;
inline constexpr std::uint32_t hidden = 0x2;
inline constexpr std::uint32_t system = 0x4;
inline constexpr std::uint32_t folder = 0x10;
inline constexpr std::uint32_t archive = 0x20;
inline constexpr std::uint32_t normal = 0x80;
inline constexpr std::uint32_t reparsePoint = 0x400;
}  // namespace attribute

/// The kinds of reparse points.
namespace tag {
inline constexpr std::uint32_t none = 0;
inline constexpr std::uint32_t junction = 0xA0000003;
inline constexpr std::uint32_t symbolicLink = 0xA000000C;
inline constexpr std::uint32_t cloudFile = 0x9000001A;     ///< attribute without being a link
inline constexpr std::uint32_t programAlias = 0x8000001B;  ///< cannot be opened: 1920

/// Links lead elsewhere; other reparse points do not.
[[nodiscard]] constexpr bool isLink(std::uint32_t reparseTag) {
    return (reparseTag & 0x20000000) != 0;
}
}  // namespace tag

/// What a handle may do, and what it lets others do. Both are sums of these; an access of 0 asks for attributes alone.
namespace access {
inline constexpr unsigned none = 0;
inline constexpr unsigned read = 1;
inline constexpr unsigned write = 2;
inline constexpr unsigned remove = 4;
inline constexpr unsigned all = read | write | remove;
}  // namespace access

}  // namespace vorthmere::update::simulation
