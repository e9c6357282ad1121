// Implements the functions of platform/ by calls of the machine that runs, each through its gate.
#include <algorithm>
#include <string>
#include <utility>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/failure.h"
#include "platform/programs.h"
#include "platform/streams.h"
#include "tests/simulation/passage.h"

namespace vorthmere::update {

using namespace simulation;

std::uint32_t lastErrorNumber() {
    std::uint32_t number = 0;
    (void)pass(
        Operation::lastErrorNumber, "", "",
        [&number](Machine& machine, Extent) {
            number = machine.lastError;
            return error::none;
        },
        &number);
    return number;
}

EntryAttributes entryAttributes(const std::filesystem::path& path, std::error_code& failure) {
    EntryAttributes attributes;
    const std::string text = systemTextOf(path);
    failure = toFailure(passWhole(Operation::entryAttributes, text, "", [&](Machine& machine) {
        return machine.files.entryAttributes(text, attributes.bits);
    }));
    return failure ? EntryAttributes() : attributes;
}

EntryFacts entryFacts(const std::filesystem::path& path, std::error_code& failure) {
    Facts facts;
    const std::string text = systemTextOf(path);
    failure = toFailure(passWhole(Operation::entryFacts, text, "",
                                  [&](Machine& machine) { return machine.files.entryFacts(text, facts); }));
    return failure ? EntryFacts() : EntryFacts{{facts.attributes}, facts.size};
}

EntryFacts targetFacts(const std::filesystem::path& path, std::error_code& failure) {
    Facts facts;
    const std::string text = systemTextOf(path);
    failure = toFailure(passWhole(Operation::targetFacts, text, "",
                                  [&](Machine& machine) { return machine.files.targetFacts(text, facts); }));
    return failure ? EntryFacts() : EntryFacts{{facts.attributes}, facts.size};
}

std::vector<FolderEntry> listFolder(const std::filesystem::path& folder, std::error_code& failure) {
    std::vector<Listed> listed;
    const std::string text = systemTextOf(folder);
    failure = toFailure(pass(Operation::listFolder, text, "", [&](Machine& machine, Extent extent) {
        const Error listing = machine.files.listFolder(text, listed);
        if (extent == Extent::part) listed.resize(listed.size() / 2);
        // The root of a drive has no "." entry: when it is empty, its search finds nothing, and that is no failure.
        return listing == error::fileNotFound ? error::none : listing;
    }));
    std::vector<FolderEntry> entries;
    entries.reserve(listed.size());
    for (const Listed& entry : listed)
        entries.push_back({pathOf(entry.name), {entry.attributes}});
    return entries;
}

std::filesystem::path fullPath(const std::filesystem::path& path, std::error_code& failure) {
    std::string full;
    const std::string text = textOf(path);
    failure = toFailure(
        passWhole(Operation::fullPath, text, "", [&](Machine& machine) { return machine.files.fullPath(text, full); }));
    return failure ? std::filesystem::path() : pathOf(full);
}

FileHandle openForItsName(const std::filesystem::path& path, std::error_code& failure) {
    const std::string text = systemTextOf(path);
    return passOpening<FileHandle>(Operation::openForItsName, text, failure, [&text](Machine& machine, HandleId& file) {
        return machine.files.openForItsName(text, file);
    });
}

std::filesystem::path finalPath(const FileHandle& file, std::error_code& failure) {
    std::string path;
    failure = toFailure(passWhole(Operation::finalPath, simulation::fileNameOf(file.get()), "",
                                  [&](Machine& machine) { return machine.files.finalPath(toId(file.get()), path); }));
    return failure ? std::filesystem::path() : pathOf(path);
}

std::error_code createFolder(const std::filesystem::path& folder) {
    const std::string text = systemTextOf(folder);
    return toFailure(passWhole(Operation::createFolder, text, "",
                               [&](Machine& machine) { return machine.files.createFolder(text); }));
}

std::error_code removeEmptyFolder(const std::filesystem::path& folder) {
    const std::string text = systemTextOf(folder);
    return toFailure(passWhole(Operation::removeEmptyFolder, text, "",
                               [&](Machine& machine) { return machine.files.removeEmptyFolder(text); }));
}

std::error_code deleteFile(const std::filesystem::path& file) {
    const std::string text = systemTextOf(file);
    return toFailure(
        passWhole(Operation::deleteFile, text, "", [&](Machine& machine) { return machine.files.deleteFile(text); }));
}

std::error_code setAttributes(const std::filesystem::path& path, EntryAttributes attributes) {
    const std::string text = systemTextOf(path);
    return toFailure(passWhole(Operation::setAttributes, text, std::to_string(attributes.bits),
                               [&](Machine& machine) { return machine.files.setAttributes(text, attributes.bits); }));
}

std::error_code moveFile(const std::filesystem::path& from, const std::filesystem::path& to) {
    const std::string source = systemTextOf(from);
    const std::string target = systemTextOf(to);
    return toFailure(passWhole(Operation::moveFile, source, target,
                               [&](Machine& machine) { return machine.files.moveFile(source, target); }));
}

std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to, Overwrite overwrite) {
    const std::string source = systemTextOf(from);
    const std::string target = systemTextOf(to);
    bool isHalf = false;
    const Error result = pass(Operation::copyFile, source, target, [&](Machine& machine, Extent extent) {
        const Error copy = machine.files.copyFile(source, target, overwrite == Overwrite::yes, extent);
        isHalf = extent == Extent::part && copy == error::none;
        return copy;
    });
    // Windows removes a copy that it could not finish.
    if (isHalf) (void)currentGate().machine().files.deleteFile(target);
    return toFailure(result);
}

}  // namespace vorthmere::update
