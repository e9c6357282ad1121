#include "tests/kit/report.h"

#include <cstdio>

namespace vorthmere::kit {

void Report::heading(const std::string& text) {
    line("");
    line(text);
}

void Report::fact(const std::string& name, const std::string& value) {
    line("  " + name + ": " + value);
}

void Report::passed(const std::string& name, const std::string& remark) {
    ++passed_;
    result("passed ", name, remark);
}

void Report::failed(const std::string& name, const std::string& why) {
    ++failed_;
    result("FAILED ", name, why);
}

void Report::skipped(const std::string& name, const std::string& why) {
    ++skipped_;
    result("skipped", name, why);
}

int Report::finish() {
    line("");
    line(std::to_string(passed_) + " passed, " + std::to_string(failed_) + " failed, " + std::to_string(skipped_) +
         " skipped");
    return failed_ == 0 ? 0 : 1;
}

void Report::line(const std::string& text) {
    std::printf("%s\n", text.c_str());
    std::fflush(stdout);
    file_ << text << "\r\n" << std::flush;
}

void Report::result(const char* kind, const std::string& name, const std::string& text) {
    line(std::string("  ") + kind + "  " + name + (text.empty() ? "" : ": " + text));
}

}  // namespace vorthmere::kit
