#include "tests/end_to_end/support/package_writer.h"

#include <archive.h>
#include <archive_entry.h>

#include <memory>
#include <set>
#include <stdexcept>

namespace vorthmere::end_to_end {
namespace {

using Archive = std::unique_ptr<archive, decltype(&archive_write_free)>;
using Entry = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

void require(archive* writer, la_ssize_t result) {
    if (result < ARCHIVE_OK) throw std::runtime_error(archive_error_string(writer));
}

void chooseFormat(archive* writer, PackageFormat format) {
    if (format == PackageFormat::tar) return require(writer, archive_write_set_format_pax_restricted(writer));
    require(writer, archive_write_set_format_zip(writer));
    if (format == PackageFormat::zip) return;
    require(writer, archive_write_set_options(writer, "zip:encryption=aes256"));
    require(writer, archive_write_set_passphrase(writer, "a secret"));
}

Entry describe(const PackageEntry& packed) {
    Entry entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), packed.name.c_str());
    archive_entry_set_mtime(entry.get(), 1'600'000'000, 0);
    archive_entry_set_perm(entry.get(), packed.kind == PackageEntry::Kind::folder ? 0755 : 0644);
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_size(entry.get(), 0);
    switch (packed.kind) {
        case PackageEntry::Kind::file:
            archive_entry_set_size(entry.get(), static_cast<la_int64_t>(packed.content.size()));
            break;
        case PackageEntry::Kind::folder:
            archive_entry_set_filetype(entry.get(), AE_IFDIR);
            break;
        case PackageEntry::Kind::symbolicLink:
            archive_entry_set_filetype(entry.get(), AE_IFLNK);
            archive_entry_set_symlink(entry.get(), packed.content.c_str());
            break;
        case PackageEntry::Kind::hardLink:
            archive_entry_set_hardlink(entry.get(), packed.content.c_str());
            break;
    }
    return entry;
}

}  // namespace

std::vector<PackageEntry> packageEntries(const ReleaseFiles& files) {
    std::vector<PackageEntry> entries;
    std::set<std::string> folders;
    for (const auto& [path, file] : files) {
        for (std::size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1)) {
            const std::string folder = path.substr(0, slash + 1);
            if (folders.insert(folder).second) entries.push_back({folder, "", PackageEntry::Kind::folder});
        }
        entries.push_back({path, file.content});
    }
    return entries;
}

void writePackage(const std::filesystem::path& package, const std::vector<PackageEntry>& entries,
                  PackageFormat format) {
    std::filesystem::create_directories(package.parent_path());
    const Archive writer(archive_write_new(), archive_write_free);
    chooseFormat(writer.get(), format);
    require(writer.get(), archive_write_open_filename(writer.get(), package.c_str()));
    for (const PackageEntry& packed : entries) {
        require(writer.get(), archive_write_header(writer.get(), describe(packed).get()));
        if (packed.kind == PackageEntry::Kind::file)
            require(writer.get(), archive_write_data(writer.get(), packed.content.data(), packed.content.size()));
    }
    require(writer.get(), archive_write_close(writer.get()));
}

}  // namespace vorthmere::end_to_end
