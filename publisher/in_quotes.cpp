#include "publisher/in_quotes.h"

namespace vorthmere::publish {
namespace {

constexpr unsigned char kDelete = 0x7F;
constexpr unsigned char kFirstPrintable = 0x20;

/// In UTF-8 the control characters from U+0080 to U+009F are this byte and one from 0x80 to 0x9F.
constexpr unsigned char kHighControlLead = 0xC2;
constexpr unsigned char kHighControlEnd = 0xA0;

std::string escaped(unsigned char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

}  // namespace

std::string inQuotes(std::string_view name) {
    std::string text(1, '"');
    bool inHighControl = false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        const auto next = i + 1 < name.size() ? static_cast<unsigned char>(name[i + 1]) : kHighControlEnd;
        const bool beginsHighControl = byte == kHighControlLead && next < kHighControlEnd;
        if (byte < kFirstPrintable || byte == kDelete || beginsHighControl || inHighControl)
            text += escaped(byte);
        else
            text += name[i];
        inHighControl = beginsHighControl;
    }
    return text + '"';
}

std::string inQuotes(const std::string& name) {
    return inQuotes(std::string_view(name));
}

std::string inQuotes(const char* name) {
    return inQuotes(std::string_view(name));
}

std::string inQuotes(const std::filesystem::path& path) {
    return inQuotes(std::string_view(path.string()));
}

}  // namespace vorthmere::publish
