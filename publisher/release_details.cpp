#include "publisher/release_details.h"

#include <limits>

#include "publisher/release_texts.h"
#include "update/limits.h"
#include "update/metadata_text.h"
#include "update/release_channel.h"
#include "update/sha256_text.h"

namespace vorthmere::publish {
namespace {

std::string brokenRule(const update::Manifest& details) {
    if (details.release == 0) return numberRule("--release", std::numeric_limits<std::uint32_t>::max());
    if (!update::isVersionText(details.version))
        return "--version must have 1 to " + std::to_string(update::kMaxVersionBytes) + " printable ASCII characters.";
    if (details.protocol == 0) return numberRule("--protocol", std::numeric_limits<std::uint16_t>::max());
    if (!update::isNotesText(details.notes))
        return "--notes may have at most " + std::to_string(update::kMaxNotesBytes) +
               " characters, all of them printable ASCII.";
    return {};
}

}  // namespace

std::string numberRule(std::string_view option, std::uint32_t greatest) {
    return std::string(option) + " must be a number from 1 to " + std::to_string(greatest) + ".";
}

bool judgeDetails(const update::Manifest& details, std::string& error) {
    error = brokenRule(details);
    if (!error.empty()) return false;

    update::Manifest draft = details;
    draft.size = 1;
    draft.sha256.assign(update::kSha256TextLength, '0');
    draft.url = update::channelAddress(packageName(draft.release));
    std::string fault;
    update::Manifest parsed;
    if (update::parseManifest(update::manifestText(draft), parsed, fault) && parsed == draft) return true;
    error = "The updater would refuse the manifest: " + fault;
    return false;
}

}  // namespace vorthmere::publish
