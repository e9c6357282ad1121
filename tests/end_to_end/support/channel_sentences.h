#pragma once

namespace vorthmere::end_to_end {

/// The program's sentences about faults of the channel. Where a sentence contains a Windows error, the constant is a
/// regular expression that leaves the number open, because Wine and Windows have different ones.
inline constexpr const char* kInvalidAddress = "The update URL is not a valid HTTPS address.";
inline constexpr const char* kRequestFailed = "The HTTPS update request failed \\(Windows error [1-9][0-9]*\\)";
inline constexpr const char* kTooLarge = "The update download is larger than the safety limit.";
inline constexpr const char* kReadFailed = "Unable to read the HTTPS update response \\(Windows error [1-9][0-9]*\\)";
inline constexpr const char* kEndedUnexpectedly =
    "The HTTPS update download ended unexpectedly \\(Windows error [0-9]+\\)";
inline constexpr const char* kNotStored = "Unable to store the downloaded update.";
inline constexpr const char* kNotCreated = "Unable to create the temporary update archive.";
inline constexpr const char* kWrongLength = "The HTTPS update download did not match its advertised size.";
inline constexpr const char* kPackageSizeWrong = "The update archive size does not match the release manifest.";
inline constexpr const char* kPackageDigestWrong = "The update archive failed SHA-256 verification.";

}  // namespace vorthmere::end_to_end
