#pragma once

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace vorthmere::bench {

/// One line of a list: a path, and after a tab the name of an object, if there is one.
struct ListedFile {
    std::string path;
    std::string objectName;
};

/// Reads a list of files. Throws when it has no line.
inline std::vector<ListedFile> readList(const std::filesystem::path& list) {
    std::ifstream text(list, std::ios::binary);
    std::vector<ListedFile> files;
    for (std::string line; std::getline(text, line);) {
        const std::size_t tab = line.find('\t');
        files.push_back({line.substr(0, tab), tab == std::string::npos ? "" : line.substr(tab + 1)});
    }
    if (files.empty()) throw std::runtime_error("the list names no file");
    return files;
}

/// The same, without the names of objects.
inline std::vector<std::string> readPaths(const std::filesystem::path& list) {
    std::vector<std::string> paths;
    for (const ListedFile& file : readList(list))
        paths.push_back(file.path);
    return paths;
}

}  // namespace vorthmere::bench
