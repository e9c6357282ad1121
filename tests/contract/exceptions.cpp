#include "tests/contract/exceptions.h"

#include <array>

namespace vorthmere::update::contract {
namespace {

constexpr std::array<WineException, 0> kExceptions{};

}  // namespace

std::span<const WineException> wineExceptions() {
    return kExceptions;
}

}  // namespace vorthmere::update::contract
