#include <algorithm>
#include <array>

#include "tests/contract/differential/sides.h"

namespace vorthmere::update::contract {
namespace {

using simulation::Error;
using simulation::Intrusion;
using Kind = Intrusion::Kind;

constexpr std::string_view kFolder = "C:/Contract/folder";

std::string factsOf(std::uint32_t attributes, std::uint64_t size) {
    return std::to_string(attributes & kComparedAttributes) + "/" + std::to_string(size);
}

}  // namespace

ModelSide::ModelSide(Deletion deletion)
    : machine_(deletion == Deletion::classic ? simulation::Profile::classicDelete : simulation::Profile::posixDelete) {
    machine_.files.putFolder(kFolder);
    machine_.files.putFile("C:/Programs/updater.exe", simulation::contentOf("MZ updater"));
    machine_.beginCaller("C:/Programs/updater.exe", "C:/");
}

// The platform's functions take a path literally: a dot at its end is part of the name.
std::string ModelSide::full(const std::string& path) {
    const bool isAltered = path.ends_with('.') || path.ends_with(' ');
    return (isAltered ? "//?/" : "") + std::string(kFolder) + "/" + path;
}

Error ModelSide::writeFile(const std::string& path) {
    simulation::HandleId file = 0;
    Error result = machine_.files.createToWrite(full(path), file);
    if (result != simulation::error::none) return result;
    result = machine_.files.write(file, path);
    (void)machine_.files.close(file);
    return result;
}

Answer ModelSide::readFile(const std::string& path) {
    simulation::HandleId file = 0;
    Answer answer;
    answer.error = machine_.files.openToRead(full(path), file);
    if (answer.error != 0) return answer;
    std::array<char, 64> block{};
    std::size_t count = 0;
    answer.error = machine_.files.read(file, block.data(), block.size(), count);
    answer.facts.assign(block.data(), count);
    (void)machine_.files.close(file);
    return answer;
}

Answer ModelSide::list(const std::string& path) {
    std::vector<simulation::Listed> entries;
    Answer answer;
    answer.error = machine_.files.listFolder(full(path), entries);
    std::vector<std::string> lines;
    for (const simulation::Listed& entry : entries)
        lines.push_back(entry.name + ":" + std::to_string(entry.attributes & kComparedAttributes));
    std::sort(lines.begin(), lines.end());
    for (const std::string& line : lines)
        answer.facts += line + " ";
    return answer;
}

Answer ModelSide::finalPath(const std::string& path) {
    simulation::HandleId file = 0;
    Answer answer;
    answer.error = machine_.files.openForItsName(full(path), file);
    if (answer.error != 0) return answer;
    std::string name;
    answer.error = machine_.files.finalPath(file, name);
    (void)machine_.files.close(file);
    if (answer.error == 0) answer.facts = name.substr(std::min(name.size(), kFolder.size()));
    return answer;
}

Answer ModelSide::ask(const Step& step) {
    Answer answer;
    simulation::Facts facts;
    switch (step.action) {
        case Action::read:
            return readFile(step.path);
        case Action::listFolder:
            return list(step.path);
        case Action::finalPath:
            return finalPath(step.path);
        case Action::entryAttributes:
            answer.error = machine_.files.entryAttributes(full(step.path), facts.attributes);
            break;
        case Action::entryFacts:
            answer.error = machine_.files.entryFacts(full(step.path), facts);
            break;
        default:
            answer.error = machine_.files.targetFacts(full(step.path), facts);
            break;
    }
    if (answer.error == 0) answer.facts = factsOf(facts.attributes, facts.size);
    return answer;
}

Error ModelSide::act(const Step& step) {
    simulation::FileSystem& files = machine_.files;
    const std::string path = full(step.path);
    switch (step.action) {
        case Action::createFolder:
            return files.createFolder(path);
        case Action::removeEmptyFolder:
            return files.removeEmptyFolder(path);
        case Action::deleteFile:
            return files.deleteFile(path);
        case Action::setAttributes:
            return files.setAttributes(path, step.attributes);
        case Action::moveFile:
            return files.moveFile(path, full(step.second));
        case Action::copyFile:
            return files.copyFile(path, full(step.second), true);
        case Action::copyToNew:
            return files.copyFile(path, full(step.second), false);
        case Action::write:
            return writeFile(step.path);
        case Action::hold:
            return simulation::act(machine_, {Kind::open, path, "", step.access, step.sharing, 0});
        case Action::lock:
            return simulation::act(machine_, {Kind::lock, path, "", access::read, access::all, 0});
        case Action::map:
            mapped_ = path;
            return simulation::act(machine_, {Kind::map, path, "", access::read, access::all, 0});
        case Action::enter:
            return simulation::act(machine_, {Kind::enterFolder, path, "", access::read, access::all, 0});
        default:
            simulation::act(machine_, {Kind::release, "", "", 0, 0, 0});
            simulation::act(machine_, {Kind::leaveFolder, "", "", 0, 0, 0});
            for (simulation::EntryId id = 0; id < files.disk.count(); ++id)
                files.disk.at(id).mappings = 0;
            return simulation::error::none;
    }
}

Answer ModelSide::perform(const Step& step) {
    const bool isQuestion = step.action >= Action::read && step.action <= Action::finalPath;
    return isQuestion ? ask(step) : Answer{act(step), ""};
}

std::string ModelSide::tree() {
    (void)perform({});
    std::string tree;
    for (const simulation::EntryView& entry : machine_.files.entriesBelow(kFolder)) {
        tree += entry.path.substr(kFolder.size() + 1) + ":" + std::to_string(entry.attributes & kComparedAttributes);
        if (entry.content) tree += "=" + *entry.content;
        tree += "\n";
    }
    return tree;
}

}  // namespace vorthmere::update::contract
