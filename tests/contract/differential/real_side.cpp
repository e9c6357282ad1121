#include <algorithm>
#include <array>
#include <stdexcept>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/streams.h"
#include "tests/contract/differential/sides.h"
#include "update/ascii.h"

namespace vorthmere::update::contract {
namespace {

std::string nameOf(const FolderEntry& entry) {
    return entry.name.string() + ":" + std::to_string(entry.attributes.bits & kComparedAttributes);
}

Answer answerOf(const std::error_code& failure, std::string facts) {
    return failure ? Answer{static_cast<std::uint32_t>(failure.value()), ""} : Answer{0, std::move(facts)};
}

std::string factsOf(const EntryFacts& facts) {
    return std::to_string(facts.attributes.bits & kComparedAttributes) + "/" + std::to_string(facts.size);
}

/// A path for the other programs as the platform's functions take it: a dot at its end is part of the name.
std::filesystem::path literally(const std::filesystem::path& path) {
    const bool isAltered = path.native().ends_with(L'.') || path.native().ends_with(L' ');
    return isAltered ? std::filesystem::path(L"\\\\?\\" + path.native()) : path;
}

Answer readFile(const std::filesystem::path& path) {
    std::error_code failure;
    const FileHandle file = openToRead(path, failure);
    if (failure) return answerOf(failure, "");
    std::array<char, 64> block{};
    const std::size_t count = readBytes(file, block.data(), block.size(), failure);
    return answerOf(failure, std::string(block.data(), count));
}

std::error_code writeFile(const std::filesystem::path& path, const std::string& content) {
    std::error_code failure;
    const FileHandle file = createToWrite(path, failure);
    return failure ? failure : writeBytes(file, content.data(), content.size());
}

std::vector<std::string> sortedNames(const std::filesystem::path& folder, std::error_code& failure) {
    std::vector<std::string> names;
    for (const FolderEntry& entry : listFolder(folder, failure))
        names.push_back(nameOf(entry));
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

RealSide::RealSide(World& world, const std::filesystem::path& folder) : world_(world), folder_(folder) {
    if (createFolder(folder_)) throw std::runtime_error("cannot create a folder");
}

RealSide::~RealSide() {
    world_.letGo();
}

std::filesystem::path RealSide::at(const std::string& path) const {
    return (folder_ / path).make_preferred();
}

std::uint32_t RealSide::act(const Step& step) {
    const std::filesystem::path path = at(step.path);
    const auto number = [](const std::error_code& failure) { return static_cast<std::uint32_t>(failure.value()); };
    switch (step.action) {
        case Action::createFolder:
            return number(createFolder(path));
        case Action::removeEmptyFolder:
            return number(removeEmptyFolder(path));
        case Action::deleteFile:
            return number(deleteFile(path));
        case Action::setAttributes:
            return number(setAttributes(path, {step.attributes}));
        case Action::moveFile:
            return number(moveFile(path, at(step.second)));
        case Action::copyFile:
            return number(copyFile(path, at(step.second), Overwrite::yes));
        case Action::copyToNew:
            return number(copyFile(path, at(step.second), Overwrite::no));
        case Action::write:
            return number(writeFile(path, step.path));
        case Action::hold:
            return world_.hold(literally(path), step.access, step.sharing);
        case Action::lock:
            return world_.lock(literally(path), 1);
        case Action::map:
            return world_.map(literally(path));
        case Action::enter:
            return world_.enter(literally(path));
        default:
            world_.letGo();
            return 0;
    }
}

Answer RealSide::ask(const Step& step) {
    const std::filesystem::path path = at(step.path);
    std::error_code failure;
    switch (step.action) {
        case Action::read:
            return readFile(path);
        case Action::listFolder: {
            std::string facts;
            for (const std::string& name : sortedNames(path, failure))
                facts += name + " ";
            return answerOf(failure, facts);
        }
        case Action::finalPath: {
            const FileHandle file = openForItsName(path, failure);
            if (failure) return answerOf(failure, "");
            const std::string name = finalPath(file, failure).generic_string();
            return answerOf(failure, name.substr(std::min(name.size(), folder_.generic_string().size())));
        }
        case Action::entryAttributes: {
            const EntryAttributes attributes = entryAttributes(path, failure);
            return answerOf(failure, factsOf({attributes, 0}));
        }
        case Action::entryFacts:
        case Action::targetFacts: {
            const bool isEntry = step.action == Action::entryFacts;
            const EntryFacts facts = isEntry ? entryFacts(path, failure) : targetFacts(path, failure);
            return answerOf(failure, factsOf(facts));
        }
        default:
            throw std::logic_error("no question");
    }
}

Answer RealSide::perform(const Step& step) {
    const bool isQuestion = step.action >= Action::read && step.action <= Action::finalPath;
    return isQuestion ? ask(step) : Answer{act(step), ""};
}

// In the order of the model: by name without regard to case, each folder before its content.
void RealSide::listInto(std::string& tree, const std::string& prefix) {
    std::error_code failure;
    std::vector<FolderEntry> entries = listFolder(at(prefix), failure);
    if (failure) throw std::runtime_error("cannot list " + prefix);
    std::sort(entries.begin(), entries.end(), [](const FolderEntry& a, const FolderEntry& b) {
        return toAsciiLower(a.name.string()) < toAsciiLower(b.name.string());
    });
    for (const FolderEntry& entry : entries) {
        const std::string path = prefix + entry.name.string();
        tree += prefix + nameOf(entry);
        if (!entry.attributes.isFolder()) tree += "=" + readFile(at(path)).facts;
        tree += "\n";
        if (entry.attributes.isFolder()) listInto(tree, path + "/");
    }
}

std::string RealSide::tree() {
    world_.letGo();
    std::string tree;
    listInto(tree, "");
    return tree;
}

}  // namespace vorthmere::update::contract
