#include "update/inventory_header.h"

#include "update/decimal.h"
#include "update/managed_path.h"
#include "update/metadata_keys.h"

namespace vorthmere::update {

bool readInventoryHeader(std::string_view text, Manifest& manifest) {
    std::string_view archive, release, protocol, version;
    static_cast<void>(nextLine(text));
    if (!readFieldLine(nextLine(text), key::archive, archive) ||
        !readFieldLine(nextLine(text), key::release, release) ||
        !readFieldLine(nextLine(text), key::protocol, protocol) ||
        !readFieldLine(nextLine(text), key::version, version) || !parseDecimal(release, manifest.release) ||
        !parseDecimal(protocol, manifest.protocol))
        return false;
    manifest.sha256 = archive;
    manifest.version = version;
    return true;
}

}  // namespace vorthmere::update
