// absolutePath and weaklyCanonicalPath.
#include "files/canonical_path.h"

#include "tests/contract/calls.h"

namespace vorthmere::update::contract {
namespace {

class CanonicalPathContract : public ContractTest {
protected:
    std::filesystem::path canonical(std::string_view path) {
        failure = {23, std::system_category()};
        return weaklyCanonicalPath(scene.at(path), failure);
    }
};

TEST_F(CanonicalPathContract, AnExistingPathIsSpelledAsItsNamesAreKept) {
    scene.make("Sub/ Sub/File");
    EXPECT_EQ(canonical("Sub/File"), scene.at("Sub/File"));
    EXPECT_FALSE(failure);
    EXPECT_EQ(canonical("SUB"), scene.at("Sub"));
}

TEST_F(CanonicalPathContract, TheMissingRestIsAppendedWithItsDotsFolded) {
    EXPECT_EQ(canonical("missing/deeper"), scene.at("missing/deeper"));
    EXPECT_FALSE(failure);
    EXPECT_EQ(canonical("missing/.././other"), scene.at("other"));
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathContract, LinksInTheExistingPartAreResolved) {
    scene.make("d/ d/a l->d");
    EXPECT_EQ(canonical("l"), scene.at("d"));
    EXPECT_EQ(canonical("l/a"), scene.at("d/a"));
    EXPECT_EQ(canonical("l/missing"), scene.at("d/missing"));
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathContract, APathOnADriveThatIsNotThereStaysAsItIs) {
    EXPECT_EQ(canonical("Q:/game/../other"), scene.at("Q:/other"));
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathContract, APathOnAShareThatIsNotThereKeepsBothItsSeparators) {
    const std::filesystem::path share = std::filesystem::path("//kelvane.invalid/games/old/../game").make_preferred();
    const std::filesystem::path folded = std::filesystem::path("//kelvane.invalid/games/game").make_preferred();
    EXPECT_EQ(weaklyCanonicalPath(share, failure).native(), folded.native());
    EXPECT_FALSE(failure);
}

TEST_F(CanonicalPathContract, AnEmptyPathStaysEmptyWithoutAFailure) {
    EXPECT_EQ(weaklyCanonicalPath({}, failure), std::filesystem::path());
    EXPECT_FALSE(failure);
    EXPECT_EQ(absolutePath({}), std::filesystem::path());
}

TEST_F(CanonicalPathContract, APartThatCannotBeResolvedIsAFailureWithAnEmptyResult) {
    scene.make("l->l");
    EXPECT_EQ(canonical("l"), std::filesystem::path());
    EXPECT_EQ(failure.value(), 1921);
}

TEST_F(CanonicalPathContract, AnAbsolutePathHasItsDotsFolded) {
    EXPECT_EQ(absolutePath(scene.at("a/.././game")), scene.at("game"));
}

TEST_F(CanonicalPathContract, AnExistingPathOfAnyLengthComesBackWhole) {
    const std::size_t start = scene.at("").native().size();
    for (const std::size_t length : {200U, 240U, 250U, 253U, 254U, 255U, 256U, 257U, 258U, 259U}) {
        const std::size_t rest = length - start - 2;
        const std::string folder(rest / 2, 'd');
        const std::string file(rest - rest / 2, 'f');
        scene.make(folder + "/ " + folder + "/" + file);
        EXPECT_EQ(canonical(folder + "/" + file), scene.at(folder + "/" + file)) << length;
        EXPECT_FALSE(failure) << length;
        scene.startAnew();
    }
}

}  // namespace
}  // namespace vorthmere::update::contract
