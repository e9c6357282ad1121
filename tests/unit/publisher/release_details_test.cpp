#include "publisher/release_details.h"

#include <gmock/gmock.h>

#include <vector>

namespace vorthmere::publish::testing {
namespace {

using ::testing::StartsWith;

update::Manifest validDetails() {
    update::Manifest details;
    details.release = 42;
    details.protocol = 1;
    details.version = "0.9.3 alpha";
    return details;
}

TEST(ReleaseDetails, ExtremesAreAccepted) {
    update::Manifest details = validDetails();
    details.release = 4294967295;
    details.protocol = 65535;
    details.version.assign(48, '~');
    details.notes.assign(240, '=');
    std::string error;
    EXPECT_TRUE(judgeDetails(details, error)) << error;
}

struct WrongDetail {
    const char* option;
    void (*change)(update::Manifest& details);
};

TEST(ReleaseDetails, EachWrongOneIsNamedByItsOption) {
    const std::vector<WrongDetail> rows = {
        {"--release", [](update::Manifest& d) { d.release = 0; }},
        {"--protocol", [](update::Manifest& d) { d.protocol = 0; }},
        {"--version", [](update::Manifest& d) { d.version = ""; }},
        {"--version", [](update::Manifest& d) { d.version.assign(49, 'v'); }},
        {"--version", [](update::Manifest& d) { d.version = "0.9\t3"; }},
        {"--version", [](update::Manifest& d) { d.version = "0.9.3\r"; }},
        {"--version", [](update::Manifest& d) { d.version = "0.9.3\nmandatory=1"; }},
        {"--version", [](update::Manifest& d) { d.version = "0.9.3 Ä"; }},
        {"--notes", [](update::Manifest& d) { d.notes.assign(241, 'n'); }},
        {"--notes", [](update::Manifest& d) { d.notes = "two\nlines"; }},
        {"--notes", [](update::Manifest& d) { d.notes = std::string("nul\0byte", 8); }},
    };
    for (const WrongDetail& row : rows) {
        update::Manifest details = validDetails();
        row.change(details);
        std::string error;
        EXPECT_FALSE(judgeDetails(details, error)) << details.version << details.notes;
        EXPECT_THAT(error, StartsWith(row.option));
    }
}

}  // namespace
}  // namespace vorthmere::publish::testing
