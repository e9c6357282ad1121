#include "tests/end_to_end/support/folder_watch.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace vorthmere::end_to_end {
namespace fs = std::filesystem;

FolderWatch::FolderWatch() : descriptor_(inotify_init1(IN_CLOEXEC)) {
    if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "inotify");
}

FolderWatch::~FolderWatch() {
    close(descriptor_);
}

void FolderWatch::add(const fs::path& folder, std::uint32_t what) {
    const int watch = inotify_add_watch(descriptor_, folder.c_str(), what);
    if (watch < 0) throw std::system_error(errno, std::generic_category(), "inotify: " + folder.string());
    folders_[watch] = folder;
}

void FolderWatch::addTree(const fs::path& folder, std::uint32_t what) {
    add(folder, what);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_directory()) add(entry.path(), what);
}

std::optional<FolderEvent> FolderWatch::next(Milliseconds timeLimit) {
    if (unread_.empty()) {
        pollfd waiting{descriptor_, POLLIN, 0};
        if (poll(&waiting, 1, static_cast<int>(timeLimit.count())) <= 0) return std::nullopt;
        unread_.resize(65536);
        const ssize_t count = read(descriptor_, unread_.data(), unread_.size());
        if (count <= 0) throw std::system_error(errno, std::generic_category(), "inotify");
        unread_.resize(static_cast<std::size_t>(count));
    }
    inotify_event event{};
    std::memcpy(&event, unread_.data(), sizeof(event));
    const std::string name(unread_.c_str() + sizeof(event));
    unread_.erase(0, sizeof(event) + event.len);
    const fs::path folder = folders_[event.wd];
    return FolderEvent{event.len == 0 ? folder : folder / name, event.mask};
}

}  // namespace vorthmere::end_to_end
