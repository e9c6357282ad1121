#include "publisher/release_details.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "publisher/release_texts.h"
#include "update/ascii.h"
#include "update/release_channel.h"
#include "update/sha256_text.h"

namespace vorthmere::publish {
namespace {

struct Rule {
    std::string_view fault;  ///< the updater's sentence
    std::string_view sentence;
};

constexpr std::array<Rule, 4> kRules = {{
    {"Manifest release is invalid.", "--release must be a number from 1 to 4294967295."},
    {"Manifest version is invalid.", "--version must have 1 to 48 printable ASCII characters."},
    {"Manifest protocol is invalid.", "--protocol must be a number from 1 to 65535."},
    {"Manifest notes are invalid.", "--notes may have at most 240 characters, all of them printable ASCII."},
}};

bool allPrintable(std::string_view text) {
    return std::all_of(text.begin(), text.end(), update::isPrintableAscii);
}

}  // namespace

bool judgeDetails(const update::Manifest& details, std::string& error) {
    update::Manifest draft = details;
    draft.size = 1;
    draft.sha256.assign(update::kSha256TextLength, '0');
    draft.url = std::string(update::kDownloadBaseUrl) + packageName(draft.release);

    std::string fault;
    update::Manifest parsed;
    // A line break would make more than one line of a text, so it is looked for before the parser could see two.
    if (!allPrintable(draft.version))
        fault = kRules[1].fault;
    else if (!allPrintable(draft.notes))
        fault = kRules[3].fault;
    else if (update::parseManifest(manifestText(draft), parsed, fault) && parsed == draft)
        return true;

    const auto rule = std::find_if(kRules.begin(), kRules.end(), [&fault](const Rule& r) { return r.fault == fault; });
    error = rule != kRules.end() ? std::string(rule->sentence) : "The updater would refuse the manifest: " + fault;
    return false;
}

}  // namespace vorthmere::publish
