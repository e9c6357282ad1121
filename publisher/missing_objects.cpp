#include "publisher/missing_objects.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <string_view>

#include "publisher/channel_file.h"
#include "publisher/in_quotes.h"
#include "publisher/parallel_work.h"
#include "publisher/release_texts.h"

namespace vorthmere::publish {
namespace {

std::vector<const ReleaseFile*> distinctContents(const std::vector<ReleaseFile>& files) {
    std::map<std::string_view, const ReleaseFile*> distinct;
    for (const ReleaseFile& file : files)
        distinct.emplace(file.entry.sha256, &file);
    std::vector<const ReleaseFile*> contents;
    contents.reserve(distinct.size());
    for (const auto& [sha256, file] : distinct)
        contents.push_back(file);
    return contents;
}

}  // namespace

bool findMissingObjects(const std::vector<ReleaseFile>& files, const std::filesystem::path& channel, Console& console,
                        MissingObjects& missing, std::string& error) {
    const std::vector<const ReleaseFile*> contents = distinctContents(files);
    missing = {};
    missing.distinct = contents.size();
    std::uint64_t bytes = 0;
    for (const ReleaseFile* file : contents)
        bytes += file->entry.size;

    std::mutex found;
    console.beginStep("Looking for objects that the channel has already", bytes);
    const bool looked = forEachInParallel(
        contents.size(),
        [&](std::size_t index, std::string& fault) {
            const ReleaseFile& file = *contents[index];
            const std::filesystem::path path = channel / objectName(file.entry.sha256);
            const ChannelFile object = compareFile(path, file.entry.size, file.entry.sha256,
                                                   [&console](std::uint64_t count) { console.advance(count); });
            if (object.isInTheWay()) fault = inQuotes(path) + " is in the way: it is not a regular file.";
            if (object.isInTheWay() || object.isRight()) return fault.empty();
            const std::lock_guard lock(found);
            missing.files.push_back(&file);
            missing.bytes += file.entry.size;
            if (object.state != ChannelFile::State::missing) ++missing.damaged;
            return true;
        },
        error);
    console.endStep();
    // Staging then reads the game folder in its own order.
    std::sort(missing.files.begin(), missing.files.end());
    return looked;
}

}  // namespace vorthmere::publish
