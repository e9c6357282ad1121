#include "updater/command_line.h"

#include <algorithm>
#include <array>
#include <map>

#include "update/decimal.h"
#include "update/failing.h"

namespace vorthmere::update {
namespace {

constexpr std::wstring_view kApply = L"--apply";
constexpr std::wstring_view kNoRelaunch = L"--no-relaunch";
constexpr std::wstring_view kTestNoUi = L"--test-no-ui";
constexpr std::wstring_view kInstall = L"--install";
constexpr std::wstring_view kCurrent = L"--current";
constexpr std::wstring_view kParent = L"--parent";
constexpr std::wstring_view kManifestFile = L"--manifest-file";
constexpr std::wstring_view kPackageFile = L"--package-file";
constexpr std::wstring_view kInventoryFile = L"--inventory-file";
constexpr std::wstring_view kObjectDirectory = L"--object-directory";

constexpr std::array kValueOptions = {kInstall,     kCurrent,       kParent,         kManifestFile,
                                      kPackageFile, kInventoryFile, kObjectDirectory};

using OptionValues = std::map<std::wstring, std::wstring, std::less<>>;

bool collectOptions(int argc, const wchar_t* const* argv, Arguments& out, OptionValues& values) {
    for (int i = 2; i < argc; ++i) {
        const std::wstring_view option = argv[i];
        if (option == kNoRelaunch) {
            out.noRelaunch = true;
        } else if (option == kTestNoUi) {
            out.testNoUi = true;
        } else {
            if (i + 1 == argc || !option.starts_with(L"--")) return false;
            const std::wstring_view value = argv[++i];
            if (value.starts_with(L"--") || !values.emplace(option, value).second) return false;
        }
    }
    return true;
}

bool isKnownOption(const OptionValues::value_type& option) {
    return std::find(kValueOptions.begin(), kValueOptions.end(), option.first) != kValueOptions.end();
}

/// Null when the option is not there.
const std::wstring* valueOf(const OptionValues& values, std::wstring_view option) {
    const auto found = values.find(option);
    return found == values.end() ? nullptr : &found->second;
}

void copyPath(const OptionValues& values, std::wstring_view option, std::filesystem::path& out) {
    const std::wstring* const value = valueOf(values, option);
    if (value) out = *value;
}

}  // namespace

bool parseUnsigned(std::wstring_view text, std::uint32_t& out) {
    return parseDecimal(text, out);
}

bool parseArguments(int argc, const wchar_t* const* argv, Arguments& out, std::wstring& error) {
    if (argc < 2 || argv[1] != kApply)
        return fail(error, L"Usage: KVNUpdater --apply --install <folder> --parent <pid> --current <release>");
    OptionValues values;
    if (!collectOptions(argc, argv, out, values)) return fail(error, L"The updater command line is invalid.");

    const std::wstring* const current = valueOf(values, kCurrent);
    if (!valueOf(values, kInstall) || !current || !parseUnsigned(*current, out.currentRelease) ||
        out.currentRelease == 0)
        return fail(error, L"The updater command line is missing the installation or release.");
    const std::wstring* const parent = valueOf(values, kParent);
    if (parent && !parseUnsigned(*parent, out.parentProcessId))
        return fail(error, L"The updater parent process is invalid.");

    copyPath(values, kInstall, out.install);
    copyPath(values, kManifestFile, out.manifestFile);
    copyPath(values, kPackageFile, out.packageFile);
    copyPath(values, kInventoryFile, out.inventoryFile);
    copyPath(values, kObjectDirectory, out.objectDirectory);
    if (!std::all_of(values.begin(), values.end(), isKnownOption))
        return fail(error, L"The updater command line contains an unknown option.");

    const bool hasManifest = !out.manifestFile.empty();
    const bool hasInventory = !out.inventoryFile.empty();
    if (hasManifest == out.packageFile.empty())
        return fail(error, L"Local update testing requires both a manifest file and a package file.");
    if (hasInventory == out.objectDirectory.empty() || (hasInventory && !hasManifest))
        return fail(error, L"Local incremental testing requires a manifest, package, inventory, and object directory.");
    return true;
}

}  // namespace vorthmere::update
