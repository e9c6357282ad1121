#pragma once

#include <gmock/gmock.h>

#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

namespace vorthmere::update::testing {

/// The values of a transfer report by the names of their fields.
using ReportFields = std::map<std::string, std::string>;

/// Reads a transfer report; an empty text has no fields.
///
/// @throws std::invalid_argument for a line that is no field
[[nodiscard]] inline ReportFields reportFields(const std::string& report) {
    ReportFields fields;
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t equals = line.find('=');
        if (equals == std::string::npos || !line.ends_with('\r'))
            throw std::invalid_argument("not a line of a transfer report: " + line);
        fields[line.substr(0, equals)] = line.substr(equals + 1, line.size() - equals - 2);
    }
    return fields;
}

/// Matches the text of a transfer report that has these fields, among others.
[[nodiscard]] inline ::testing::Matcher<std::string> reports(const ReportFields& expected) {
    return ::testing::ResultOf(reportFields, ::testing::IsSupersetOf(expected));
}

}  // namespace vorthmere::update::testing
