// isReparsePoint and isFreeOfReparsePoints.
#include "files/reparse_point.h"

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

TEST_F(ContractTest, OnlyALinkIsAReparsePoint) {
    scene.make("a d/ d/b l->d");
    EXPECT_TRUE(isReparsePoint(scene.at("l")));
    for (const char* path : {"a", "d", "missing", "l/b", "a*"})
        EXPECT_FALSE(isReparsePoint(scene.at(path))) << path;
}

TEST_F(ContractTest, ALinkAnywhereAlongThePathIsSeen) {
    scene.make("o/ o/b d/ d/a top->o d/inner->o");
    for (const char* path : {"", "d/a", "missing", "missing/folders/file"})
        EXPECT_TRUE(isFreeOfReparsePoints(scene.at(""), path)) << path;
    for (const char* path : {"top", "top/b", "top/missing", "d/inner", "d/inner/missing/deeper"})
        EXPECT_FALSE(isFreeOfReparsePoints(scene.at(""), path)) << path;
}

TEST_F(ContractTest, TheFolderWhereAPathStartsIsNotTested) {
    scene.make("o/ o/b root->o");
    EXPECT_TRUE(isFreeOfReparsePoints(scene.at("root"), "b"));
    EXPECT_TRUE(isFreeOfReparsePoints(scene.at("root"), ""));
}

}  // namespace
}  // namespace vorthmere::update::contract
