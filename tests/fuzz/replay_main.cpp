// Runs a fuzz target once on each file of a folder. A seed's name tells the expected result: "valid..." is accepted,
// "bad..." is refused. Any other file, such as one that a fuzzer found, only has to keep the properties.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "fuzz_target.h"

namespace {

std::string readAll(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

bool replay(const std::filesystem::path& file) {
    const std::string content = readAll(file);
    // A copy of exactly this size, so that the sanitizer sees a read past its end.
    const std::unique_ptr<char[]> input(new char[content.size()]);
    content.copy(input.get(), content.size());
    const bool accepted = vorthmere::update::fuzz::tryInput({input.get(), content.size()});

    const std::string name = file.filename().string();
    const bool expected = accepted ? !name.starts_with("bad") : !name.starts_with("valid");
    if (!expected) std::fprintf(stderr, "%s was %s\n", file.c_str(), accepted ? "accepted" : "refused");
    return expected;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    int replayed = 0;
    int unexpected = 0;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        ++replayed;
        if (!replay(entry.path())) ++unexpected;
    }
    std::printf("%d inputs replayed\n", replayed);
    return replayed > 0 && unexpected == 0 ? 0 : 1;
}
