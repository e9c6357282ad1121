#include "platform/failure.h"

#include <windows.h>

namespace vorthmere::update {

std::uint32_t lastErrorNumber() {
    return GetLastError();
}

}  // namespace vorthmere::update
