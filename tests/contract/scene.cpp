#include "tests/contract/scene.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <stdexcept>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/streams.h"

namespace vorthmere::update::contract {
namespace {

namespace fs = std::filesystem;

constexpr std::uint32_t kHidden = 0x2;
constexpr int kDeepest = 20;

std::string textOf(const fs::path& path) {
    const std::u8string text = path.u8string();
    return {reinterpret_cast<const char*>(text.data()), text.size()};
}

fs::path pathOf(std::string_view text) {
    return fs::path(std::u8string(reinterpret_cast<const char8_t*>(text.data()), text.size()));
}

void require(const std::error_code& failure, const char* what) {
    if (failure) throw std::runtime_error(std::string(what) + ": " + std::to_string(failure.value()));
}

std::string contentOf(const fs::path& file) {
    std::error_code failure;
    const FileHandle handle = openToRead(file, failure);
    std::string content;
    std::array<char, 256> block{};
    while (!failure) {
        const std::size_t count = readBytes(handle, block.data(), block.size(), failure);
        if (count == 0) break;
        content.append(block.data(), count);
    }
    return failure ? "cannot be read" : content;
}

}  // namespace

Scene::~Scene() {
    world->letGo();
    world->endPrograms();
}

void Scene::startAnew() {
    world->letGo();
    world->endPrograms();
    folder_ = world->folder() / std::to_string(++folders_);
    require(createFolder(folder_), "a folder cannot be created");
}

fs::path Scene::at(std::string_view path) const {
    if (path.starts_with('?')) return pathOf("//?/" + textOf(at(path.substr(1)))).make_preferred();
    if (path.find(':') == 1) return pathOf(path).make_preferred();
    return path.empty() ? folder_ : (folder_ / pathOf(path)).make_preferred();
}

void Scene::write(std::string_view path, std::string_view content) const {
    std::error_code failure;
    FileHandle file = createToWrite(at(path), failure);
    require(failure, "a file cannot be created");
    require(writeBytes(file, content.data(), content.size()), "a file cannot be written");
    require(closeFile(std::move(file)), "a file cannot be closed");
}

std::string Scene::read(std::string_view path) const {
    return contentOf(at(path));
}

std::uint32_t Scene::attributesOf(std::string_view path) const {
    std::error_code failure;
    return entryAttributes(at(path), failure).bits;
}

void Scene::makeOne(std::string_view entry) const {
    const std::uint32_t attributes = entry[0] == '!' ? EntryAttributes::kReadOnly : entry[0] == '~' ? kHidden : 0;
    if (attributes != 0) entry.remove_prefix(1);
    if (const std::size_t arrow = entry.find("->"); arrow != std::string_view::npos) {
        world->link(at(entry.substr(0, arrow)), at(entry.substr(arrow + 2)));
        return;
    }
    if (entry.ends_with('/')) {
        entry.remove_suffix(1);
        require(createFolder(at(entry)), "a folder cannot be created");
    } else {
        write(entry, entry);
    }
    if (attributes != 0) require(setAttributes(at(entry), {attributes}), "attributes cannot be set");
}

void Scene::make(std::string_view entries) const {
    std::istringstream words{std::string(entries)};
    for (std::string entry; words >> entry;)
        makeOne(entry);
}

void Scene::listInto(std::string& tree, const fs::path& folder, const std::string& prefix) const {
    // A listing that contains the folder itself would never end. Under Wine, a program that runs out of stack exits
    // with 0, which looks like success.
    if (std::count(prefix.begin(), prefix.end(), '/') > kDeepest) throw std::runtime_error("folders without an end");
    std::error_code failure;
    std::vector<FolderEntry> entries = listFolder(folder, failure);
    require(failure, "a folder cannot be listed");
    std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    for (const FolderEntry& entry : entries) {
        const std::string name = prefix + textOf(entry.name);
        if (!tree.empty()) tree += ' ';
        if (entry.attributes.isReadOnly()) tree += '!';
        if ((entry.attributes.bits & kHidden) != 0) tree += '~';
        tree += name;
        if (entry.attributes.isReparsePoint()) {
            tree += '@';
        } else if (entry.attributes.isFolder()) {
            tree += '/';
            listInto(tree, folder / entry.name, name + "/");
        } else {
            tree += '=' + contentOf(folder / entry.name);
        }
    }
}

std::string Scene::tree() const {
    std::string tree;
    listInto(tree, folder_, "");
    return tree;
}

void expectAll(const std::vector<Case>& cases) {
    Scene scene;
    for (const Case& each : cases) {
        SCOPED_TRACE(each.rule);
        scene.startAnew();
        scene.make(each.entries);
        const std::string before = scene.tree();
        for (const Hold& hold : each.holds)
            ASSERT_EQ(scene.world->hold(scene.at(hold.path), hold.access, hold.sharing), 0u);
        if (each.also) each.also(*scene.world, scene);
        const std::error_code failure = each.call(scene);
        scene.world->letGo();
        scene.world->endPrograms();
        const std::string& after = each.expected == 0 ? std::string(each.after) : before;
        EXPECT_TRUE(follows(*scene.world, each.rule,
                            Outcome{static_cast<std::uint32_t>(failure.value()), "[" + scene.tree() + "]"},
                            Outcome{each.expected, "[" + after + "]"}));
    }
}

}  // namespace vorthmere::update::contract
