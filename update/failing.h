#pragma once

#include <string>
#include <string_view>

namespace vorthmere::update {

/// Stores a failure's sentence, so that an operation can end with `return fail(error, ...)`.
///
/// @return false
inline bool fail(std::wstring& error, std::wstring_view sentence) {
    error = sentence;
    return false;
}

/// The same for the readers of metadata, whose sentences are narrow.
inline bool fail(std::string& error, std::string_view sentence) {
    error = sentence;
    return false;
}

}  // namespace vorthmere::update
