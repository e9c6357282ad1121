#include "publisher/update_plan.h"

#include <algorithm>
#include <optional>

#include "publisher/channel.h"
#include "publisher/in_quotes.h"
#include "publisher/installed_release.h"
#include "publisher/release_texts.h"
#include "update/incremental_update.h"
#include "update/release_channel.h"

namespace vorthmere::publish {

bool planUpdate(const std::filesystem::path& from, const std::filesystem::path& channel, Console& console,
                UpdatePlan& plan, std::string& error) {
    plan = {};
    std::optional<update::Manifest> target;
    if (!readPublishedManifest(channel, target, error)) return false;
    if (!target) {
        error = "The channel " + inQuotes(channel) + " offers no release: it has no " +
                inQuotes(update::kManifestName) + ".";
        return false;
    }
    plan.target = *target;

    std::vector<update::InventoryEntry> wanted;
    const bool canBeIncremental =
        readInventory(channel / inventoryNameOf(plan.target), plan.target, wanted, plan.packageReason);

    InstalledRelease installed;
    if (!readInstalledRelease(from, wanted, console, installed, error)) return false;
    plan.fromRelease = installed.release;
    if (!canBeIncremental) return true;

    plan.difference = compareReleases(installed.entries, wanted);
    if (installed.holdsOtherFiles)
        std::erase_if(plan.difference.removed, [&installed](const std::string& path) {
            return std::find(installed.managed.begin(), installed.managed.end(), path) == installed.managed.end();
        });
    plan.incremental = update::updatesIncrementally(plan.difference.bytesToFetch, plan.target);
    return true;
}

}  // namespace vorthmere::publish
