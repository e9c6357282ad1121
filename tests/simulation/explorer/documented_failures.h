#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>

namespace vorthmere::update::simulation {

/// The exit codes of docs/failures.md with the sentences that may be shown with each.
class DocumentedFailures {
public:
    /// Reads the document.
    ///
    /// @throws std::runtime_error when it cannot be read or a row of its first table is not understood
    static DocumentedFailures read(const std::string& file);

    /// @param document its text
    explicit DocumentedFailures(std::string_view document);

    /// True when the document has this sentence (or none, for an empty one) with this code. Numbers in it may be any.
    [[nodiscard]] bool contains(int code, std::string_view sentence) const;

    [[nodiscard]] const std::map<int, std::set<std::string>>& sentences() const {
        return sentences_;
    }

private:
    std::map<int, std::set<std::string>> sentences_;
};

}  // namespace vorthmere::update::simulation
