#pragma once

#include <functional>
#include <string>
#include <system_error>

#include "platform/changes.h"
#include "platform/entries.h"
#include "platform/streams.h"
#include "tests/contract/scene.h"

namespace vorthmere::update::contract {

using SceneCall = std::function<std::error_code(const Scene&)>;

// Calls of the platform, for tables of cases.

inline SceneCall creatingFolder(std::string path) {
    return [=](const Scene& scene) { return createFolder(scene.at(path)); };
}
inline SceneCall removingFolder(std::string path) {
    return [=](const Scene& scene) { return removeEmptyFolder(scene.at(path)); };
}
inline SceneCall deleting(std::string path) {
    return [=](const Scene& scene) { return deleteFile(scene.at(path)); };
}
inline SceneCall setting(std::string path, std::uint32_t attributes) {
    return [=](const Scene& scene) { return setAttributes(scene.at(path), {attributes}); };
}
inline SceneCall moving(std::string from, std::string to) {
    return [=](const Scene& scene) { return moveFile(scene.at(from), scene.at(to)); };
}
inline SceneCall copying(std::string from, std::string to, Overwrite overwrite = Overwrite::yes) {
    return [=](const Scene& scene) { return copyFile(scene.at(from), scene.at(to), overwrite); };
}
inline SceneCall reading(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        const FileHandle file = openToRead(scene.at(path), failure);
        return failure;
    };
}
/// Creates a file or empties it, and closes it.
inline SceneCall creating(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        const FileHandle file = createToWrite(scene.at(path), failure);
        return failure;
    };
}
inline SceneCall flushing(std::string path) {
    return [=](const Scene& scene) { return flushFile(scene.at(path)); };
}
inline SceneCall askingAttributes(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        (void)entryAttributes(scene.at(path), failure);
        return failure;
    };
}
inline SceneCall askingFacts(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        (void)entryFacts(scene.at(path), failure);
        return failure;
    };
}
inline SceneCall askingTarget(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        (void)targetFacts(scene.at(path), failure);
        return failure;
    };
}
inline SceneCall openingForName(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        const FileHandle file = openForItsName(scene.at(path), failure);
        return failure;
    };
}
inline SceneCall listing(std::string path) {
    return [=](const Scene& scene) {
        std::error_code failure;
        (void)listFolder(scene.at(path), failure);
        return failure;
    };
}

}  // namespace vorthmere::update::contract
