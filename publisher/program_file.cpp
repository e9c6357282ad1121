#include "publisher/program_file.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "publisher/durable_files.h"
#include "publisher/in_quotes.h"
#include "publisher/release_content.h"

namespace vorthmere::publish {
namespace {

// Offsets into the header of a program.
constexpr std::size_t kPlaceOfHeaderOffset = 0x3C;
constexpr std::size_t kHeaderBytes = 26;
constexpr std::size_t kMachineAt = 4;
constexpr std::size_t kCharacteristicsAt = 22;
constexpr std::size_t kFormatAt = 24;

constexpr unsigned kMachineX64 = 0x8664;
constexpr unsigned kIsProgram = 0x0002;
constexpr unsigned kIsLibrary = 0x2000;
constexpr unsigned kFormat64Bit = 0x020B;

unsigned numberAt(std::span<const char> bytes, std::size_t place, std::size_t size) {
    unsigned number = 0;
    for (std::size_t i = size; i-- > 0;)
        number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
    return number;
}

bool is64BitProgram(std::span<const char> header) {
    const unsigned characteristics = numberAt(header, kCharacteristicsAt, 2);
    return std::equal(header.begin(), header.begin() + kMachineAt, "PE\0") &&
           numberAt(header, kMachineAt, 2) == kMachineX64 && numberAt(header, kFormatAt, 2) == kFormat64Bit &&
           (characteristics & kIsProgram) != 0 && (characteristics & kIsLibrary) == 0;
}

}  // namespace

bool isWindowsProgram(const std::filesystem::path& file, std::string_view name, std::string& error) {
    InputFile program;
    std::array<char, kPlaceOfHeaderOffset + 4> start{};
    std::array<char, kHeaderBytes> header{};
    std::size_t count = 0;
    if (!program.open(file, error) || !program.readAt(0, start, count, error)) return false;
    const bool isProgram = count == start.size() && start[0] == 'M' && start[1] == 'Z';
    if (isProgram && !program.readAt(numberAt(start, kPlaceOfHeaderOffset, 4), header, count, error)) return false;
    if (isProgram && count == header.size() && is64BitProgram(header)) return true;
    error = inQuotes(name) +
            " is not a 64-bit Windows program, so players could not run it; --allow-any-programs lets it pass.";
    return false;
}

bool holdsAddress(const std::filesystem::path& updater, std::string_view address, std::string& error) {
    bool isFound = false;
    std::string window;
    const ContentSink search = [&](std::span<const char> bytes) {
        window.append(bytes.begin(), bytes.end());
        isFound = window.find(address) != std::string::npos;
        window.erase(0, window.size() - std::min(window.size(), address.size()));
        return !isFound;
    };
    if (!readFile(updater, search, error) && !isFound) return false;
    if (isFound) return true;
    error = inQuotes(updater.filename()) + " does not hold the channel's address " + inQuotes(address) +
            ", so players who have it would look for updates elsewhere; --allow-any-programs lets it pass.";
    return false;
}

}  // namespace vorthmere::publish
