#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/program/stopwatch.h"
#include "bench/program/subcommands.h"
#include "tests/support/sample_metadata.h"
#include "update/file_inventory.h"
#include "update/limits.h"
#include "update/managed_file_list.h"

namespace vorthmere::bench {
namespace {

using namespace update;

// The longest that 1,024 paths can be: with their line feeds they fill the 131,072 bytes of the largest list.
constexpr std::size_t kPathBytes = 127;
// Room that the name of the file needs at the end of a path.
constexpr std::size_t kFolderBytes = 24;
constexpr double kNanoseconds = 1e9;
// Long enough for the clock's resolution.
constexpr double kBatchSeconds = 0.005;

std::string pathNumber(std::size_t number) {
    std::string path = "data/part " + std::to_string(number % 16) + "/";
    while (path.size() + kFolderBytes < kPathBytes)
        path += "folder-" + std::to_string(number % 8) + "/";
    const std::string suffix = std::to_string(100000 + number) + ".dat";
    return path + std::string(kPathBytes - path.size() - suffix.size(), 'x') + suffix;
}

std::vector<std::string> paths(std::size_t count) {
    std::vector<std::string> all{"KVN_MANAGED_FILES.txt", "Vorthmere.exe", "KVNUpdater.exe", "kvn_release.txt"};
    while (all.size() < count)
        all.push_back(pathNumber(all.size()));
    return all;
}

std::string managedFileList(std::size_t records) {
    return testing::joinLines(paths(records));
}

// Leading zeros of the size extend each record to its share of the largest text.
std::string inventory(const Manifest& manifest, std::size_t records) {
    testing::Lines lines = testing::inventoryHeaderLines(manifest);
    const std::size_t header = testing::joinLines(lines).size();
    const std::size_t largest = kMaxInventoryBytes * records / kMaxManagedFiles;
    const std::size_t share = (largest - header) / records - 1;
    for (const std::string& path : paths(records)) {
        const std::string digest = testing::sampleDigest('a');
        const std::string size = "1000";
        const std::size_t used = path.size() + size.size() + digest.size() + 2;
        lines.push_back(path + '\t' + std::string(share - used, '0') + size + '\t' + digest);
    }
    std::string text = testing::joinLines(lines);
    // What the division left goes into the last record's size.
    text.insert(text.rfind('\t', text.rfind('\t') - 1) + 1, largest - text.size(), '0');
    return text;
}

/// The floor: from line feed to line feed.
std::size_t countLines(const std::string& text) {
    std::size_t lines = 0;
    const char* const end = text.data() + text.size();
    for (const char* at = text.data(); at != end; ++lines) {
        const void* feed = std::memchr(at, '\n', static_cast<std::size_t>(end - at));
        at = feed ? static_cast<const char*>(feed) + 1 : end;
    }
    return lines;
}

/// Nanoseconds of one call, the mean of a batch.
double timeOnce(const std::function<void()>& call) {
    std::size_t calls = 0;
    const Stopwatch stopwatch;
    double seconds = 0;
    while (seconds < kBatchSeconds) {
        call();
        ++calls;
        seconds = stopwatch.seconds();
    }
    return seconds * kNanoseconds / static_cast<double>(calls);
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void measure(const char* kind, std::size_t records, const std::string& text, std::size_t rounds,
             const std::function<bool()>& parse) {
    if (!parse()) throw std::runtime_error("an input is not valid");
    volatile std::size_t lines = 0;
    std::vector<double> figures;
    std::vector<double> floors;
    for (std::size_t round = 0; round < rounds; ++round) {
        figures.push_back(timeOnce([&parse] { (void)parse(); }));
        floors.push_back(timeOnce([&text, &lines] { lines = countLines(text); }));
    }
    std::printf("%s\t%zu\t%zu\t%.0f\t%.0f\n", kind, records, text.size(), median(figures), median(floors));
}

}  // namespace

void parseFigures(Arguments arguments) {
    const std::size_t rounds = std::stoul(arguments[0]);
    const Manifest manifest = testing::sampleManifest();
    for (const std::size_t records : {16U, 64U, 256U, 1024U}) {
        std::string error;
        std::vector<InventoryEntry> entries;
        const std::string text = inventory(manifest, records);
        measure("inventory", records, text, rounds,
                [&] { return parseFileInventory(text, manifest, entries, error) && entries.size() == records; });
        std::vector<std::string> listed;
        const std::string list = managedFileList(records);
        measure("list", records, list, rounds,
                [&] { return parseManagedFileList(list, listed, error) && listed.size() == records; });
    }
}

}  // namespace vorthmere::bench
