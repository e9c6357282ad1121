#include "tests/support/folder_link.h"

namespace vorthmere::update::testing {

bool canLinkFiles() {
    return true;
}

Link::Link(const std::filesystem::path& link, const std::filesystem::path& target) : link_(link) {
    std::filesystem::create_symlink(target, link);
}

Link::~Link() {
    std::error_code alreadyGone;
    std::filesystem::remove(link_, alreadyGone);
}

}  // namespace vorthmere::update::testing
