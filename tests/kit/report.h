#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace vorthmere::kit {

/// Writes what the kit finds to the console and to a file, line by line.
class Report {
public:
    explicit Report(const std::filesystem::path& file) : file_(file, std::ios::binary | std::ios::trunc) {}

    void heading(const std::string& text);
    void fact(const std::string& name, const std::string& value);

    /// @param remark what a reader has to know about it; may be empty
    void passed(const std::string& name, const std::string& remark = {});
    void failed(const std::string& name, const std::string& why);
    void skipped(const std::string& name, const std::string& why);

    /// Prints how many passed, failed and were skipped.
    ///
    /// @return the kit's exit code: 0 when nothing failed
    int finish();

private:
    void line(const std::string& text);
    void result(const char* kind, const std::string& name, const std::string& text);

    std::ofstream file_;
    unsigned passed_ = 0;
    unsigned failed_ = 0;
    unsigned skipped_ = 0;
};

}  // namespace vorthmere::kit
