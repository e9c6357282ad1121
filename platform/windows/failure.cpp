#include "platform/failure.h"

#include <windows.h>

namespace vorthmere::update {

std::error_code lastFailure() {
    const DWORD error = GetLastError();
    return failureOf(error == ERROR_SUCCESS ? ERROR_GEN_FAILURE : error);
}

}  // namespace vorthmere::update
